// The device status page end to end: each device profile's rows, the answers that arrive while
// the page is open, live SIM and eSIM events, the device daemon and the page's shortcuts.

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

#include "support/SimulatedWatch.h"

using nlohmann::json;

namespace {

const std::string kOpen = "tap WDS_ST_TMBODY_DEVICE_INFORMATION\n";
const std::string kUnknown = "Unknown";

std::vector<std::string> launchedApps(SimulatedWatch &watch) {
    std::vector<std::string> out;
    for (const auto &entry : watch.launches())
        if (entry.value("request", "") == "launch")
            out.push_back(entry.value("app_id", ""));
    return out;
}

struct ProfileRows {
    const char *profile;
    std::vector<std::string> labels;
};

// The rows each kind of device calls for, in order (title first).
const ProfileRows kProfileRows[] = {
    {"default",
     {"Device information", "Kesta eSIM profile", "eID", "Kesta phone number", "IMEI", "IMEI SV",
      "ICCID", "Wi-Fi MAC address", "Bluetooth address", "Serial number"}},
    {"bt-only",
     {"Device information", "Kesta phone number", "IMEI", "IMEI SV", "ICCID", "Wi-Fi MAC address",
      "Bluetooth address", "Serial number"}},
    {"cdma",
     {"Device information", "Hardware version", "Kesta phone number", "PRL", "ERI", "MEID",
      "Wi-Fi MAC address", "Bluetooth address", "Serial number"}},
    {"kr-carrier",
     {"Device information", "Hardware version", "Kesta phone number", "IMEI", "IMEI SV", "ICCID",
      "IMS registration status", "Wi-Fi MAC address", "Bluetooth address", "Serial number",
      "Barcode number"}},
    {"esim-standalone",
     {"Device information", "eID", "Kesta phone number", "IMEI", "IMEI SV", "ICCID",
      "Wi-Fi MAC address", "Bluetooth address", "Serial number"}},
    {"china",
     {"Device information", "Kesta eSIM profile", "eID", "Kesta phone number", "IMEI", "IMEI SV",
      "ICCID", "WLAN MAC address", "Bluetooth address", "Serial number"}},
};

// The Korean carrier's and the China watch start in their own language; these tests read
// English labels.
void inEnglish(json &profile) {
    profile["settings"]["db/menu_widget/language"] = "en_US.UTF-8";
}

}  // namespace

TEST(StatusPageE2E, EachProfileListsTheRowsItsDeviceCallsForWithValues) {
    for (const auto &expected : kProfileRows) {
        SCOPED_TRACE(expected.profile);
        SimulatedWatch watch(profileWith(expected.profile, inEnglish));
        auto run = watch.drive(kOpen + "wait 1700\ndump\n");
        ASSERT_EQ(run.status, 0) << run.errors;
        const json &screen = run.dumps.at(0);
        EXPECT_EQ(screen["page"], "WDS_ST_TMBODY_DEVICE_INFORMATION");
        EXPECT_EQ(rowLabels(screen), expected.labels);
        EXPECT_FALSE(screen["items"][0]["selectable"].get<bool>());
        for (size_t k = 1; k < screen["items"].size(); ++k) {
            const json &row = screen["items"][k];
            std::string text = row["texts"].value("elm.text.1", "");
            // Never a raw text id or an empty value.
            EXPECT_FALSE(text.empty()) << row.dump();
            EXPECT_EQ(text.find("WDS_"), std::string::npos) << row.dump();
            EXPECT_EQ(text.find("IDS_"), std::string::npos) << row.dump();
            EXPECT_TRUE(row["selectable"].get<bool>()) << row.dump();
        }
        // Long values wrap in the eSIM rows; the others keep one line.
        json eid = rowWithLabel(screen, "eID");
        if (!eid.is_null()) {
            EXPECT_EQ(eid["style"], "2text/sub1.multiline");
        }
        EXPECT_EQ(rowWithLabel(screen, "Serial number")["style"], "2text");
    }
}

