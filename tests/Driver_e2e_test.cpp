// The script driver as its users meet it: failures that name their line, string ids matched
// in the current language, and the tour of every screen.

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <string>

#include "support/SimulatedWatch.h"

#include <dirent.h>

#include <algorithm>
#include <vector>

namespace {

// The tour's n-th popup of the main list ("main.ROW.popup"), by row: "" when there is none.
std::string findPopupShot(const std::string &dir, size_t n) {
    std::vector<std::pair<int, std::string>> popups;
    if (DIR *d = opendir(dir.c_str())) {
        while (dirent *entry = readdir(d)) {
            std::string name = entry->d_name;
            const std::string suffix = ".popup.png";
            if (name.rfind("main.", 0) != 0 || name.size() <= suffix.size() + 5 ||
                name.compare(name.size() - suffix.size(), suffix.size(), suffix) != 0)
                continue;
            std::string base = name.substr(0, name.size() - 4);
            popups.emplace_back(atoi(base.c_str() + 5), base);
        }
        closedir(d);
    }
    std::sort(popups.begin(), popups.end());
    return n < popups.size() ? popups[n].second : "";
}

}  // namespace

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

TEST(DriverE2E, TourCapturesEveryScreenWithAPictureAndADump) {
    SimulatedWatch watch("default");
    std::string dir = watch.stateDir() + "/tour";
    auto run = watch.drive("tour " + dir + "\n");
    ASSERT_EQ(run.status, 0) << run.errors;
    // The two popups of the list, whatever rows come before their switches.
    std::vector<std::string> screens = {"main"};
    for (size_t n : {0, 1}) {
        std::string popup = findPopupShot(dir, n);
        ASSERT_FALSE(popup.empty()) << "popup " << n << " not captured";
        screens.push_back(popup);
    }
    struct stat st;
    for (const std::string &screen : screens) {
        EXPECT_EQ(stat((dir + "/" + screen + ".png").c_str(), &st), 0) << screen;
        EXPECT_GT(st.st_size, 1000) << screen;
        EXPECT_EQ(stat((dir + "/" + screen + ".json").c_str(), &st), 0) << screen;
    }
    // Touring changes nothing on the watch: the popups were closed, not answered.
    EXPECT_EQ(watch.sim("get db/setting/debug_mode"), "false\n");
    EXPECT_EQ(watch.sim("get db/wms/user_agreement/errorlog"), "false\n");
}
