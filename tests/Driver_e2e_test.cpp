// The script driver as its users meet it: failures that name their line, string ids matched
// in the current language, and the tour of every screen.

#include <gtest/gtest.h>

#include <dirent.h>
#include <sys/stat.h>

#include <string>

#include "support/SimulatedWatch.h"

TEST(DriverE2E, AFailedCommandStopsTheScriptAndNamesItsLine) {
    SimulatedWatch watch("default");
    auto run = watch.drive("dump\n# a comment\ntap No such row\ndump\n");
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.dumps.size(), 1u);
    EXPECT_NE(run.errors.find("line 3: tap No such row: no such row on screen"), std::string::npos)
        << run.errors;

    run = watch.drive("expect Über Kesta\n");
    EXPECT_EQ(run.status, 1);
    EXPECT_NE(run.errors.find("line 1: expect"), std::string::npos);

    run = watch.drive("jump\n");
    EXPECT_EQ(run.status, 1);
    EXPECT_NE(run.errors.find("unknown command"), std::string::npos);
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
