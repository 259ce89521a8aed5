// quillset-sim as people and scripts use it: a watch brought up and down with its bus and
// services daemon, settings and events from the command line, what it refuses, and the usage
// database it lists, which the daemon alone writes.

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <signal.h>

#include <chrono>
#include <fstream>
#include <sstream>
#include <thread>
#include <tuple>

#include "StatePaths.h"
#include "sim_support.h"

using simtest::CommandResult;
using simtest::contains;

namespace {

class SimCliTest : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_EQ(inWatch("true", {"run", "--fresh"}).status, 0); }

    // quillset-sim ARGS... on this test's watch, found through $QUILLSET_STATE.
    CommandResult sim(const std::vector<std::string> &args) {
        return simtest::quillsetSim(args, {{"QUILLSET_STATE", _state}});
    }
    // Runs a shell script inside the watch.
    CommandResult inWatch(const std::string &script, std::vector<std::string> args = {"run"}) {
        args.insert(args.end(), {"--", "sh", "-c", script});
        return sim(args);
    }

    simtest::TempDir _dir;
    const std::string _state = _dir / "watch";
};

}  // namespace

TEST_F(SimCliTest, RunGivesTheCommandABusWithTheServicesDaemonAndTearsThemDown) {
    CommandResult r = inWatch(
        "echo \"${DBUS_SYSTEM_BUS_ADDRESS%%,*}|$QUILLSET_STATE|$ECORE_NO_SYSTEM_MODULES\"; "
        "quillset-sim run --fresh -- touch $QUILLSET_STATE/../ran; echo $?; "
        "quillset-sim event launch && quillset-sim get db/csc/salescode");
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.out, "unix:path=" + _state + "/bus/system.sock|" + _state + "|1\n2\nXEU\n")
        << "a running watch is not started twice, nor seeded again";
    EXPECT_TRUE(contains(r.err, "this watch is already running")) << r.err;
    EXPECT_FALSE(sim::fileExists(_dir / "ran"));
    std::string log = simtest::readText(_state + "/simd.log");
    EXPECT_TRUE(contains(log, "event launch from") && contains(log, "stopping")) << log;
    EXPECT_FALSE(sim::fileExists(_state + "/bus/system.sock"));
}

TEST_F(SimCliTest, AcceptedEventsReachTheBusAsSignalsAndRefusedOnesSayWhy) {
    // dbus-monitor stands in for the application; it is ready once it has given up its name.
    std::string monitor = _dir / "monitor.txt";
    CommandResult r =
        inWatch("dbus-monitor --system type=signal,interface=com.nerova.quillset.Sim >" + monitor +
                " 2>&1 & m=$!; waitfor() { i=0; while ! grep -q \"$1\" " + monitor +
                " && [ $i -lt 200 ]; do sleep 0.02; i=$((i+1)); done; }; waitfor NameLost; "
                "quillset-sim event reboot; echo $?; quillset-sim event launch now; echo $?; "
                "quillset-sim event policy usb-debugging 1 && waitfor member=Event; kill $m");
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.out, "1\n1\n");
    EXPECT_TRUE(contains(r.err, "event reboot: unknown event kind 'reboot' (known: launch"));
    EXPECT_TRUE(contains(r.err, "event launch: event 'launch' takes no arguments")) << r.err;
    std::string signals = simtest::readText(monitor);
    EXPECT_TRUE(contains(signals,
                         "member=Event\n   string \"policy\"\n   array [\n      string "
                         "\"usb-debugging\"\n      string \"1\"\n   ]"))
        << signals;
    EXPECT_EQ(signals.rfind("member=Event"), signals.find("member=Event")) << "one event only";
}

