// quillset-sim as people and scripts use it: a watch brought up and down with its bus and
// services daemon, settings and events from the command line, and what it refuses.

#include <gtest/gtest.h>

#include <signal.h>
#include <sys/wait.h>

#include <chrono>
#include <sstream>
#include <thread>

#include "StatePaths.h"
#include "UsageDb.h"
#include "sim_support.h"

using simtest::CommandResult;
using simtest::contains;
using simtest::quillsetSim;

namespace {

class SimCliTest : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_EQ(inWatch("true", {"--fresh"}).status, 0); }

    // Runs a shell script inside the watch.
    CommandResult inWatch(const std::string &script, std::vector<std::string> options = {}) {
        options.insert(options.begin(), {"run", "--state", _state});
        options.insert(options.end(), {"--", "sh", "-c", script});
        return quillsetSim(options);
    }

    simtest::TempDir _dir;
    const std::string _state = _dir / "watch";
};

}  // namespace

TEST_F(SimCliTest, RunGivesTheCommandABusWithTheServicesDaemonAndTearsThemDown) {
    CommandResult r = inWatch(
        "echo \"${DBUS_SYSTEM_BUS_ADDRESS%%,*}|$QUILLSET_STATE|$ECORE_NO_SYSTEM_MODULES\"; "
        "quillset-sim run --fresh -- touch " +
        _dir / "ran" +
        "; echo $?; "
        "quillset-sim event launch && quillset-sim get db/csc/salescode");
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.out, "unix:path=" + _state + "/bus/system.sock|" + _state + "|1\n2\nXEU\n")
        << "a running watch is not started twice, nor seeded again";
    EXPECT_TRUE(contains(r.err, "this watch is already running")) << r.err;
    EXPECT_FALSE(sim::fileExists(_dir / "ran"));
    std::string log = simtest::readText(_state + "/simd.log");
    EXPECT_TRUE(contains(log, "event launch from")) << log;
    EXPECT_TRUE(contains(log, "stopping")) << log;
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
    size_t event = signals.find("interface=com.nerova.quillset.Sim; member=Event\n");
    ASSERT_NE(event, std::string::npos) << signals;
    EXPECT_TRUE(contains(signals.substr(event),
                         "string \"policy\"\n   array [\n      string "
                         "\"usb-debugging\"\n      string \"1\"\n   ]"))
        << signals;
    EXPECT_EQ(signals.rfind("member=Event"), signals.find("member=Event")) << "one event only";
}

TEST_F(SimCliTest, StoppingRunTearsTheWholeWatchDown) {
    pid_t run = simtest::start(
        {simtest::program("quillset-sim"), "run", "--state", _state, "--", "sleep", "30"}, {},
        _dir / "out", _dir / "err");
    for (int i = 0; i < 500 && !contains(simtest::readText(_dir / "err"), "watch running"); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    auto start = std::chrono::steady_clock::now();
    kill(run, SIGTERM);
    int status = 0;
    waitpid(run, &status, 0);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 128 + SIGTERM)
        << "sleep was stopped with the same signal";
    std::string log = simtest::readText(_state + "/simd.log");
    int daemon = 0;
    ASSERT_EQ(sscanf(log.c_str() + log.rfind("starting (pid "), "starting (pid %d)", &daemon), 1);
    EXPECT_NE(kill(daemon, 0), 0) << "quillset-simd is gone";
    EXPECT_FALSE(sim::fileExists(_state + "/bus/system.sock"));
}

TEST_F(SimCliTest, AWatchIsSeededOnceUnlessFreshAndTemporaryWithoutAStateDirectory) {
    ASSERT_EQ(inWatch("quillset-sim set db/csc/salescode string KTO").status, 0);
    EXPECT_EQ(inWatch("quillset-sim get db/csc/salescode").out, "KTO\n");
    EXPECT_EQ(inWatch("quillset-sim get db/csc/salescode", {"--fresh"}).out, "XEU\n");

    CommandResult r = quillsetSim({"run", "--", "sh", "-c", "echo $QUILLSET_STATE"});
    ASSERT_EQ(r.status, 0) << r.err;
    std::string dir = r.out.substr(0, r.out.size() - 1);
    EXPECT_EQ(dir.rfind("/tmp/", 0), 0u) << dir;
    EXPECT_FALSE(sim::fileExists(dir)) << "removed afterwards";
}

