// Controlling a running watch from a second terminal: every kind of change quillset-sim can
// make reaches the open screen without a restart. Each change comes from another process.

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "support/SimulatedWatch.h"

using nlohmann::json;

namespace {

json rowAt(const json &dump, int index) {
    for (const json &row : dump.at("items"))
        if (row.at("index") == index)
            return row;
    return nullptr;
}

int indexOf(const json &dump, const std::string &label) {
    json row = rowWithLabel(dump, label);
    return row.is_null() ? -1 : row.at("index").get<int>();
}

std::string valueOf(const json &dump, int index) {
    json row = rowAt(dump, index);
    return row.is_null() ? "(no row)" : row["texts"].value("elm.text.1", "");
}

}  // namespace

TEST(LiveControlE2E, EveryControlChangesTheOpenScreen) {
    SimulatedWatch watch("default");
    std::string profiles = watch.stateDir() + "/profiles.json";
    std::ofstream(profiles) << R"([{"name": "Roam Away", "kind": 2, "state": 1}])";
    // After each step: what the rows say, and a picture of what the screen shows.
    const std::vector<std::string> steps = {
        "bezel 7",  // both switches in view
        "sim set db/setting/debug_mode bool true",
        "sim set db/wms/user_agreement/errorlog bool true",
        "sim event policy usb-debugging 1",
        "sim event language de",
        "sim event launch\nwait 200",
        "bezel -7\ntap WDS_ST_TMBODY_DEVICE_INFORMATION\nwait 1700\nbezel 1",
        "sim event sim-refresh --msisdn +447700900999\nwait 1700",
        "sim event esim 1 2 --profiles " + profiles + "\nwait 1700",
    };
    std::string script;
    std::vector<std::string> shots;
    for (size_t i = 0; i < steps.size(); ++i) {
        shots.push_back(watch.stateDir() + "/live" + std::to_string(i) + ".png");
        script += steps[i] + "\ndump\nshot " + shots.back() + "\n";
    }
    auto run = watch.drive(script);
    ASSERT_EQ(run.status, 0) << run.errors;
    ASSERT_EQ(run.dumps.size(), steps.size()) << run.errors;
    const auto &d = run.dumps;
    auto changedOnScreen = [&shots](size_t step) {
        return readFile(shots.at(step)) != readFile(shots.at(step - 1));
    };

    const int debugging = indexOf(d[0], "Debugging");
    const int consent = indexOf(d[0], "Report diagnostic and usage info");
    ASSERT_GE(debugging, 0);
    ASSERT_GE(consent, 0);
    EXPECT_EQ(rowAt(d[0], debugging)["check"], false);

    // Settings written by another process turn the switches.
    EXPECT_EQ(rowAt(d[1], debugging)["check"], true);
    EXPECT_TRUE(changedOnScreen(1));
    EXPECT_EQ(rowAt(d[2], consent)["check"], true);
    EXPECT_TRUE(changedOnScreen(2));

    // Device policy greys the debugging row out.
    EXPECT_FALSE(rowAt(d[2], debugging)["disabled"].get<bool>());
    EXPECT_TRUE(rowAt(d[3], debugging)["disabled"].get<bool>());
    EXPECT_TRUE(changedOnScreen(3));

    // A new language relabels the open list in place, on screen too.
    EXPECT_EQ(rowAt(d[4], 1)["texts"]["elm.text"], "Geräteinformationen");
    EXPECT_EQ(rowAt(d[4], consent)["texts"]["elm.text"], "Diagnose- und Nutzungsdaten senden");
    EXPECT_TRUE(changedOnScreen(4));

    // A second launch brings the running application forward as it is: no second page.
    EXPECT_EQ(d[5]["depth"], 1);
    EXPECT_EQ(d[5]["items"], d[4]["items"]);
    EXPECT_FALSE(changedOnScreen(5));

    // On the status page, a SIM refresh brings the new number and an eSIM event the new
    // profile.
    const int number = indexOf(d[6], "Telefonnummer der Kesta");
    const int esim = indexOf(d[6], "eSIM-Profil der Kesta");
    ASSERT_GE(number, 0) << d[6].dump();
    ASSERT_GE(esim, 0) << d[6].dump();
    EXPECT_EQ(valueOf(d[6], number), "+44 7700 900123");
    EXPECT_EQ(valueOf(d[7], number), "+44 7700 900999");
    EXPECT_TRUE(changedOnScreen(7));
    EXPECT_EQ(valueOf(d[7], esim), "Kite & Co <Travel>");
    EXPECT_EQ(valueOf(d[8], esim), "Roam Away");
    EXPECT_TRUE(changedOnScreen(8));
}