TEST_F(SimCliTest, StoppingRunTearsTheWholeWatchDown) {
    pid_t run = simtest::startSim({"run", "--state", _state, "--", "sleep", "30"}, {}, _dir / "out",
                                  _dir / "err");
    for (int i = 0; i < 500 && !contains(simtest::readText(_dir / "err"), "watch running"); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    int status = 0;
    kill(run, SIGTERM);
    waitpid(run, &status, 0);
    EXPECT_EQ(WEXITSTATUS(status), 128 + SIGTERM) << "sleep was stopped with the same signal";
    std::string log = simtest::readText(_state + "/simd.log");
    int daemon = 0;
    ASSERT_EQ(sscanf(log.c_str() + log.rfind("starting (pid "), "starting (pid %d)", &daemon), 1);
    EXPECT_NE(kill(daemon, 0), 0) << "quillset-simd is gone";
    EXPECT_FALSE(sim::fileExists(_state + "/bus/system.sock"));
}

TEST_F(SimCliTest, AWatchIsSeededOnceUnlessFreshAndTemporaryWithoutAStateDirectory) {
    ASSERT_EQ(sim({"set", "db/csc/salescode", "string", "KTO"}).status, 0);
    EXPECT_EQ(inWatch("quillset-sim get db/csc/salescode").out, "KTO\n");
    EXPECT_EQ(inWatch("quillset-sim get db/csc/salescode", {"run", "--fresh"}).out, "XEU\n");
    CommandResult r = simtest::quillsetSim({"run", "--", "sh", "-c", "echo $QUILLSET_STATE"});
    std::string dir = r.out.substr(0, r.out.size() - 1);
    EXPECT_EQ(dir.rfind("/tmp/", 0), 0u) << dir << r.err;
    EXPECT_FALSE(sim::fileExists(dir)) << "removed afterwards";
}

TEST_F(SimCliTest, SettingsAndTheLanguageAreWrittenFromTheCommandLine) {
    const std::string key = "db/test/key", language = "db/menu_widget/language";
    const std::tuple<std::vector<std::string>, std::string, std::string> cases[] = {
        {{"set", key, "bool", "0"}, key, "false\n"},
        {{"set", key, "bool", "true"}, key, "true\n"},
        {{"set", "--force", key, "double", "2.5e-7"}, key, "2.5e-07\n"},
        {{"set", "--force", key, "string", ""}, key, "\n"},
        {{"event", "language", "ko"}, language, "ko_KR.UTF-8\n"},
        {{"event", "language", "de_DE.UTF-8"}, language, "de_DE.UTF-8\n"},
    };
    for (const auto &[args, key, shown] : cases) {  // the command, then what get shows
        ASSERT_EQ(sim(args).status, 0) << args.back();
        // --state is also taken, and after the subcommand too.
        EXPECT_EQ(simtest::quillsetSim({"get", key, "--state=" + _state}).out, shown);
    }
}

TEST_F(SimCliTest, ALanguageIsOneWhoseCatalogueIsInstalledWhenItIsAskedFor) {
    // Catalogues of a build of its own: en_XA and pt_BR only.
    const std::string data = _dir / "data", language = "db/menu_widget/language";
    for (const char *name : {"en_XA", "pt_BR"}) {
        std::string dir = data + "/res/locale/" + name + "/LC_MESSAGES";
        std::string error;
        ASSERT_TRUE(sim::makeDirs(dir, &error)) << error;
        simtest::writeText(dir + "/quillset.mo", "");
    }
    const std::tuple<std::string, int, std::string> cases[] = {
        {"en_XA", 0, "en_XA.UTF-8\n"},
        {"pt_BR.UTF-8", 0, "pt_BR.UTF-8\n"},
        {"pt", 1, "no message catalogue for 'pt'; there are: en_XA, pt_BR\n"},
        {"de", 1, "no message catalogue for 'de'; there are: en_XA, pt_BR\n"},
    };
    for (const auto &[lang, status, said] : cases) {  // LANG, exit status, what it said
        CommandResult r = simtest::quillsetSim(
            {"event", "language", lang}, {{"QUILLSET_STATE", _state}, {"QUILLSET_DATA_DIR", data}});
        EXPECT_EQ(r.status, status) << lang;
        EXPECT_EQ(status ? r.err : sim({"get", language}).out,
                  status ? "quillset-sim: " + said : said)
            << lang;
    }
}

TEST_F(SimCliTest, LogReadsTheWatchsLogBufferByPriorityAndTagAndFollowsIt) {
    const std::string d = "10:00:00.000 D/A(1): debug\n", w = "10:00:00.001 W/B(1): warn\n",
                      more = "  the warning's second line\n", e = "10:00:00.002 E/A(2): error\n",
                      i = "10:00:00.003 I/A(2): info\n";
    simtest::writeText(_state + "/platform.log", d + w + more + e + i);
    const std::pair<std::vector<std::string>, std::string> cases[] = {
        {{"log"}, d + w + more + e + i},
        {{"log", "--priority", "W"}, w + more + e},
        {{"log", "--tag", "A", "--priority", "info"}, e + i},
        {{"log", "--tag=B", "--tag", "A", "--priority", "fatal"}, ""},
    };
    for (const auto &[args, shown] : cases) {
        CommandResult r = sim(args);
        EXPECT_EQ(r.status, 0) << r.err;
        EXPECT_EQ(r.out, shown) << args.back();
    }

    // -f shows lines as they are logged, and ends with the watch's state directory.
    const std::string watch = _dir / "followed", out = _dir / "follow.out";
    std::string error;
    ASSERT_TRUE(sim::makeDirs(watch, &error)) << error;
    simtest::writeText(watch + "/platform.log", e);
    pid_t follower = simtest::startSim({"log", "-f", "--priority", "E"},
                                       {{"QUILLSET_STATE", watch}}, out, _dir / "follow.err");
    std::ofstream(watch + "/platform.log", std::ios::app) << d << e;
    for (int k = 0; k < 500 && simtest::readText(out) != e + e; ++k)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    EXPECT_EQ(simtest::readText(out), e + e);
    ASSERT_TRUE(sim::removeTree(watch, &error)) << error;
    int status = -1;
    for (int k = 0; k < 300 && waitpid(follower, &status, WNOHANG) == 0; ++k)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    EXPECT_TRUE(status != -1 && WIFEXITED(status) && WEXITSTATUS(status) == 0) << "still following";
    if (status == -1 && kill(follower, SIGKILL) == 0)
        waitpid(follower, nullptr, 0);
}

TEST_F(SimCliTest, EveryRefusalSaysWhyAndLosesNothing) {
    const std::string bad = _dir / "bad.json", odd = _dir / "odd.json", key = "db/test/key";
    simtest::writeText(bad, "{\n  \"settings\": {\"db/x\": yes}\n}\n");
    simtest::writeText(odd, R"({"colour": "red", "wifi": {}})");
    ASSERT_EQ(sim({"set", key, "int", "5"}).status, 0);
    simtest::writeText(_state + "/settings/db/test/corrupt", "int:");
    const std::string notStarted = "; the watch was not started";
    const std::tuple<int, std::string, std::vector<std::string>> cases[] = {
        {7, "", {"run", "--", "sh", "-c", "exit 7"}},
        {128 + SIGTERM, "", {"run", "--", "sh", "-c", "kill -TERM $$"}},
        {127, "cannot run no-such-program", {"run", "--", "no-such-program"}},
        {2, "run needs a command after --", {"run"}},
        {0, "keeps the profile it was seeded with", {"run", "--profile", "cdma", "--", "true"}},
        {2,
         bad + ": line 2, column 24: malformed JSON",
         {"run", "--fresh", "--profile", bad, "--", "touch", _dir / "ran"}},
        {2,
         "no profile 'no-such-watch' in " + sim::profilesDir() + " (`quillset-sim profiles`",
         {"run", "--fresh", "--profile", "no-such-watch", "--", "true"}},
        {2,
         "open(/no/w.json): No such file or directory" + notStarted,
         {"run", "--fresh", "--profile", "/no/w.json", "--", "true"}},
        {1,
         "mkdir(" + bad + "): Not a directory",
         {"run", "--state", bad + "/watch", "--", "true"}},
        {0,
         "warning: " + odd + ": colour: unknown key",
         {"run", "--state", _dir / "odd", "--profile", odd, "--", "true"}},
        {1,
         "the watch's bus is not reachable at unix:path=" + _state + "/bus/system.sock",
         {"event", "launch"}},
        {1, "no watch at " + _dir / "nowhere", {"--state", _dir / "nowhere", "get", "x"}},
        {1, "no setting db/test/none", {"get", "db/test/none"}},
        {1, "corrupt value", {"get", "db/test/corrupt"}},
        {1, "not '12x'; nothing was written", {"set", key, "int", "12x"}},
        {1, "nothing was written", {"set", key, "int", "2147483648"}},
        {1, "nothing was written", {"set", key, "bool", "yes"}},
        {1, "nothing was written", {"set", key, "double", "nan"}},
        {1, "nothing was written", {"set", key, "double", "0x1p3"}},
        {1, "unknown type 'colour' (bool, int, double or string)", {"set", key, "colour", "red"}},
        {1, "invalid key '../key'", {"set", "../key", "int", "1"}},
        {2, "set takes [--force] KEY TYPE VALUE", {"set", key, "int"}},
        {1, "'de_de' is not a language such as de", {"event", "language", "de_de"}},
        {1, "no message catalogue for 'eo'; there are: ", {"event", "language", "eo"}},
        {1,
         "db/test/key holds an int; a string would change its type (--force writes it anyway)",
         {"set", key, "string", "hello"}},
        {1,
         odd + ": not a list of eSIM profiles, a JSON array of {\"name\"",
         {"event", "esim", "1", "2", "--profiles", odd}},
        {2, "event esim takes TYPE DATA (numbers)", {"event", "esim", "1", "two"}},
        {2, "log: 'loud' is no priority", {"log", "--priority", "loud"}},
    };
    for (const auto &[status, message, args] : cases) {  // exit status, part of the message
        CommandResult r = sim(args);
        EXPECT_EQ(r.status, status) << args.back();
        EXPECT_TRUE(contains(r.err, message)) << r.err;
    }
    EXPECT_FALSE(sim::fileExists(_dir / "ran"));
    EXPECT_EQ(sim({"get", key}).out, "5\n");
    EXPECT_EQ(sim({"get", "db/menu_widget/language"}).out, "en_US.UTF-8\n");
    EXPECT_TRUE(
        contains(simtest::quillsetSim({"event", "launch"}).err, "which watch? Give --state"));
    EXPECT_TRUE(contains(sim({"profiles"}).out, "\ndefault          A Kesta with LTE and eSIM;"));
}

TEST_F(SimCliTest, UsageKeptByTheDaemonIsListedAsJsonLinesWhileTheWatchRunsAndAfter) {
    nlohmann::json profile = nlohmann::json::parse(simtest::readText(_state + "/profile.json"));
    profile["faults"] = {{{"call", "app_control_send_terminate_request"}, {"code", -3}}};
    simtest::writeText(_state + "/profile.json", profile.dump());
    const std::string send = "dbus-send --system --print-reply >/dev/null --dest=",
                      insert = send +
                               "com.nerova.logmgr /com/nerova/logmgr/provider "
                               "com.nerova.logmgr.Provider.Insert string:content://log ",
                      apps = send +
                             "com.nerova.quillset.sim /com/nerova/quillset/sim/apps "
                             "com.nerova.quillset.Apps.";
    // Three writers at once, then one record and a launch and its end; listed while the watch
    // runs, then again once it has stopped.
    CommandResult r = inWatch(
        "w() { for k in $(seq 20); do " + insert +
        "dict:string:string:app_id,app,feature,F || return 1; done; }; "
        "w & a=$!; w & b=$!; w & c=$!; wait $a && wait $b && wait $c || exit 1; " +
        insert + "dict:string:string:app_id,com.nerova.quillset,feature,S003,value,1 && " + apps +
        "Launch string:com.nerova.esim string: dict:string:string:n,2 int32:1 && " + apps +
        "Terminate int64:1 string:com.nerova.esim string: dict:string:string:n,2 int32:0 && "
        "quillset-sim usage && quillset-sim launches");
    ASSERT_EQ(r.status, 0) << r.err;
    std::string afterwards = sim({"usage"}).out + sim({"launches"}).out;
    EXPECT_EQ(afterwards, r.out);
    std::string listed;
    int records = 0;
    std::istringstream lines(afterwards);
    for (std::string line; std::getline(lines, line);) {
        nlohmann::json row = nlohmann::json::parse(line);
        EXPECT_GT(row["time"].get<double>(), 1.6e9) << "seconds since the epoch";
        records += row.value("feature", "") == "F";
        if (row["id"] == 61 || row.contains("request"))
            listed += (row.erase("time"), row.dump()) + "\n";
    }
    // No row is lost; empty fields are left out; extra data shows as the object it is.
    EXPECT_EQ(records, 60);
    EXPECT_EQ(
        listed,
        R"({"app_id":"com.nerova.quillset","feature":"S003","id":61,"kind":"record","uri":"content://log","value":"1"}
{"app_id":"com.nerova.esim","extra_data":{"n":"2"},"id":1,"launch_mode":1,"request":"launch","result":0}
{"app_id":"com.nerova.esim","extra_data":{"n":"2"},"id":2,"launch_id":1,"launch_mode":0,"request":"terminate","result":-3}
)");
    // The daemon kept them all, and said so.
    std::string log = simtest::readText(_state + "/simd.log");
    EXPECT_TRUE(contains(log, "record S003 from ") && contains(log,
                                                               "terminate request for "
                                                               "com.nerova.esim from "))
        << log;
}