TEST(StatusPageE2E, ProfileValuesReachTheirRows) {
    SimulatedWatch watch("default");
    auto run = watch.drive(kOpen + "wait 1700\ndump\n");
    ASSERT_EQ(run.status, 0) << run.errors;
    const json &screen = run.dumps.at(0);
    // The profile name holds markup characters: the row escapes them so they show as written.
    EXPECT_EQ(rowValue(screen, "Kesta eSIM profile"),
              "Kite & Co <Travel>");  // shown literally, tags and all
    EXPECT_EQ(rowValue(screen, "eID"), "89000480000001000000012345678901");
    EXPECT_EQ(rowValue(screen, "Kesta phone number"), "+44 7700 900123");
    EXPECT_EQ(rowValue(screen, "IMEI"), "004801001234563");
    EXPECT_EQ(rowValue(screen, "ICCID"), "8944110012345678901");
    EXPECT_EQ(rowValue(screen, "Wi-Fi MAC address"), "a0:b1:c2:d3:e4:f6");
    EXPECT_EQ(rowValue(screen, "Bluetooth address"), "A0:B1:C2:D3:E4:F5");
    // Without the carrier's feature the daemon's whole text is the serial number.
    EXPECT_EQ(rowValue(screen, "Serial number"), "NV480Q0A1B2C,3546201");

    SimulatedWatch noModem("bt-only");
    run = noModem.drive(kOpen + "dump\n");
    ASSERT_EQ(run.status, 0) << run.errors;
    for (const char *label : {"Kesta phone number", "IMEI", "IMEI SV", "ICCID"})
        EXPECT_EQ(rowValue(run.dumps.at(0), label), kUnknown) << label;
    EXPECT_NE(noModem.platformLog().find("tel init error!!"), std::string::npos);

    SimulatedWatch cdma("cdma");
    run = cdma.drive(kOpen + "dump\n");
    ASSERT_EQ(run.status, 0) << run.errors;
    EXPECT_EQ(rowValue(run.dumps.at(0), "PRL"), "58023");
    EXPECT_EQ(rowValue(run.dumps.at(0), "ERI"), "ERI 6");
    EXPECT_EQ(rowValue(run.dumps.at(0), "MEID"), "A0000048012345");
    // The US carrier code cuts the serial text at its first comma.
    EXPECT_EQ(rowValue(run.dumps.at(0), "Serial number"), "NV480Q0A1B2C");
}

TEST(StatusPageE2E, AsynchronousAnswersChangeTheirRowsInPlace) {
    SimulatedWatch watch("default");
    auto run = watch.drive(kOpen + "dump\nwait 1800\ndump\n");
    ASSERT_EQ(run.status, 0) << run.errors;
    const json &before = run.dumps.at(0);
    const json &after = run.dumps.at(1);
    EXPECT_EQ(rowValue(before, "Kesta eSIM profile"), "None");
    EXPECT_EQ(rowValue(before, "eID"), kUnknown);
    EXPECT_EQ(rowValue(before, "Kesta phone number"), kUnknown);
    // Before the profiles are known the ICCID is not asked for.
    EXPECT_EQ(rowValue(before, "ICCID"), kUnknown);
    EXPECT_EQ(rowValue(after, "Kesta eSIM profile"),
              "Kite & Co <Travel>");  // shown literally, tags and all
    EXPECT_EQ(rowValue(after, "eID"), "89000480000001000000012345678901");
    EXPECT_EQ(rowValue(after, "Kesta phone number"), "+44 7700 900123");
    EXPECT_EQ(after["depth"], 2);
    // The number is kept for the next start.
    EXPECT_EQ(watch.sim("get db/setting/selected_num"), "+447700900123\n");
}

TEST(StatusPageE2E, SimRefreshAndEsimEventsUpdateTheOpenPage) {
    SimulatedWatch watch("default");
    std::string profiles = watch.stateDir() + "/profiles.json";
    std::ofstream(profiles) << R"([{"name": "Roam Away", "kind": 2, "state": 1},
                                   {"name": "Kite & Co <Travel>", "kind": 2, "state": 0}])";
    std::string ignored = watch.stateDir() + "/ignored.json";
    std::ofstream(ignored) << R"([{"name": "Never Asked For", "kind": 2, "state": 1}])";
    auto run =
        watch.drive(kOpen +
                    "wait 1700\ndump\nsim event sim-refresh --msisdn +447700900999\n"
                    "wait 2500\ndump\nsim event esim 1 2 --profiles " +
                    profiles + "\nwait 2500\ndump\nsim event esim 1 4 --profiles " + ignored +
                    "\nsim event esim 0 1 --profiles " + ignored + "\nwait 2500\ndump\n");
    ASSERT_EQ(run.status, 0) << run.errors;
    ASSERT_EQ(run.dumps.size(), 4u);
    EXPECT_EQ(rowValue(run.dumps[0], "Kesta phone number"), "+44 7700 900123");
    EXPECT_EQ(rowValue(run.dumps[1], "Kesta phone number"), "+44 7700 900999");
    EXPECT_EQ(rowValue(run.dumps[1], "Kesta eSIM profile"),
              "Kite & Co <Travel>");  // shown literally, tags and all
    EXPECT_EQ(rowValue(run.dumps[2], "Kesta eSIM profile"), "Roam Away");
    // Other events ask for nothing: the new list is never fetched.
    EXPECT_EQ(rowValue(run.dumps[3], "Kesta eSIM profile"), "Roam Away");
}

