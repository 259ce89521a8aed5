// Bad input end to end: values with markup, records that lie about their size, settings
// files that are corrupt or of the wrong type or disappear while watched, hostile profiles, a
// device daemon that answers wrongly, no bus at all, missing resources. Each must give a clear
// log line and a screen that carries on.

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <fstream>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

#include "Profile.h"
#include "SettingsStore.h"
#include "support/DrivenWatch.h"
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

// Seeds the watch's state from its profile, as its first start would, so that a test can
// spoil it before the application runs.
void seed(SimulatedWatch &watch, const std::string &profileText) {
    sim::Profile profile;
    std::string error;
    ASSERT_TRUE(profile.parse(profileText, "test profile", &error)) << error;
    ASSERT_TRUE(profile.seed(watch.stateDir(), &error)) << error;
}

void writeText(const std::string &path, const std::string &text) {
    std::ofstream(path, std::ios::binary | std::ios::trunc) << text;
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

TEST(BadInputE2E, RecordsAreReadToTheirCounts) {
    SimulatedWatch watch(profileWith([](json &p) {
        // As many profiles as the list can count, the enabled one last.
        json profiles = json::array();
        for (int i = 0; i < 254; ++i)
            profiles.push_back({{"name", "Spare " + std::to_string(i)}, {"kind", 2}, {"state", 0}});
        profiles.push_back({{"name", "Last of 255"}, {"kind", 2}, {"state", 1}});
        p["esim"]["profiles"] = profiles;
        p["sim"]["msisdn_count"] = 3;  // one number
    }));
    auto run = watch.drive(kOpenStatus);
    ASSERT_EQ(run.status, 0) << run.errors;
    EXPECT_EQ(rowValue(run.dumps.at(0), "Kesta eSIM profile"), "Last of 255");
    EXPECT_EQ(rowValue(run.dumps.at(0), "Kesta phone number"), "+44 7700 900123");

    // A count with no entry behind it is no number at all.
    SimulatedWatch empty(profileWith([](json &p) {
        p["sim"]["msisdn"] = "";
        p["sim"]["msisdn_count"] = 2;
    }));
    run = empty.drive(kOpenStatus);
    ASSERT_EQ(run.status, 0) << run.errors;
    EXPECT_EQ(rowValue(run.dumps.at(0), "Kesta phone number"), "Unknown");
}

TEST(BadInputE2E, EmptyAndOverlongNamesAndNumbers) {
    const std::string longName(3000, 'N');
    SimulatedWatch empty(profileWith([](json &p) { p["esim"]["profiles"][0]["name"] = ""; }));
    auto run = empty.drive(kOpenStatus);
    ASSERT_EQ(run.status, 0) << run.errors;
    EXPECT_EQ(rowValue(run.dumps.at(0), "Kesta eSIM profile"), "None");

    SimulatedWatch overlong(profileWith([&](json &p) {
        p["esim"]["profiles"][0]["name"] = longName;
        p["sim"]["msisdn"] = std::string(60, '7');
    }));
    run = overlong.drive(kOpenStatus);
    ASSERT_EQ(run.status, 0) << run.errors;
    EXPECT_EQ(rowValue(run.dumps.at(0), "Kesta eSIM profile"), longName);
    // The SIM's number field holds 26 digits; a longer number arrives cut and is not formatted.
    EXPECT_EQ(rowValue(run.dumps.at(0), "Kesta phone number"), std::string(26, '7'));
}

TEST(BadInputE2E, CorruptTruncatedAndWronglyTypedSettingsReadAsUnset) {
    std::string profile = profileWith([](json &) {});
    SimulatedWatch watch(profile);
    seed(watch, profile);
    std::string settings = watch.stateDir() + "/settings/";
    writeText(settings + "db/setting/debug_mode", "bool:yes");
    writeText(settings + "db/wms/user_agreement/errorlog", "");
    writeText(settings + "db/retailmode/enabled", "string:1");
    writeText(settings + "db/smack/spd_installed_policy_version", "int:47");
    writeText(settings + "db/setting/selected_num", "strin");

    auto run = watch.drive("dump\n" + kOpenStatus + kOpenSoftware);
    ASSERT_EQ(run.status, 0) << run.errors;
    ASSERT_EQ(run.dumps.size(), 3u);
    EXPECT_EQ(rowWithLabel(run.dumps[0], "Debugging")["check"], false);
    EXPECT_EQ(rowWithLabel(run.dumps[0], "Report diagnostic and usage info")["check"], false);
    EXPECT_EQ(rowLabels(run.dumps[0]).back(), "Reset Kesta") << "a wrongly typed retail key";
    EXPECT_EQ(rowValue(run.dumps[2], "Security status"), "Unknown");
    std::string log = watch.platformLog();
    // The platform says what is wrong with each file, the application what it could not read.
    EXPECT_TRUE(logged(log,
                       "db/setting/debug_mode: corrupt value (bool value 'yes' is neither "
                       "0 nor 1)"))
        << log;
    EXPECT_TRUE(logged(log, "db/wms/user_agreement/errorlog: corrupt value (empty file)"));
    EXPECT_TRUE(logged(log, "Setting - USB debugging's info do not get!!!"));
    EXPECT_TRUE(logged(log, "Setting - report diagnostic not get!!!"));
    EXPECT_TRUE(logged(log, "VCONFKEY_RETAILMODE_ENABLED get error!!"));
    EXPECT_TRUE(logged(log, "Vconf value error!"));
    // The phone number arrived after all and replaced the corrupt cache.
    EXPECT_EQ(rowValue(run.dumps[1], "Kesta phone number"), "+44 7700 900123");
}

TEST(BadInputE2E, ASwitchKeyDeletedWhileTheListIsOpenTurnsTheSwitchOff) {
    std::string profile =
        profileWith([](json &p) { p["settings"]["db/setting/debug_mode"] = true; });
    SimulatedWatch watch(profile);
    seed(watch, profile);
    {
        DrivenWatch driven(watch.stateDir() + "/profile.json", watch.stateDir());
        driven.send("bezel 12\ndump\n");
        json before = driven.nextDump();
        ASSERT_TRUE(before.is_object());
        ASSERT_EQ(rowWithLabel(before, "Debugging")["check"], true);
        sim::SettingsStore store(watch.stateDir());
        std::string error;
        ASSERT_EQ(store.remove("db/setting/debug_mode", &error), sim::SettingsStore::Ok) << error;
        json after;
        for (int look = 0; look < 10; ++look) {
            driven.send("wait 300\ndump\n");
            after = driven.nextDump();
            ASSERT_TRUE(after.is_object()) << "the application stopped";
            if (rowWithLabel(after, "Debugging")["check"] == false)
                break;
        }
        EXPECT_EQ(rowWithLabel(after, "Debugging")["check"], false);
        // Tapping it now asks before turning debugging on, as for a switch that is off.
        driven.send("tap WDS_ST_MBODY_DEBUGGING_ABB\ndump\n");
        json popup = driven.nextDump();
        ASSERT_TRUE(popup.is_object());
        EXPECT_TRUE(popup["popup"].is_object());
        EXPECT_EQ(driven.finish(), 0);
    }
}

TEST(BadInputE2E, HostileProfilesAreRefusedBeforeTheWatchStarts) {
    const struct {
        const char *what;
        std::string profile;  // a file path or JSON text
        const char *message;
    } cases[] = {
        {"an endless file", "/dev/zero", "/dev/zero: not a regular file"},
        {"deep nesting",
         R"({"settings": )" + std::string(100000, '[') + std::string(100000, ']') + "}",
         "nested more than 64 levels deep"},
        {"a settings key outside the store", R"({"settings": {"../../outside": 1}})",
         R"(settings["../../outside"]: expected a settings key)"},
        {"a fault without its code", R"({"faults": [{"call": "vconf_get_bool"}]})",
         "faults[0].code: missing"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.what);
        SimulatedWatch watch(c.profile);
        auto start = std::chrono::steady_clock::now();
        auto run = watch.drive("dump\n");
        double seconds =
            std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        EXPECT_NE(run.status, 0);
        EXPECT_TRUE(run.dumps.empty());
        EXPECT_NE(run.errors.find(c.message), std::string::npos) << run.errors;
        EXPECT_NE(run.errors.find("the watch was not started"), std::string::npos);
        EXPECT_LT(seconds, 10.0);
    }
    // Nothing was written beside the state directory.
    struct stat st;
    EXPECT_NE(stat("/tmp/outside", &st), 0);
}

TEST(BadInputE2E, DeviceDaemonAnsweringWithWrongTypesGivesUnknown) {
    SimulatedWatch watch(profileWith([](json &p) { p["deviced"]["wrong_types"] = true; }));
    auto run = watch.drive(kOpenStatus);
    ASSERT_EQ(run.status, 0) << run.errors;
    EXPECT_EQ(rowValue(run.dumps.at(0), "Serial number"), "Unknown");
    EXPECT_EQ(rowValue(run.dumps.at(0), "IMEI"), "004801001234563") << "the other rows carry on";
    EXPECT_TRUE(logged(watch.platformLog(), "no message : [org.freedesktop.DBus.Error."))
        << watch.platformLog();
}

TEST(BadInputE2E, WithoutAnyBusThePagesOpenAndSettingsStillChange) {
    SimulatedWatch watch(profileWith([](json &) {}));
    auto run = watch.drive(
        "tap WDS_ST_MBODY_REPORT_DIAGNOSTIC_AND_USAGE_INFO_ABB\n"
        "press WDS_ST_BUTTON_OK_ABB\nwait 200\ndump\n" +
            kOpenStatus,
        "DBUS_SYSTEM_BUS_ADDRESS=unix:path=" + watch.stateDir() + "/no-such-bus");
    EXPECT_EQ(run.status, 0) << run.errors;
    const std::vector<json> &dumps = run.dumps;
    ASSERT_EQ(dumps.size(), 2u) << run.errors;
    EXPECT_EQ(rowWithLabel(dumps[0], "Report diagnostic and usage info")["check"], true);
    EXPECT_EQ(rowValue(dumps[1], "Serial number"), "Unknown");
    EXPECT_EQ(rowValue(dumps[1], "IMEI"), "004801001234563");
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
    EXPECT_TRUE(logged(log,
                       "/res/edje is missing: the application's layouts and images will not "
                       "show"))
        << log;
    EXPECT_EQ(log.find("W-SETTING"), std::string::npos) << "the application logs none:\n" << log;
    cmd = "rm -rf '" + data + "'";
    EXPECT_EQ(system(cmd.c_str()), 0);
}
