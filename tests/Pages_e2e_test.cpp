// The information pages end to end: what crosses a process (the launch journal, a language
// change sent from outside).

#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

#include "support/SimulatedWatch.h"

using nlohmann::json;

TEST(PagesE2E, ClientSettingsRowLaunchesTheClientInGroupMode) {
    SimulatedWatch watch("default");
    auto run = watch.drive("tap Software information\ntap Tessid Configure\nwait 200\n");
    ASSERT_EQ(run.status, 0) << run.errors;
    auto launches = watch.launches();
    ASSERT_EQ(launches.size(), 1u);
    EXPECT_EQ(launches[0]["app_id"], "com.nerova.tessid.ravelclient.settings");
    EXPECT_EQ(launches[0]["launch_mode"], 1);
}

TEST(PagesE2E, LanguageChangeReachesTheOpenPagesButNotTheLicenceTitle) {
    SimulatedWatch watch("india");
    auto run = watch.drive(
        "tap Battery information\nsim event language de\nwait 300\ndump\nback\n"
        "tap WDS_ST_HEADER_REGULATORY_INFO_ABB\nsim event language en\nwait 300\ndump\n"
        "sim event language de\nwait 300\ndump\nback\n"
        "sim event language en\nwait 300\n"
        "tap WDS_ST_HEADER_OPEN_SOURCE_LICENCES_ABB\nsim event language de\nwait 300\ndump\n");
    ASSERT_EQ(run.status, 0) << run.errors;
    ASSERT_EQ(run.dumps.size(), 4u);
    EXPECT_EQ(rowLabels(run.dumps[0]),
              (std::vector<std::string>{"Akku-Informationen", "Nennwerte", "Akkukapazität"}));
    EXPECT_EQ(run.dumps[1]["layout"]["text.title"], "Regulatory information");
    EXPECT_EQ(run.dumps[2]["layout"]["text.title"], "Regulatorische Informationen");
    // The licence title keeps the language the page was opened in.
    EXPECT_EQ(run.dumps[3]["layout"]["text.title"], "Open source licences");
}
