// The device status page end to end: each device profile's rows, live SIM and eSIM events, the
// device daemon over the bus, and the applications the page launches.

#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

#include "support/SimulatedWatch.h"

using nlohmann::json;

namespace {

const std::string kOpen = "tap WDS_ST_TMBODY_DEVICE_INFORMATION\n";

// The Korean carrier's and the China watch start in their own language; these tests read
// English labels.
const auto inEnglish = [](json &p) { p["settings"]["db/menu_widget/language"] = "en_US.UTF-8"; };

}  // namespace

TEST(StatusPageE2E, EachProfileListsTheRowsItsDeviceCallsForWithValues) {
    const std::string gsm = "IMEI|IMEI SV|ICCID|", radios = "Bluetooth address|Serial number|";
    const struct {
        const char *profile;
        std::string labels;  // after the title
    } cases[] = {
        {"default",
         "Kesta eSIM profile|eID|Kesta phone number|" + gsm + "Wi-Fi MAC address|" + radios},
        {"bt-only", "Kesta phone number|" + gsm + "Wi-Fi MAC address|" + radios},
        {"cdma", "Hardware version|Kesta phone number|PRL|ERI|MEID|Wi-Fi MAC address|" + radios},
        {"kr-carrier", "Hardware version|Kesta phone number|" + gsm +
                           "IMS registration status|Wi-Fi MAC address|" + radios +
                           "Barcode number|"},
        {"esim-standalone", "eID|Kesta phone number|" + gsm + "Wi-Fi MAC address|" + radios},
        {"china",
         "Kesta eSIM profile|eID|Kesta phone number|" + gsm + "WLAN MAC address|" + radios},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.profile);
        SimulatedWatch watch(profileWith(c.profile, inEnglish));
        auto run = watch.drive(kOpen + "dump\n");
        ASSERT_EQ(run.status, 0) << run.errors;
        const json &screen = run.dumps.at(0);
        std::string labels;
        for (const std::string &label : rowLabels(screen))
            labels += label + "|";
        EXPECT_EQ(labels, "Device information|" + c.labels);
        EXPECT_FALSE(screen["items"][0]["selectable"].get<bool>());
        for (size_t k = 1; k < screen["items"].size(); ++k) {
            const json &row = screen["items"][k];
            std::string text = row["texts"].value("elm.text.1", "");
            // Never a raw text id or an empty value; long values wrap in the eSIM rows only.
            EXPECT_TRUE(!text.empty() && text.find("DS_") == std::string::npos) << row.dump();
            EXPECT_TRUE(row["selectable"].get<bool>()) << row.dump();
            std::string label = row["texts"].value("elm.text", "");
            bool esim = label == "eID" || label == "Kesta eSIM profile";
            EXPECT_EQ(row["style"], esim ? "2text/sub1.multiline" : "2text") << label;
        }
    }
}

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

// The serial text comes from the device daemon: cut at its first comma for the US carrier
// (cdma) or with the carrier feature (kr-carrier), the barcode after its last.
TEST(StatusPageE2E, AbsentSilentOrLateDeviceDaemonNeverHangsThePage) {
    const struct {
        const char *profile;
        json deviced;  // what the daemon answers
        const char *serial, *barcode, *logged;
    } cases[] = {
        {"default", json::object(), "NV480Q0A1B2C,3546201", "(no row Barcode number)", ""},
        {"cdma", json::object(), "NV480Q0A1B2C", "(no row Barcode number)", ""},
        {"default",
         {{"present", false}},
         "Unknown",
         "(no row Barcode number)",
         "fail send message"},
        {"kr-carrier", {{"serial", ""}}, "Unknown", "Unknown", "no serial info is returned."},
        {"kr-carrier",
         {{"serial", "A,B,C"}, {"reply_delay_ms", 300}},
         "A",
         "C",
         "Serial Info: A,B,C"},
        {"kr-carrier", {{"serial", "SN1"}}, "SN1", "Unknown", ""},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(std::string(c.profile) + " " + c.deviced.dump());
        SimulatedWatch watch(profileWith(c.profile, [&c](json &p) {
            inEnglish(p);
            p["deviced"].update(c.deviced);
        }));
        auto run = watch.drive(kOpen + "dump\n");
        ASSERT_EQ(run.status, 0) << run.errors;
        EXPECT_EQ(rowValue(run.dumps.at(0), "Serial number"), c.serial);
        EXPECT_EQ(rowValue(run.dumps.at(0), "Barcode number"), c.barcode);
        EXPECT_NE(watch.platformLog().find(c.logged), std::string::npos) << c.logged;
    }
}
