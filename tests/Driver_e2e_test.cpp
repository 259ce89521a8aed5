// The script driver as its users meet it: failures that name their line, string ids matched
// in the current language, and the tour of every screen.

#include <gtest/gtest.h>

#include <dirent.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <sstream>
#include <string>

#include "support/SimulatedWatch.h"

namespace {

// What the driver said, without the line of the watch that ran it, nor the toolkit's when a
// busy machine wakes its animation timer late.
std::string driverSaid(const std::string &errors) {
    std::string said;
    std::istringstream lines(errors);
    for (std::string line; std::getline(lines, line);)
        if (line.rfind("quillset-sim: watch running", 0) != 0 &&
            line.rfind("ERROR: ecore_animator thread", 0) != 0)
            said += line + "\n";
    return said;
}

}  // namespace

TEST(DriverE2E, AFailedCommandStopsTheScriptWithOneLineSayingWhatIsThere) {
    const std::string missing = "/tmp/quillset-no-such-directory/x.png";
    const std::pair<std::string, std::string> cases[] = {
        // The script, and the start of the one line the driver says.
        {"dump\n# a comment\ntap No such row\ndump\n",
         "line 3: tap No such row: no such row on screen; its rows, in en_US.UTF-8: "
         "\"About Kesta\", \"Device information\", \"Model number\", \"Storage\""},
        {"sim event language de\nwait 200\ntap Device information\n",
         "line 3: tap Device information: no such row on screen; its rows, in de_DE.UTF-8: "
         "\"Über Kesta\", \"Geräteinformationen\""},
        {"expect Über Kesta\n",
         "line 1: expect Über Kesta: not on screen; the screen shows \"About Kesta\", "
         "\"Device information\", \"Model number: QX-M480\""},
        {"shot " + missing + "\n", "line 1: shot " + missing + ": cannot write " + missing +
                                       ": there is no directory /tmp/quillset-no-such-directory\n"},
        {"shot x.jpg\n", "line 1: shot x.jpg: a picture is a PNG file: its name ends in .png\n"},
        {"jump\n", "line 1: jump: unknown command"},
        {"sim event language eo\n", "line 1: sim event language eo: quillset-sim failed"},
    };
    for (const auto &[script, said] : cases) {
        SimulatedWatch watch("default");
        auto run = watch.drive(script);
        EXPECT_EQ(run.status, 1) << script;
        EXPECT_EQ(run.dumps.size(), script.rfind("dump", 0) == 0 ? 1u : 0u) << script;
        std::string lines = driverSaid(run.errors);
        // quillset-sim's refusal comes before the driver's line.
        if (script.rfind("sim ", 0) == 0)
            lines = lines.substr(lines.find("\nquillset-drive: ") + 1);
        EXPECT_EQ(lines.rfind("quillset-drive: " + said, 0), 0u) << lines;
        EXPECT_EQ(std::count(lines.begin(), lines.end(), '\n'), 1) << lines;
    }
}

TEST(DriverE2E, AScriptThatCannotRunToItsEndOrOutsideAWatchFails) {
    // Back on the About list ends the application: what is left is not run.
    SimulatedWatch watch("default");
    auto run = watch.drive("back\ndump\n");
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(driverSaid(run.errors),
              "quillset-drive: the application ended; not run:\n  line 2: dump\n");

    // Outside a watch, nothing starts.
    std::string out = watch.stateDir() + "-outside.txt";
    int status = system(("env -u QUILLSET_STATE -u DBUS_SYSTEM_BUS_ADDRESS " +
                         SimulatedWatch::binDir() + "/quillset-drive </dev/null >" + out + " 2>&1")
                            .c_str());
    EXPECT_EQ(WEXITSTATUS(status), 2);
    EXPECT_EQ(readFile(out),
              "quillset-drive: not inside a watch; start it in one: " + SimulatedWatch::binDir() +
                  "/quillset-sim run -- quillset-drive\n");
    unlink(out.c_str());
}

TEST(DriverE2E, StringIdsMatchInTheCurrentLanguage) {
    SimulatedWatch watch("default");
    auto run = watch.drive(
        "expect WDS_ST_BODY_ABOUT_KESTA_ABB\nsim event language de\nwait 200\n"
        "expect Über Kesta\nexpect WDS_ST_BODY_ABOUT_KESTA_ABB\ntap WDS_ST_MBODY_DEBUGGING_ABB\n"
        "press WDS_ST_BUTTON_CANCEL\ndump\n");
    ASSERT_EQ(run.status, 0) << run.errors;
    ASSERT_EQ(run.dumps.size(), 1u);
    EXPECT_EQ(rowLabels(run.dumps[0])[0], "Über Kesta");
    EXPECT_EQ(run.dumps[0]["popup"], nullptr);
}

TEST(DriverE2E, TourCapturesEveryScreenWithAPictureAndADumpAndChangesNothing) {
    SimulatedWatch watch("default");
    std::string dir = watch.stateDir() + "/tour";
    auto run = watch.drive("tour " + dir + "\n");
    ASSERT_EQ(run.status, 0) << run.errors;
    // The list and its two popups ("main.ROW.popup"), whatever rows come before the switches.
    int popups = 0;
    DIR *d = opendir(dir.c_str());
    ASSERT_NE(d, nullptr);
    while (dirent *entry = readdir(d)) {
        std::string name = entry->d_name;
        const std::string popup = ".popup.png";
        bool isPopup = name.size() > popup.size() &&
                       name.compare(name.size() - popup.size(), popup.size(), popup) == 0;
        if (name != "main.png" && !isPopup)
            continue;
        popups += isPopup;
        std::string base = dir + "/" + name.substr(0, name.size() - 4);
        struct stat st;
        EXPECT_EQ(stat((base + ".png").c_str(), &st), 0);
        EXPECT_GT(st.st_size, 1000) << name;
        EXPECT_EQ(stat((base + ".json").c_str(), &st), 0) << name;
    }
    closedir(d);
    EXPECT_EQ(popups, 2);
    // The popups were closed, not answered.
    EXPECT_EQ(watch.sim("get db/setting/debug_mode"), "false\n");
    EXPECT_EQ(watch.sim("get db/wms/user_agreement/errorlog"), "false\n");
}
