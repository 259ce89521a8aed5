// quillset-sim as people and scripts use it: bringing a watch up and down, its bus and
// services daemon, settings from the command line, events and the usage database.

#include <gtest/gtest.h>

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "StatePaths.h"
#include "UsageDb.h"
#include "sim_support.h"

using simtest::CommandResult;

namespace {

CommandResult quillsetSim(const std::vector<std::string> &args,
                          const std::map<std::string, std::string> &env = {}) {
    std::vector<std::string> argv = {simtest::program("quillset-sim")};
    argv.insert(argv.end(), args.begin(), args.end());
    return simtest::run(argv, env);
}

bool contains(const std::string &text, const std::string &part) {
    return text.find(part) != std::string::npos;
}

std::vector<nlohmann::json> jsonLines(const std::string &text) {
    std::vector<nlohmann::json> rows;
    std::istringstream in(text);
    std::string line;
    while (std::getline(in, line))
        rows.push_back(nlohmann::json::parse(line));
    return rows;
}

bool waitFor(const std::function<bool()> &done, double seconds) {
    auto end = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
    while (!done()) {
        if (std::chrono::steady_clock::now() > end)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return true;
}

class SimCliTest : public ::testing::Test {
protected:
    std::string state() const { return _dir / "watch"; }
    // Runs a shell script inside a fresh watch.
    CommandResult inWatch(const std::string &script, const std::vector<std::string> &extra = {}) {
        std::vector<std::string> args = {"run", "--state", state()};
        args.insert(args.end(), extra.begin(), extra.end());
        args.insert(args.end(), {"--", "sh", "-c", script});
        return quillsetSim(args);
    }

    simtest::TempDir _dir;
};

}  // namespace

TEST_F(SimCliTest, RunGivesTheCommandABusWithTheServicesDaemonOnIt) {
    CommandResult r = inWatch(
        "echo \"$DBUS_SYSTEM_BUS_ADDRESS|$QUILLSET_STATE|$ECORE_NO_SYSTEM_MODULES\" && "
        "quillset-sim event launch && "
        "dbus-send --system --print-reply --dest=org.freedesktop.DBus /org/freedesktop/DBus "
        "org.freedesktop.DBus.GetNameOwner string:com.nerova.quillset.sim >/dev/null",
        {"--fresh"});
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.out.rfind("unix:path=" + state() + "/bus/system.sock", 0), 0u) << r.out;
    EXPECT_TRUE(contains(r.out, "|" + state() + "|1\n")) << r.out;
    std::string log = simtest::readText(state() + "/simd.log");
    EXPECT_TRUE(contains(log, "event launch from")) << log;
    EXPECT_TRUE(contains(log, "stopping")) << "the daemon was stopped: " << log;
    EXPECT_FALSE(sim::fileExists(state() + "/bus/system.sock")) << "the bus is gone";
}

TEST_F(SimCliTest, EventsFailClearlyWhenNoWatchIsRunning) {
    ASSERT_EQ(inWatch("true", {"--fresh"}).status, 0);
    CommandResult r = quillsetSim({"--state", state(), "event", "launch"});
    EXPECT_EQ(r.status, 1);
    EXPECT_TRUE(contains(
        r.err, "the watch's bus is not reachable at unix:path=" + state() + "/bus/system.sock"))
        << r.err;
    EXPECT_TRUE(contains(r.err, "is the watch running (quillset-sim run)?")) << r.err;

    r = quillsetSim({"event", "launch"});
    EXPECT_NE(r.status, 0);
    EXPECT_TRUE(contains(r.err, "Give --state DIR or set QUILLSET_STATE")) << r.err;

    r = quillsetSim({"get", "db/x"}, {{"QUILLSET_STATE", _dir / "nowhere"}});
    EXPECT_NE(r.status, 0);
    EXPECT_TRUE(contains(r.err, "no watch at " + _dir / "nowhere")) << r.err;
}

TEST_F(SimCliTest, TheDaemonRefusesUnknownEventsAndWrongArguments) {
    CommandResult r = inWatch(
        "quillset-sim event reboot; echo \"reboot=$?\"; "
        "quillset-sim event launch now; echo \"launch=$?\"; "
        "quillset-sim event policy usb-debugging 1; echo \"policy=$?\"",
        {"--fresh"});
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.out, "reboot=1\nlaunch=1\npolicy=0\n");
    EXPECT_TRUE(contains(r.err, "event reboot: unknown event kind 'reboot' (known: launch"))
        << r.err;
    EXPECT_TRUE(contains(r.err, "event launch: event 'launch' takes no arguments")) << r.err;
}