TEST_F(SimCliTest, SettingsAndTheLanguageAreWrittenFromTheCommandLine) {
    const std::string kLanguage = "db/menu_widget/language";
    const struct {
        std::vector<std::string> args;
        std::string key;
        const char *shown;
    } cases[] = {
        {{"set", "db/test/key", "bool", "0"}, "db/test/key", "false\n"},
        {{"set", "db/test/key", "double", "0.25"}, "db/test/key", "0.25\n"},
        {{"set", "db/test/key", "string", ""}, "db/test/key", "\n"},
        {{"event", "language", "ko"}, kLanguage, "ko_KR.UTF-8\n"},
        {{"event", "language", "de_AT"}, kLanguage, "de_AT.UTF-8\n"},
        {{"event", "language", "fr_FR.UTF-8"}, kLanguage, "fr_FR.UTF-8\n"},
    };
    for (const auto &c : cases) {
        std::vector<std::string> args = c.args;
        args.insert(args.begin(), {"--state", _state});
        ASSERT_EQ(quillsetSim(args).status, 0) << args.back();
        // --state is also taken after the subcommand, and from the environment.
        EXPECT_EQ(quillsetSim({"get", c.key, "--state=" + _state}).out, c.shown);
        EXPECT_EQ(quillsetSim({"get", c.key}, {{"QUILLSET_STATE", _state}}).out, c.shown);
    }
}

TEST_F(SimCliTest, EveryRefusalSaysWhyAndLosesNothing) {
    const std::string s = _state, bad = _dir / "bad.json", odd = _dir / "odd.json";
    simtest::writeText(bad, "{\n  \"settings\": {\"db/x\": yes}\n}\n");
    simtest::writeText(odd, R"({"colour": "red"})");
    ASSERT_EQ(quillsetSim({"--state", s, "set", "db/test/key", "int", "5"}).status, 0);
    simtest::writeText(s + "/settings/db/test/corrupt", "int:");
    const struct {
        std::vector<std::string> args;
        int status;
        std::string message;
    } cases[] = {
        {{"run", "--state", s, "--", "sh", "-c", "exit 7"}, 7, ""},
        {{"run", "--state", s, "--", "sh", "-c", "kill -TERM $$"}, 128 + SIGTERM, ""},
        {{"run", "--state", s, "--", "no-such-program"}, 127, "cannot run no-such-program"},
        {{"run", "--state", s}, 2, "run needs a command after --"},
        {{"run", "--state", s, "--profile", "default", "--", "true"},
         0,
         "keeps the profile it was seeded with"},
        {{"run", "--state", s, "--fresh", "--profile", bad, "--", "touch", _dir / "ran"},
         2,
         bad + ": line 2, column 24: malformed JSON"},
        {{"run", "--state", s, "--fresh", "--profile", "no-such-watch", "--", "true"},
         2,
         "no profile 'no-such-watch' in " + sim::profilesDir() +
             " (`quillset-sim profiles` lists them)\nquillset-sim: the watch was not started"},
        {{"run", "--state", s, "--fresh", "--profile", "/no/w.json", "--", "true"},
         2,
         "open(/no/w.json): No such file"},
        {{"run", "--state", _dir / "odd", "--profile", odd, "--", "true"},
         0,
         "warning: " + odd + ": colour: unknown key"},
        {{"--state", s, "event", "launch"},
         1,
         "the watch's bus is not reachable at unix:path=" + s + "/bus/system.sock"},
        {{"event", "launch"}, 1, "which watch? Give --state DIR or set QUILLSET_STATE"},
        {{"--state", _dir / "nowhere", "get", "db/x"}, 1, "no watch at " + _dir / "nowhere"},
        {{"--state", s, "get", "db/test/none"}, 1, "no setting db/test/none"},
        {{"--state", s, "get", "db/test/corrupt"}, 1, "corrupt value"},
        {{"--state", s, "set", "db/test/key", "int", "12x"}, 1, "not '12x'; nothing was written"},
        {{"--state", s, "set", "db/test/key", "colour", "red"},
         1,
         "unknown type 'colour' (bool, int, double or string)"},
        {{"--state", s, "set", "../key", "int", "1"}, 1, "invalid key '../key'"},
        {{"--state", s, "set", "db/test/key", "int"}, 2, "set takes KEY TYPE VALUE"},
        {{"--state", s, "event", "language", "de_de"}, 1, "'de_de' is not a language such as de"},
    };
    for (const auto &c : cases) {
        CommandResult r = quillsetSim(c.args);
        EXPECT_EQ(r.status, c.status) << c.args.back();
        EXPECT_TRUE(contains(r.err, c.message)) << r.err;
    }
    EXPECT_FALSE(sim::fileExists(_dir / "ran"));
    EXPECT_EQ(quillsetSim({"--state", s, "get", "db/test/key"}).out, "5\n");
    EXPECT_EQ(quillsetSim({"--state", s, "get", "db/menu_widget/language"}).out, "en_US.UTF-8\n");
}

