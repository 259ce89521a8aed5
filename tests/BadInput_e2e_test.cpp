// Bad input end to end: values with markup, records at and past their limits, settings files
// that are corrupt or of the wrong type, a device daemon that answers wrongly, no bus at all,
// missing resources. Each must give a clear log line and a screen that carries on.

#include <gtest/gtest.h>

#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include "support/SimulatedWatch.h"

using nlohmann::json;

namespace {

const std::string kOpenStatus = "tap WDS_ST_TMBODY_DEVICE_INFORMATION\nwait 200\ndump\nback\n";
const std::string kOpenSoftware = "tap WDS_ST_TMBODY_SOFTWARE_INFORMATION\ndump\n";

// The default watch changed by edit, with answers that come at once.
std::string profileWith(const std::function<void(json &)> &edit) {
    return ::profileWith("default", [&edit](json &profile) {
        profile["latency"] = {{"msisdn_ms", 0}, {"esim_profile_list_ms", 0}, {"esim_eid_ms", 0}};
        edit(profile);
    });
}

bool logged(const std::string &log, const std::string &message) {
    return log.find(message) != std::string::npos;
}

}  // namespace

TEST(BadInputE2E, MarkupCharactersInDeviceValuesShowLiterally) {
    SimulatedWatch watch(profileWith([](json &p) {
        p["esim"]["profiles"][0]["name"] = "<b>AT&T</b>";
        p["system_info"]["platform"]["system/model_name"] = "QX<br>M480 & co";
        p["system_info"]["platform"]["system/build.string"] = "M480<i>EU</i>";
        p["system_info"]["vendor"]["tizen/feature/tessid.vimo.version"] = "1.4 &amp; 2";
        p["system_info"]["vendor"]["tizen/system/battery_capacity"] = "<361>mAh";
    }));
    auto run = watch.drive("dump\n" + kOpenStatus + kOpenSoftware +
                           "tap IDS_ST_MBODY_TESSID_VERSION\ndump\nback\nback\n"
                           "tap WDS_ST_TMBODY_BATTERY_INFORMATION\ndump\n");
    ASSERT_EQ(run.status, 0) << run.errors;
    ASSERT_EQ(run.dumps.size(), 5u);
    EXPECT_EQ(rowValue(run.dumps[0], "Model number"), "QX<br>M480 & co");
    EXPECT_EQ(rowValue(run.dumps[1], "Kesta eSIM profile"), "<b>AT&T</b>") << "tags stay visible";
    EXPECT_EQ(rowValue(run.dumps[2], "Software version"), "M480<i>EU</i>");
    EXPECT_EQ(rowValue(run.dumps[3], "VIMO"), "1.4 &amp; 2");
    EXPECT_EQ(rowValue(run.dumps[4], "Battery capacity"), "<361>mAh");
}

TEST(BadInputE2E, RecordsAtAndPastTheirLimits) {
    const std::string longName(3000, 'N');
    json spare = json::array();
    // As many profiles as the list can count, the enabled one last.
    for (int i = 0; i < 254; ++i)
        spare.push_back({{"name", "Spare " + std::to_string(i)}, {"kind", 2}, {"state", 0}});
    spare.push_back({{"name", "Last of 255"}, {"kind", 2}, {"state", 1}});
    const struct {
        std::function<void(json &)> edit;
        const char *profile, *number;
    } cases[] = {
        {[&](json &p) {
             p["esim"]["profiles"] = spare;
             p["sim"]["msisdn_count"] = 3;  // one number
         },
         "Last of 255", "+44 7700 900123"},
        // A count with no entry behind it is no number at all.
        {[](json &p) {
             p["esim"]["profiles"][0]["name"] = "";
             p["sim"]["msisdn"] = "";
             p["sim"]["msisdn_count"] = 2;
         },
         "None", "Unknown"},
        // The SIM's number field holds 26 digits; a longer number arrives cut, unformatted.
        {[&](json &p) {
             p["esim"]["profiles"][0]["name"] = longName;
             p["sim"]["msisdn"] = std::string(60, '7');
         },
         longName.c_str(), "77777777777777777777777777"},
    };
    for (const auto &c : cases) {
        SimulatedWatch watch(profileWith(c.edit));
        auto run = watch.drive(kOpenStatus);
        ASSERT_EQ(run.status, 0) << run.errors;
        EXPECT_EQ(rowValue(run.dumps.at(0), "Kesta eSIM profile"), c.profile);
        EXPECT_EQ(rowValue(run.dumps.at(0), "Kesta phone number"), c.number);
    }
}

