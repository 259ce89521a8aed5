// Security end to end: debugging is turned on only by the confirmation popup's OK and never
// while the device policy restricts it. (state_security_test.sh checks the watch's files and
// bus against other users.)

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <string>

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
