// Security end to end: debugging is turned on only by the confirmation popup's OK and never
// while the device policy restricts it; the watch's state files are writable by their owner
// only; the private bus lets no other user in.

#include <dbus/dbus.h>
#include <gtest/gtest.h>

#include <ftw.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

#include "support/SimulatedWatch.h"

using nlohmann::json;

namespace {

const char *const kDebugKey = "db/setting/debug_mode";

// The key file as it stands: a write replaces the file, so any write changes this.
std::string keyFile(const SimulatedWatch &watch) {
    struct stat st;
    std::string path = watch.stateDir() + "/settings/" + kDebugKey;
    if (stat(path.c_str(), &st) != 0)
        return "missing";
    return std::to_string(st.st_ino) + "@" + std::to_string(st.st_mtim.tv_sec) + "." +
           std::to_string(st.st_mtim.tv_nsec);
}

const std::string kTapDebugging = "tap WDS_ST_MBODY_DEBUGGING_ABB\n";

}  // namespace

TEST(SecurityE2E, OnlyTheConfirmationOkTurnsDebuggingOn) {
    SimulatedWatch watch(profileWith("default", [](json &) {}));
    watch.seed();
    std::string before = keyFile(watch);
    // Declining, going back, a second launch, the other switch and a language change.
    auto run = watch.drive(
        kTapDebugging + "press WDS_ST_BUTTON_CANCEL\n" + kTapDebugging + "back\n" +
        "sim event launch\n"
        "tap WDS_ST_MBODY_REPORT_DIAGNOSTIC_AND_USAGE_INFO_ABB\npress WDS_ST_BUTTON_OK_ABB\n"
        "sim event language de\nsim event language en\nwait 200\ndump\n");
    ASSERT_EQ(run.status, 0) << run.errors;
    EXPECT_EQ(rowWithLabel(run.dumps.at(0), "Debugging")["check"], false);
    EXPECT_TRUE(run.dumps[0]["popup"].is_null()) << "the popup closed";
    EXPECT_EQ(keyFile(watch), before) << "the key was written";
    // OK turns it on; a tap turns it off without asking.
    run = watch.drive(kTapDebugging + "press WDS_ST_BUTTON_OK_ABB\nwait 200\ndump\n" +
                      kTapDebugging + "wait 200\ndump\n");
    ASSERT_EQ(run.status, 0) << run.errors;
    ASSERT_EQ(run.dumps.size(), 2u);
    EXPECT_EQ(rowWithLabel(run.dumps[0], "Debugging")["check"], true);
    EXPECT_EQ(rowWithLabel(run.dumps[1], "Debugging")["check"], false);
    EXPECT_TRUE(run.dumps[1]["popup"].is_null());
}

TEST(SecurityE2E, NoEntryPointChangesDebuggingWhileThePolicyRestrictsIt) {
    const struct {
        const char *what;
        bool debugging;
        int allowUsbDebugging;
        bool changeAllowed;
    } cases[] = {
        {"changes restricted, debugging off", false, 0, false},
        {"changes restricted, debugging on", true, 0, false},
        {"menu restricted, debugging off", false, 1, true},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.what);
        SimulatedWatch watch(profileWith("default", [&c](json &p) {
            p["settings"][kDebugKey] = c.debugging;
            p["policy"]["allow_usb_debugging"] = c.allowUsbDebugging;
            p["policy"]["change_allowed"] = c.changeAllowed;
        }));
        watch.seed();
        std::string before = keyFile(watch);
        // Tapping the row, confirming whatever shows, tapping and going back, a second
        // launch, tapping again. A disabled row offers nothing to confirm.
        bool disabled = c.allowUsbDebugging == 1;
        std::string answer = disabled ? "" : "press WDS_ST_BUTTON_OK_ABB\n";
        std::string leave = disabled ? "" : "back\n";
        auto run =
            watch.drive(kTapDebugging + "dump\n" + answer + kTapDebugging + "wait 100\ndump\n" +
                        leave + "sim event launch\n" + kTapDebugging + "wait 200\ndump\n" + leave);
        ASSERT_EQ(run.status, 0) << run.errors;
        ASSERT_EQ(run.dumps.size(), 3u);
        const json &first = run.dumps[0];
        if (disabled) {
            EXPECT_EQ(rowWithLabel(first, "Debugging")["disabled"], true);
            EXPECT_TRUE(first["popup"].is_null());
        } else {
            ASSERT_TRUE(first["popup"].is_object());
            EXPECT_EQ(first["popup"]["text"], "Security policy restricts changing settings.");
        }
        EXPECT_EQ(rowWithLabel(run.dumps[2], "Debugging")["check"], c.debugging);
        EXPECT_EQ(keyFile(watch), before) << "the key was written";
    }
}