TEST_F(SimCliTest, AcceptedEventsReachTheBusAsSignalsAndRefusedOnesDoNot) {
    // dbus-monitor stands in for the application's platform layer; it is ready once it has
    // given up its own name to become a monitor.
    std::string monitor = _dir / "monitor.txt";
    CommandResult r =
        inWatch("dbus-monitor --system type=signal,interface=com.nerova.quillset.Sim >" + monitor +
                    " 2>&1 & m=$!; "
                    "waitfor() { i=0; while ! grep -q \"$1\" " +
                    monitor +
                    " && [ $i -lt 200 ]; do sleep 0.02; i=$((i+1)); done; }; "
                    "waitfor NameLost; "
                    "quillset-sim event bogus 2>/dev/null; "
                    "quillset-sim event policy usb-debugging 1 && waitfor member=Event; "
                    "kill $m",
                {"--fresh"});
    ASSERT_EQ(r.status, 0) << r.err;
    std::string signals = simtest::readText(monitor);
    size_t event = signals.find(
        "path=/com/nerova/quillset/sim; interface=com.nerova.quillset.Sim;"
        " member=Event");
    ASSERT_NE(event, std::string::npos) << signals;
    std::string args = signals.substr(event);
    EXPECT_TRUE(contains(args, "string \"policy\"")) << args;
    EXPECT_TRUE(contains(args, "string \"usb-debugging\"")) << args;
    EXPECT_TRUE(contains(args, "string \"1\"")) << args;
    EXPECT_FALSE(contains(signals, "bogus")) << "a refused event is not emitted";
}

TEST_F(SimCliTest, ARunningWatchIsNotStartedTwice) {
    CommandResult r =
        inWatch("quillset-sim run --fresh -- touch " + _dir / "ran" + "; echo \"second=$?\"; " +
                    "quillset-sim event launch && quillset-sim get db/csc/salescode",
                {"--fresh"});
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.out, "second=2\nXEU\n") << "the first watch still serves";
    EXPECT_TRUE(contains(r.err, "this watch is already running")) << r.err;
    EXPECT_FALSE(sim::fileExists(_dir / "ran"));
}

TEST_F(SimCliTest, RunEndsWithTheCommandsStatus) {
    EXPECT_EQ(inWatch("exit 7", {"--fresh"}).status, 7);
    EXPECT_EQ(inWatch("kill -TERM $$").status, 128 + SIGTERM);
    CommandResult r = quillsetSim({"run", "--state", state(), "--", "no-such-program-here"});
    EXPECT_EQ(r.status, 127);
    EXPECT_TRUE(contains(r.err, "cannot run no-such-program-here")) << r.err;
    r = quillsetSim({"run", "--state", state()});
    EXPECT_EQ(r.status, 2);
    EXPECT_TRUE(contains(r.err, "run needs a command after --")) << r.err;
}

TEST_F(SimCliTest, AWatchWithoutAStateDirectoryIsTemporary) {
    CommandResult r = quillsetSim({"run", "--", "sh", "-c",
                                   "echo $QUILLSET_STATE; quillset-sim get "
                                   "db/csc/salescode"});
    ASSERT_EQ(r.status, 0) << r.err;
    std::istringstream lines(r.out);
    std::string dir, salescode;
    std::getline(lines, dir);
    std::getline(lines, salescode);
    EXPECT_EQ(salescode, "XEU") << "seeded from the default profile";
    EXPECT_EQ(dir.rfind("/tmp/", 0), 0u) << dir;
    EXPECT_FALSE(sim::fileExists(dir)) << "removed afterwards";
}

TEST_F(SimCliTest, AStateDirectoryIsSeededOnceUnlessFresh) {
    ASSERT_EQ(inWatch("quillset-sim set db/csc/salescode string KTO").status, 0);
    CommandResult r = inWatch("quillset-sim get db/csc/salescode");
    EXPECT_EQ(r.out, "KTO\n") << "a second run keeps the watch's settings";
    r = inWatch("quillset-sim get db/csc/salescode", {"--fresh"});
    EXPECT_EQ(r.out, "XEU\n") << "--fresh seeds it again";
    r = inWatch("true", {"--profile", "default"});
    EXPECT_TRUE(contains(r.err, "keeps the profile it was seeded with")) << r.err;
}