TEST(StatusPageE2E, KoreanCarrierShowsNationalNumberSplitIccidSerialAndBarcode) {
    SimulatedWatch watch(profileWith("kr-carrier", inEnglish));
    auto run = watch.drive(kOpen + "dump\n");
    ASSERT_EQ(run.status, 0) << run.errors;
    const json &screen = run.dumps.at(0);
    EXPECT_EQ(rowValue(screen, "Kesta phone number"), "010-1234-5678");
    EXPECT_EQ(rowValue(screen, "ICCID"), "898205 0123456789012F");
    EXPECT_EQ(rowValue(screen, "Serial number"), "NV480Q0KT001");
    EXPECT_EQ(rowValue(screen, "Barcode number"), "8806090123456");
    EXPECT_EQ(rowValue(screen, "Hardware version"), "REV0.6");
    EXPECT_EQ(rowValue(screen, "IMS registration status"), "On");
}

TEST(StatusPageE2E, SerialRowTapsOpenTheKeyStringServiceOnlyFiveInARow) {
    SimulatedWatch watch("default");
    std::string four =
        "tap Serial number\ntap Serial number\ntap Serial number\ntap Serial number\n";
    auto run = watch.drive(kOpen + four + "tap Bluetooth address\n" + four + "dump\n");
    ASSERT_EQ(run.status, 0) << run.errors;
    EXPECT_TRUE(launchedApps(watch).empty());

    run = watch.drive(kOpen + four + "tap Serial number\ndump\n");
    ASSERT_EQ(run.status, 0) << run.errors;
    auto launches = watch.launches();
    ASSERT_EQ(launches.size(), 1u);
    EXPECT_EQ(launches[0]["app_id"], "com.nerova.tizenvelkeystring");
    EXPECT_EQ(launches[0]["operation"], "http://tizen.org/appcontrol/operation/send_text");
    EXPECT_TRUE(launches[0]["extra_data"].empty()) << launches[0].dump();
    // No input block: the page answers taps at once.
    EXPECT_EQ(run.dumps.at(0)["depth"], 2);

    // Ten taps in a row open it twice.
    run = watch.drive(kOpen + four + "tap Serial number\n" + four + "tap Serial number\n");
    ASSERT_EQ(run.status, 0) << run.errors;
    EXPECT_EQ(launchedApps(watch), std::vector<std::string>(3, "com.nerova.tizenvelkeystring"));
}

TEST(StatusPageE2E, EsimProfileRowOpensTheProfileListAndOpeningRecordsUsage) {
    SimulatedWatch watch("default");
    auto run = watch.drive(kOpen + "wait 1700\ntap Kesta eSIM profile\n");
    ASSERT_EQ(run.status, 0) << run.errors;
    auto launches = watch.launches();
    ASSERT_EQ(launches.size(), 1u);
    EXPECT_EQ(launches[0]["app_id"], "com.nerova.esim-settings");
    EXPECT_EQ(launches[0]["extra_data"], json({{"mode", "profile_list"}}));
    EXPECT_EQ(launches[0]["launch_mode"], 1);
    std::vector<std::string> features;
    for (const auto &row : watch.usage())
        features.push_back(row.value("feature", ""));
    EXPECT_NE(std::find(features.begin(), features.end(), "ST15"), features.end());
}

TEST(StatusPageE2E, AbsentSilentOrLateDeviceDaemonNeverHangsThePage) {
    SimulatedWatch absent(profileWith("default", [](json &p) { p["deviced"]["present"] = false; }));
    auto run = absent.drive(kOpen + "dump\n");
    ASSERT_EQ(run.status, 0) << run.errors;
    EXPECT_EQ(rowValue(run.dumps.at(0), "Serial number"), kUnknown);
    EXPECT_NE(absent.platformLog().find("fail send message"), std::string::npos);

    SimulatedWatch empty(profileWith("kr-carrier", [](json &p) {
        inEnglish(p);
        p["deviced"]["serial"] = "";
    }));
    run = empty.drive(kOpen + "dump\n");
    ASSERT_EQ(run.status, 0) << run.errors;
    EXPECT_EQ(rowValue(run.dumps.at(0), "Serial number"), kUnknown);
    EXPECT_EQ(rowValue(run.dumps.at(0), "Barcode number"), kUnknown);
    EXPECT_NE(empty.platformLog().find("no serial info is returned."), std::string::npos);

    SimulatedWatch late(profileWith("kr-carrier", [](json &p) {
        inEnglish(p);
        p["deviced"]["serial"] = "A,B,C";
        p["deviced"]["reply_delay_ms"] = 300;
    }));
    run = late.drive(kOpen + "dump\n");
    ASSERT_EQ(run.status, 0) << run.errors;
    EXPECT_EQ(rowValue(run.dumps.at(0), "Serial number"), "A");
    EXPECT_EQ(rowValue(run.dumps.at(0), "Barcode number"), "C");

    SimulatedWatch noComma(profileWith("kr-carrier", [](json &p) {
        inEnglish(p);
        p["deviced"]["serial"] = "SN1";
    }));
    run = noComma.drive(kOpen + "dump\n");
    ASSERT_EQ(run.status, 0) << run.errors;
    EXPECT_EQ(rowValue(run.dumps.at(0), "Serial number"), "SN1");
    EXPECT_EQ(rowValue(run.dumps.at(0), "Barcode number"), kUnknown);
}