TEST_F(SimCliTest, ProfilesAreListedWithTheirDescriptions) {
    CommandResult r = quillsetSim({"profiles"});
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_TRUE(
        contains(r.out, "default          A Kesta with LTE and eSIM; every value present\n"));
    std::istringstream lines(r.out);
    for (std::string line; std::getline(lines, line);)
        EXPECT_TRUE(line.size() > 17 && !contains(line, "(invalid")) << line;
}

TEST_F(SimCliTest, UsageAndLaunchesAreListedAsJsonLinesInOrder) {
    {
        sim::UsageDb db;
        std::string e;
        ASSERT_TRUE(db.open(_state, &e)) << e;
        ASSERT_TRUE(db.addRecord("content://log", "com.nerova.quillset", "S003", nullptr, "1", &e));
        ASSERT_TRUE(db.addCall("com.nerova.logmgr", "/p", "com.nerova.I", "Select", &e));
        long long id = db.addJournal("launch", "com.nerova.esim", "", R"({"n":"2"})", 1, 0, 0, &e);
        ASSERT_GT(db.addJournal("terminate", "com.nerova.esim", "", "", 0, -3, id, &e), id) << e;
    }
    std::string listed;
    for (const char *command : {"usage", "launches"}) {
        CommandResult r = quillsetSim({command, "--state", _state});
        ASSERT_EQ(r.status, 0) << r.err;
        std::istringstream lines(r.out);
        for (std::string line; std::getline(lines, line);) {
            nlohmann::json row = nlohmann::json::parse(line);
            EXPECT_GT(row["time"].get<double>(), 1.6e9) << "seconds since the epoch";
            row.erase("time");
            listed += row.dump() + "\n";
        }
    }
    EXPECT_EQ(listed,
              R"({"app_id":"com.nerova.quillset","feature":"S003","id":1,"kind":"record",)"
              R"("uri":"content://log","value":"1"})"
              "\n"
              R"({"bus_name":"com.nerova.logmgr","id":2,"interface":"com.nerova.I",)"
              R"("kind":"call","method":"Select","path":"/p"})"
              "\n"
              R"({"app_id":"com.nerova.esim","extra_data":{"n":"2"},"id":1,"launch_mode":1,)"
              R"("request":"launch","result":0})"
              "\n"
              R"({"app_id":"com.nerova.esim","id":2,"launch_id":1,"launch_mode":0,)"
              R"("request":"terminate","result":-3})"
              "\n");
}