TEST_F(SimCliTest, ABadProfileStopsTheWatchBeforeTheCommandRuns) {
    simtest::writeText(_dir / "bad.json", "{\n  \"settings\": {\"db/x\": yes}\n}\n");
    CommandResult r = inWatch("touch " + _dir / "ran", {"--fresh", "--profile", _dir / "bad.json"});
    EXPECT_EQ(r.status, 2);
    EXPECT_TRUE(contains(r.err, _dir / "bad.json: line 2, column 24: malformed JSON")) << r.err;
    EXPECT_TRUE(contains(r.err, "the watch was not started")) << r.err;
    EXPECT_FALSE(sim::fileExists(_dir / "ran"));

    r = inWatch("true", {"--profile", "no-such-watch"});
    EXPECT_EQ(r.status, 2);
    EXPECT_TRUE(contains(r.err, "no profile 'no-such-watch' in " + sim::profilesDir())) << r.err;

    simtest::writeText(_dir / "odd.json", R"({"settings": {"db/x": 1}, "colour": "red"})");
    r = inWatch("quillset-sim get db/x", {"--profile", _dir / "odd.json"});
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.out, "1\n");
    EXPECT_TRUE(contains(r.err, "warning: " + _dir / "odd.json: colour: unknown key")) << r.err;
}

TEST_F(SimCliTest, StoppingRunTearsTheWholeWatchDown) {
    pid_t run = simtest::start(
        {simtest::program("quillset-sim"), "run", "--state", state(), "--", "sleep", "30"}, {},
        _dir / "out", _dir / "err");
    ASSERT_TRUE(
        waitFor([&] { return contains(simtest::readText(_dir / "err"), "watch running"); }, 10))
        << simtest::readText(_dir / "err");
    auto start = std::chrono::steady_clock::now();
    kill(run, SIGTERM);
    int status = 0;
    waitpid(run, &status, 0);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 128 + SIGTERM) << "sleep was stopped with the same signal";

    std::string log = simtest::readText(state() + "/simd.log");
    EXPECT_TRUE(contains(log, "stopping")) << log;
    int daemon = 0;
    ASSERT_EQ(sscanf(log.c_str() + log.find("starting (pid "), "starting (pid %d)", &daemon), 1);
    EXPECT_NE(kill(daemon, 0), 0) << "quillset-simd is gone";
    EXPECT_FALSE(sim::fileExists(state() + "/bus/system.sock"));
}

TEST_F(SimCliTest, SettingsAreReadAndWrittenFromTheCommandLine) {
    ASSERT_EQ(inWatch("true", {"--fresh"}).status, 0);
    struct Case {
        const char *type;
        const char *value;
        const char *shown;
    };
    const Case cases[] = {{"bool", "true", "true"},
                          {"bool", "0", "false"},
                          {"int", "-12", "-12"},
                          {"double", "0.25", "0.25"},
                          {"string", "de_DE.UTF-8", "de_DE.UTF-8"},
                          {"string", "", ""}};
    for (const Case &c : cases) {
        SCOPED_TRACE(std::string(c.type) + " " + c.value);
        CommandResult r = quillsetSim({"--state", state(), "set", "db/test/key", c.type, c.value});
        ASSERT_EQ(r.status, 0) << r.err;
        // --state is also accepted after the subcommand, and from the environment.
        r = quillsetSim({"get", "db/test/key", "--state=" + state()});
        EXPECT_EQ(r.out, std::string(c.shown) + "\n");
        r = quillsetSim({"get", "db/test/key"}, {{"QUILLSET_STATE", state()}});
        EXPECT_EQ(r.out, std::string(c.shown) + "\n");
    }
    EXPECT_EQ(quillsetSim({"--state", state(), "get", "db/setting/debug_mode"}).out, "false\n");

    CommandResult r = quillsetSim({"--state", state(), "set", "db/test/key", "int", "12x"});
    EXPECT_EQ(r.status, 1);
    EXPECT_TRUE(contains(r.err, "not '12x'; nothing was written")) << r.err;
    EXPECT_EQ(quillsetSim({"--state", state(), "get", "db/test/key"}).out, "\n")
        << "old value kept";

    r = quillsetSim({"--state", state(), "set", "db/test/key", "colour", "red"});
    EXPECT_TRUE(contains(r.err, "unknown type 'colour' (bool, int, double or string)")) << r.err;
    r = quillsetSim({"--state", state(), "set", "../key", "int", "1"});
    EXPECT_TRUE(contains(r.err, "invalid key '../key'")) << r.err;
    r = quillsetSim({"--state", state(), "set", "db/test/key", "int"});
    EXPECT_EQ(r.status, 2);
    EXPECT_TRUE(contains(r.err, "set takes KEY TYPE VALUE")) << r.err;

    r = quillsetSim({"--state", state(), "get", "db/test/none"});
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(r.out, "");
    EXPECT_TRUE(contains(r.err, "no setting db/test/none")) << r.err;
    simtest::writeText(state() + "/settings/db/test/key", "int:");
    r = quillsetSim({"--state", state(), "get", "db/test/key"});
    EXPECT_EQ(r.status, 1);
    EXPECT_TRUE(contains(r.err, "corrupt value")) << r.err;
}

