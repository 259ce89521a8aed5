// The About list end to end: the application on a simulated watch, driven as a person would,
// checked on screen and in what the watch recorded (usage records, launches).

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

#include "support/SimulatedWatch.h"

using nlohmann::json;

namespace {

const std::string kConsent = "Report diagnostic and usage info";

std::vector<std::string> features(const std::vector<json> &usage) {
    std::vector<std::string> out;
    for (const auto &row : usage)
        out.push_back(row.value("kind", "") == "call" ? "call:" + row.value("method", "")
                                                      : row.value("feature", ""));
    return out;
}

}  // namespace

TEST(AboutListE2E, ASecondLaunchAddsNoPageAndBackEndsTheApplication) {
    SimulatedWatch watch("default");
    auto run = watch.drive("sim event launch\nwait 200\ndump\nback\ndump\n");
    ASSERT_EQ(run.dumps.size(), 1u);
    const json &screen = run.dumps[0];
    EXPECT_EQ(screen["page"], "WDS_ST_BODY_ABOUT_KESTA_ABB");
    EXPECT_EQ(screen["depth"], 1) << "a second launch adds no page";
    EXPECT_NE(run.errors.find("not run:\n  line 5: dump"), std::string::npos) << run.errors;
    // Every start records that the page was opened.
    EXPECT_EQ(features(watch.usage()), std::vector<std::string>{"S003"});
}

TEST(AboutListE2E, ConsentIsGivenThroughTheLegalTextAndWithdrawnDirectly) {
    SimulatedWatch watch("default");
    auto run = watch.drive("tap " + kConsent +
                           "\ndump\npress MIDS_QAPPS_BUTTON_SEE_ALL\ndump\npress OK\ndump\n"
                           "tap " +
                           kConsent + "\ndump\n");
    ASSERT_EQ(run.status, 0) << run.errors;
    ASSERT_EQ(run.dumps.size(), 4u);
    EXPECT_EQ(run.dumps[0]["popup"]["buttons"], json({"See all", "Cancel", "OK"}));
    // See all opens the full text over the popup, which stays.
    EXPECT_NE(run.dumps[1]["popup"], nullptr);
    auto launches = watch.launches();
    ASSERT_GE(launches.size(), 1u);
    EXPECT_EQ(launches[0]["app_id"], "com.nerova.quillset.report");
    EXPECT_EQ(launches[0]["launch_mode"], 1);
    // OK gives the consent; the switch follows.
    EXPECT_EQ(rowWithLabel(run.dumps[2], kConsent)["check"], true);
    EXPECT_EQ(run.dumps[3]["popup"], nullptr);
    EXPECT_EQ(rowWithLabel(run.dumps[3], kConsent)["check"], false);
    // The log provider is told each time.
    EXPECT_EQ(features(watch.usage()),
              (std::vector<std::string>{"S003", "call:Select", "call:Select"}));
    auto usage = watch.usage();
    EXPECT_EQ(usage[1]["bus_name"], "com.nerova.logmgr");
    EXPECT_EQ(usage[1]["path"], "/com/nerova/logmgr/log/provider/report_app_status_survey");
    EXPECT_EQ(usage[1]["interface"], "com.nerova.logmgr.log.provider.use_app_feature_survey");
}

TEST(AboutListE2E, ResetLinkLaunchesTheResetPageAndEndsThePreviousLaunch) {
    SimulatedWatch watch("default");
    auto run = watch.drive("tap Reset Kesta\nwait 1100\ntap Reset Kesta\n");
    ASSERT_EQ(run.status, 0) << run.errors;
    auto launches = watch.launches();
    ASSERT_EQ(launches.size(), 3u);
    EXPECT_EQ(launches[0]["request"], "launch");
    EXPECT_EQ(launches[0]["app_id"], "com.nerova.quillset.reset");
    EXPECT_EQ(launches[0]["launch_mode"], 1);
    EXPECT_EQ(launches[1]["request"], "terminate");
    EXPECT_EQ(launches[1]["launch_id"], launches[0]["id"]);
    EXPECT_EQ(launches[2]["request"], "launch");
    EXPECT_EQ(features(watch.usage()), (std::vector<std::string>{"S003", "S516", "S516"}));
}