TEST(BadInputE2E, CorruptTruncatedAndWronglyTypedSettingsReadAsUnset) {
    SimulatedWatch watch(profileWith([](json &) {}));
    watch.seed();
    const std::pair<const char *, const char *> files[] = {
        {"db/setting/debug_mode", "bool:yes"},
        {"db/wms/user_agreement/errorlog", ""},
        {"db/retailmode/enabled", "string:1"},
        {"db/smack/spd_installed_policy_version", "int:47"},
        {"db/setting/selected_num", "strin"}};
    for (const auto &file : files)
        std::ofstream(watch.stateDir() + "/settings/" + file.first, std::ios::trunc) << file.second;

    auto run = watch.drive("dump\n" + kOpenStatus + kOpenSoftware);
    ASSERT_EQ(run.status, 0) << run.errors;
    ASSERT_EQ(run.dumps.size(), 3u);
    EXPECT_EQ(rowWithLabel(run.dumps[0], "Debugging")["check"], false);
    EXPECT_EQ(rowWithLabel(run.dumps[0], "Report diagnostic and usage info")["check"], false);
    EXPECT_EQ(rowLabels(run.dumps[0]).back(), "Reset Kesta") << "a wrongly typed retail key";
    EXPECT_EQ(rowValue(run.dumps[2], "Security status"), "Unknown");
    // The phone number arrived after all and replaced the corrupt cache.
    EXPECT_EQ(rowValue(run.dumps[1], "Kesta phone number"), "+44 7700 900123");
    // The platform says what is wrong with each file, the application what it could not read.
    std::string log = watch.platformLog();
    for (const char *line :
         {"db/setting/debug_mode: corrupt value (bool value 'yes' is neither 0 nor 1)",
          "db/wms/user_agreement/errorlog: corrupt value (empty file)",
          "Setting - USB debugging's info do not get!!!", "Setting - report diagnostic not get!!!",
          "VCONFKEY_RETAILMODE_ENABLED get error!!", "Vconf value error!"})
        EXPECT_TRUE(logged(log, line)) << line << "\n" << log;
}

TEST(BadInputE2E, AWronglyAnsweringDaemonOrNoBusAtAllLeavesTheOtherRows) {
    SimulatedWatch wrong(profileWith([](json &p) { p["deviced"]["wrong_types"] = true; }));
    auto run = wrong.drive(kOpenStatus);
    ASSERT_EQ(run.status, 0) << run.errors;
    EXPECT_EQ(rowValue(run.dumps.at(0), "Serial number"), "Unknown");
    EXPECT_EQ(rowValue(run.dumps.at(0), "IMEI"), "004801001234563");
    EXPECT_TRUE(logged(wrong.platformLog(), "no message : [org.freedesktop.DBus.Error."));

    // Without any bus the pages open and settings still change.
    SimulatedWatch watch(profileWith([](json &) {}));
    run = watch.drive(
        "tap WDS_ST_MBODY_REPORT_DIAGNOSTIC_AND_USAGE_INFO_ABB\n"
        "press WDS_ST_BUTTON_OK_ABB\nwait 200\ndump\n" +
            kOpenStatus,
        "DBUS_SYSTEM_BUS_ADDRESS=unix:path=" + watch.stateDir() + "/no-such-bus");
    EXPECT_EQ(run.status, 0) << run.errors;
    ASSERT_EQ(run.dumps.size(), 2u) << run.errors;
    EXPECT_EQ(rowWithLabel(run.dumps[0], "Report diagnostic and usage info")["check"], true);
    EXPECT_EQ(rowValue(run.dumps[1], "Serial number"), "Unknown");
    EXPECT_EQ(rowValue(run.dumps[1], "IMEI"), "004801001234563");
    EXPECT_TRUE(logged(watch.platformLog(), "fail send message"));
}

TEST(BadInputE2E, MissingLayoutFilesAndColourTableLeaveEmptyFramesThatStillOpen) {
    // A copy of the watch's data tree without the application's layouts and colour table.
    std::string real = SimulatedWatch::binDir() + "/..";
    char tmpl[] = "/tmp/quillset-data-XXXXXX";
    ASSERT_NE(mkdtemp(tmpl), nullptr);
    std::string data = tmpl;
    std::string cmd = "cd '" + real +
                      "' && for f in *; do [ \"$f\" = res ] || [ \"$f\" = shared ] ||"
                      " ln -s \"$PWD/$f\" '" +
                      data + "/'; done && mkdir -p '" + data + "/res' '" + data +
                      "/shared/res' && for f in res/*; do [ \"$f\" = res/edje ] ||"
                      " ln -s \"$PWD/$f\" '" +
                      data + "/res/'; done";
    ASSERT_EQ(system(cmd.c_str()), 0);

    SimulatedWatch watch(profileWith([](json &p) { p["settings"]["db/csc/country_iso"] = "IN"; }));
    auto run = watch.drive(
        "tap WDS_ST_MBODY_REPORT_DIAGNOSTIC_AND_USAGE_INFO_ABB\ndump\n"
        "press WDS_ST_BUTTON_CANCEL\n"
        "tap WDS_ST_HEADER_OPEN_SOURCE_LICENCES_ABB\ndump\nback\n"
        "tap WDS_ST_HEADER_REGULATORY_INFO_ABB\ndump\nback\ndump\n",
        "QUILLSET_DATA_DIR=" + data);
    EXPECT_EQ(run.status, 0) << run.errors;
    const std::vector<json> &dumps = run.dumps;
    ASSERT_EQ(dumps.size(), 4u) << run.errors;
    EXPECT_TRUE(dumps[0]["popup"].is_object()) << "the consent popup opens";
    EXPECT_EQ(dumps[1]["page"], "WDS_ST_HEADER_OPEN_SOURCE_LICENCES_ABB");
    EXPECT_EQ(dumps[2]["page"], "WDS_ST_HEADER_REGULATORY_INFO_ABB");
    EXPECT_EQ(rowLabels(dumps[3]).front(), "About Kesta");
    std::string log = watch.platformLog();
    EXPECT_TRUE(logged(log, "setting_style_ChangeableColorInfo.xml cannot be opened")) << log;
    EXPECT_TRUE(
        logged(log, "/res/edje is missing: the application's layouts and images will not show"));
    EXPECT_EQ(log.find("W-SETTING"), std::string::npos) << "the application logs none:\n" << log;
    cmd = "rm -rf '" + data + "'";
    EXPECT_EQ(system(cmd.c_str()), 0);
}