TEST_F(SimCliTest, TheLanguageEventWritesTheLanguageSetting) {
    ASSERT_EQ(inWatch("true", {"--fresh"}).status, 0);
    struct Case {
        const char *lang;
        const char *setting;
    };
    const Case cases[] = {{"de", "de_DE.UTF-8"},
                          {"en", "en_US.UTF-8"},
                          {"ko", "ko_KR.UTF-8"},
                          {"de_AT", "de_AT.UTF-8"},
                          {"fr_FR.UTF-8", "fr_FR.UTF-8"}};
    for (const Case &c : cases) {
        CommandResult r = quillsetSim({"--state", state(), "event", "language", c.lang});
        ASSERT_EQ(r.status, 0) << r.err;
        EXPECT_EQ(quillsetSim({"--state", state(), "get", "db/menu_widget/language"}).out,
                  std::string(c.setting) + "\n");
    }
    for (const char *bad : {"german", "d", "de_de", "de_DE.latin1"}) {
        CommandResult r = quillsetSim({"--state", state(), "event", "language", bad});
        EXPECT_EQ(r.status, 1) << bad;
        EXPECT_TRUE(contains(r.err, "is not a language such as de")) << r.err;
    }
    EXPECT_EQ(quillsetSim({"--state", state(), "get", "db/menu_widget/language"}).out,
              "fr_FR.UTF-8\n");
}

TEST_F(SimCliTest, ProfilesAreListedWithTheirDescriptions) {
    CommandResult r = quillsetSim({"profiles"});
    ASSERT_EQ(r.status, 0) << r.err;
    std::istringstream lines(r.out);
    std::string line;
    bool sawDefault = false;
    while (std::getline(lines, line)) {
        EXPECT_FALSE(contains(line, "(invalid")) << line;
        sawDefault = sawDefault || line.rfind("default ", 0) == 0;
    }
    EXPECT_TRUE(sawDefault) << r.out;
    EXPECT_TRUE(contains(r.out, "A Kesta with LTE and eSIM")) << r.out;
}

TEST_F(SimCliTest, UsageAndLaunchesAreJsonLines) {
    ASSERT_EQ(inWatch("true", {"--fresh"}).status, 0);
    {
        sim::UsageDb db;
        std::string error;
        ASSERT_TRUE(db.open(state(), &error)) << error;
        ASSERT_TRUE(db.addRecord("content://log", "com.nerova.quillset", "F", "e", "v", &error));
        ASSERT_GT(db.addJournal("launch", "com.nerova.esim-settings", "",
                                R"({"from": "about", "n": "2"})", 0, 0, 0, &error),
                  0);
    }
    CommandResult r = quillsetSim({"usage", "--state", state()});
    ASSERT_EQ(r.status, 0) << r.err;
    std::vector<nlohmann::json> usage = jsonLines(r.out);
    ASSERT_EQ(usage.size(), 1u);
    EXPECT_EQ(usage[0]["feature"], "F");
    EXPECT_EQ(usage[0]["uri"], "content://log");

    r = quillsetSim({"launches", "--state", state()});
    ASSERT_EQ(r.status, 0) << r.err;
    std::vector<nlohmann::json> launches = jsonLines(r.out);
    ASSERT_EQ(launches.size(), 1u);
    EXPECT_EQ(launches[0]["app_id"], "com.nerova.esim-settings");
    EXPECT_EQ(launches[0]["extra_data"], (nlohmann::json{{"from", "about"}, {"n", "2"}}))
        << "extra data is shown as the object it is";
}