TEST(AboutListE2E, TouchesRightAfterALaunchAreIgnored) {
    SimulatedWatch watch("default");
    auto run = watch.drive(
        "tap Nerova Tessid Privacy Notice\ntap Debugging\ndump\nwait 1100\ntap Debugging\ndump\n");
    ASSERT_EQ(run.status, 0) << run.errors;
    ASSERT_EQ(run.dumps.size(), 2u);
    EXPECT_EQ(run.dumps[0]["popup"], nullptr);
    EXPECT_NE(run.dumps[1]["popup"], nullptr);
    auto launches = watch.launches();
    ASSERT_EQ(launches.size(), 1u);
    EXPECT_EQ(launches[0]["app_id"], "com.nerova.tessid.license-viewer");
    EXPECT_EQ(launches[0]["operation"], "http://tizen.org/appcontrol/operation/default");
    EXPECT_EQ(launches[0]["extra_data"], json({{"setting", "setting"}}));
}

// On the watch the log provider and the application manager are processes of their own; the
// application only hands them messages. Its process maps no SQLite, while what it sent arrives
// at the services daemon in the order it was sent.
TEST(AboutListE2E, TheApplicationMapsNoDatabaseAndItsRecordsAndLaunchesArriveInOrder) {
    SimulatedWatch watch("default");
    const std::string dir = watch.stateDir(), out = dir + "-drive.txt", maps = dir + "-maps.txt",
                      script = dir + "-drive-script.txt", shell = dir + "-drive.sh";
    // The reset page, the device information page, the reset page again (which ends the first);
    // the maps are read once all of it has been sent, while the application still runs.
    std::ofstream(script) << "tap Reset Kesta\nwait 1100\ntap Device information\nwait 300\n"
                             "back\ntap Reset Kesta\nwait 1100\ndump\nwait 3000\n";
    std::ofstream(shell) << "quillset-drive <'" << script << "' >'" << out << "' & p=$!\n"
                         << "for i in $(seq 200); do grep -q page '" << out
                         << "' && break; sleep 0.05; done\n"
                         << "cat /proc/$p/maps >'" << maps << "'\nwait $p\n";
    int status = -1;
    std::string said = watch.sim("run --profile default -- sh '" + shell + "'", &status);
    std::string mapped = readFile(maps);
    for (const std::string &file : {out, maps, script, shell})
        std::remove(file.c_str());
    ASSERT_EQ(status, 0) << said;
    ASSERT_NE(mapped.find("libelementary"), std::string::npos) << "the maps were read:\n" << said;
    EXPECT_EQ(mapped.find("libsqlite3"), std::string::npos) << mapped;

    // Records and requests in the order the daemon kept them.
    std::vector<std::pair<double, std::string>> kept;
    for (const auto &row : watch.usage())
        kept.emplace_back(row["time"].get<double>(), row.value("feature", ""));
    for (const auto &row : watch.launches())
        kept.emplace_back(row["time"].get<double>(),
                          row.value("request", "") + " " + row.value("app_id", ""));
    std::stable_sort(kept.begin(), kept.end(),
                     [](const auto &a, const auto &b) { return a.first < b.first; });
    std::vector<std::string> order;
    for (const auto &entry : kept)
        order.push_back(entry.second);
    EXPECT_EQ(order, (std::vector<std::string>{"S003", "launch com.nerova.quillset.reset", "S516",
                                               "ST15", "terminate com.nerova.quillset.reset",
                                               "launch com.nerova.quillset.reset", "S516"}));
    EXPECT_EQ(watch.platformLog().find("not delivered"), std::string::npos);
}