namespace {

std::vector<std::string> g_writable;

int checkEntry(const char *path, const struct stat *st, int type, struct FTW *) {
    if (type != FTW_F && type != FTW_D && type != FTW_DP)
        return 0;
    if (S_ISSOCK(st->st_mode))
        return 0;
    if (st->st_mode & (S_IWGRP | S_IWOTH))
        g_writable.push_back(path);
    return 0;
}

}  // namespace

TEST(SecurityE2E, StateFilesAreWritableByTheirOwnerOnlyWhateverTheUmask) {
    SimulatedWatch watch("default");
    std::string script = watch.stateDir() + "-script.txt";
    std::ofstream(script)
        << "tap WDS_ST_MBODY_REPORT_DIAGNOSTIC_AND_USAGE_INFO_ABB\n"
           "press WDS_ST_BUTTON_OK_ABB\n"
           "tap WDS_ST_TMBODY_DEVICE_INFORMATION\nwait 200\nback\n"
           "tap WDS_ST_MBODY_DEBUGGING_ABB\npress WDS_ST_BUTTON_OK_ABB\nwait 200\n";
    std::string cmd =
        "env -u DBUS_SYSTEM_BUS_ADDRESS -u QUILLSET_STATE sh -c 'umask 000 && exec \"" +
        SimulatedWatch::binDir() + "/quillset-sim\" run --profile default --state \"" +
        watch.stateDir() + "\" -- quillset-drive --script \"" + script + "\"' >/dev/null 2>&1";
    ASSERT_EQ(system(cmd.c_str()), 0);
    unlink(script.c_str());
    g_writable.clear();
    ASSERT_EQ(nftw(watch.stateDir().c_str(), checkEntry, 16, FTW_PHYS), 0);
    std::string list;
    for (const std::string &path : g_writable)
        list += "\n  " + path;
    EXPECT_TRUE(g_writable.empty()) << "writable by others:" << list;
    struct stat st;
    ASSERT_EQ(stat((watch.stateDir() + "/bus").c_str(), &st), 0);
    EXPECT_EQ(st.st_mode & 0777, 0700u) << "the bus socket's directory";
    ASSERT_EQ(stat((watch.stateDir() + "/usage.db").c_str(), &st), 0) << "usage was recorded";
}

namespace {

// Connects to the bus and says hello; the error when the bus refuses.
bool busAccepts(const std::string &address, std::string *why) {
    DBusError error;
    dbus_error_init(&error);
    DBusConnection *connection = dbus_connection_open_private(address.c_str(), &error);
    bool ok = connection && dbus_bus_register(connection, &error);
    if (!ok && why)
        *why = error.message ? error.message : "refused";
    dbus_error_free(&error);
    if (connection) {
        dbus_connection_close(connection);
        dbus_connection_unref(connection);
    }
    return ok;
}

}  // namespace

TEST(SecurityE2E, ThePrivateBusLetsOnlyItsOwnUserIn) {
    if (geteuid() != 0)
        GTEST_SKIP() << "another user can only be tried as root";
    SimulatedWatch watch("default");
    std::string state = watch.stateDir();
    std::string sim = SimulatedWatch::binDir() + "/quillset-sim";
    unsetenv("DBUS_SYSTEM_BUS_ADDRESS");
    unsetenv("QUILLSET_STATE");
    pid_t running = fork();
    ASSERT_GE(running, 0);
    if (running == 0) {
        execl(sim.c_str(), sim.c_str(), "run", "--profile", "default", "--state", state.c_str(),
              "--", "sleep", "30", nullptr);
        _exit(127);
    }
    std::string socket = state + "/bus/system.sock";
    std::string address = "unix:path=" + socket;
    bool up = false;
    for (int i = 0; i < 200 && !up; ++i) {
        usleep(50000);
        up = access(socket.c_str(), F_OK) == 0 && busAccepts(address, nullptr);
    }
    ASSERT_TRUE(up) << "the watch's bus did not come up";

    // Open every door on the way, so that only the bus itself can say no.
    for (const std::string &path : {state, state + "/bus"})
        chmod(path.c_str(), 0711);
    chmod(socket.c_str(), 0777);
    pid_t other = fork();
    ASSERT_GE(other, 0);
    if (other == 0) {
        if (setgid(65534) != 0 || setuid(65534) != 0)
            _exit(3);
        _exit(busAccepts(address, nullptr) ? 1 : 0);
    }
    int status = 0;
    waitpid(other, &status, 0);
    kill(running, SIGTERM);
    waitpid(running, nullptr, 0);
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_NE(WEXITSTATUS(status), 3) << "could not become another user";
    EXPECT_EQ(WEXITSTATUS(status), 0) << "another user got onto the watch's bus";
}
