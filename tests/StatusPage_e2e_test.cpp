// The device status page end to end: live SIM and eSIM events and the applications the page
// launches. (Which rows each kind of watch shows, and their values, are in Pages_test.)

#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

#include "support/SimulatedWatch.h"

using nlohmann::json;

namespace {

const std::string kOpen = "tap WDS_ST_TMBODY_DEVICE_INFORMATION\n";

}  // namespace

TEST(StatusPageE2E, SimRefreshAndEsimEventsUpdateTheOpenPage) {
    SimulatedWatch watch(profileWith("default", [](json &p) { p["latency"] = json::object(); }));
    std::string profiles = watch.stateDir() + "/profiles.json";
    std::ofstream(profiles) << R"([{"name": "Roam Away", "kind": 2, "state": 1},
                                   {"name": "Kite & Co <Travel>", "kind": 2, "state": 0}])";
    std::string ignored = watch.stateDir() + "/ignored.json";
    std::ofstream(ignored) << R"([{"name": "Never Asked For", "kind": 2, "state": 1}])";
    auto run = watch.drive(kOpen +
                           "wait 300\ndump\nsim event sim-refresh --msisdn +447700900999\n"
                           "wait 300\ndump\nsim event esim 1 2 --profiles " +
                           profiles + "\nwait 300\ndump\nsim event esim 1 4 --profiles " + ignored +
                           "\nsim event esim 0 1 --profiles " + ignored + "\nwait 300\ndump\n");
    ASSERT_EQ(run.status, 0) << run.errors;
    ASSERT_EQ(run.dumps.size(), 4u);
    EXPECT_EQ(rowValue(run.dumps[0], "Kesta phone number"), "+44 7700 900123");
    EXPECT_EQ(rowValue(run.dumps[1], "Kesta phone number"), "+44 7700 900999");
    // The profile's name is shown literally, tags and all.
    EXPECT_EQ(rowValue(run.dumps[1], "Kesta eSIM profile"), "Kite & Co <Travel>");
    EXPECT_EQ(rowValue(run.dumps[2], "Kesta eSIM profile"), "Roam Away");
    // Other events ask for nothing: the new list is never fetched.
    EXPECT_EQ(rowValue(run.dumps[3], "Kesta eSIM profile"), "Roam Away");
}

// Five taps in a row on the serial number (a tap elsewhere starts the count again) open the
// key-string service on their own, leaving the list to take the next tap at once; the eSIM
// row's launch holds the list's input for a second and the next one ends what it opened.
TEST(StatusPageE2E, TheSerialNumbersFifthTapAndTheEsimRowLaunchTheirApplications) {
    SimulatedWatch watch("default");
    std::string four =
                    "tap Serial number\ntap Serial number\ntap Serial number\ntap Serial number\n",
                five = four + "tap Serial number\n", esim = "tap Kesta eSIM profile\n";
    auto run = watch.drive(kOpen + four + "tap Bluetooth address\n" + four + esim + "wait 1100\n" +
                           five + five + esim + esim);
    ASSERT_EQ(run.status, 0) << run.errors;
    auto launches = watch.launches();
    std::vector<std::string> journal;
    for (const auto &entry : launches)
        journal.push_back(entry.value("request", "") + " " + entry.value("app_id", ""));
    EXPECT_EQ(journal,
              std::vector<std::string>(
                  {"launch com.nerova.esim-settings", "launch com.nerova.tizenvelkeystring",
                   "launch com.nerova.tizenvelkeystring", "terminate com.nerova.esim-settings",
                   "launch com.nerova.esim-settings"}));
    ASSERT_EQ(launches.size(), 5u);
    EXPECT_EQ(launches[0]["extra_data"], json({{"mode", "profile_list"}}));
    EXPECT_EQ(launches[0]["launch_mode"], 1);
    EXPECT_EQ(launches[3]["launch_id"], launches[0]["id"]);
    EXPECT_EQ(launches[1]["operation"], "http://tizen.org/appcontrol/operation/send_text");
    EXPECT_TRUE(launches[1]["extra_data"].empty()) << launches[1].dump();
    bool surveyed = false;
    for (const auto &row : watch.usage())
        surveyed = surveyed || row.value("feature", "") == "ST15";
    EXPECT_TRUE(surveyed);
}
