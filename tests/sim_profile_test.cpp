// Device profiles: the messages a profile author gets, and seeding a watch from a profile.

#include <gtest/gtest.h>

#include <algorithm>

#include "Profile.h"
#include "SettingsStore.h"
#include "StatePaths.h"
#include "sim_support.h"

using sim::Profile;
using sim::SettingsStore;
using sim::SettingValue;

TEST(Profile, EveryWrongValueIsRefusedWithItsPlaceAndWhatWasExpected) {
    std::string tooMany = R"({"esim": {"profiles": [{})";
    for (int i = 1; i < 256; ++i)
        tooMany += ", {}";
    tooMany += "]}}";
    const struct {
        std::string text, message;  // the message starts so
    } cases[] = {
        {"{\n  \"description\": \"x\",\n}", "line 3, column 1: malformed JSON"},
        {"{\n \"settings\" {}}", "line 2, column 13: malformed JSON"},
        {"", "line 1, column 1: malformed JSON"},
        {R"({"a": tru})",
         "line 1, column 10: malformed JSON (syntax error while parsing value - "
         "invalid literal; last read: '\"a\": tru}')"},
        {"[1, 2]", "(top level): expected an object, found array [1,2]"},
        {R"({"description": 5})", "description: expected a string, found number 5"},
        {R"({"settings": {"db/setting/debug_mode": [true]}})",
         R"(settings["db/setting/debug_mode"]: expected a boolean, integer, number with a )"
         R"(fraction or string, found array [true])"},
        {R"({"settings": {"db/x": 4294967296}})",
         R"(settings["db/x"]: expected a 32-bit integer, found number 4294967296)"},
        {R"({"settings": {"../x": 1}})", R"(settings["../x"]: expected a settings key)"},
        {R"({"system_info": {"platform": {"system/model_name": {"v": 1}}}})",
         R"(system_info.platform["system/model_name"]: expected a boolean, number or string, )"
         R"(found object {"v":1})"},
        {R"({"storage": {"block_size": "4k"}})",
         "storage.block_size: expected a positive integer, found string \"4k\""},
        {R"({"storage": {"block_size": 0}})", "storage.block_size: expected a positive integer"},
        {R"({"storage": {"total_blocks": -1}})",
         "storage.total_blocks: expected a non-negative integer, found number -1"},
        {R"({"storage": {"total_blocks": 10, "available_blocks": 11}})",
         "storage.available_blocks: expected at most total_blocks (10), found number 11"},
        {R"({"policy": {"service": "yes"}})", "policy.service: expected a boolean"},
        {R"({"faults": {}})", "faults: expected an array, found object"},
        {R"({"faults": [{"call": "vconf_get_int"}]})",
         "faults[0].code: missing (expected the error code it returns)"},
        {R"({"faults": [{"code": -5}]})", "faults[0].call: missing"},
        {R"({"faults": [{"call": "", "code": -5}]})",
         "faults[0].call: expected a non-empty string"},
        {R"({"telephony": 1})", "telephony: expected an object, found number 1"},
        {R"({"telephony": {"modem": "yes"}})",
         "telephony.modem: expected a boolean (true or false), found string \"yes\""},
        {R"({"telephony": {"volte_enable": 1.5}})",
         "telephony.volte_enable: expected a 32-bit integer"},
        {R"({"sim": {"msisdn": 447700900123}})",
         "sim.msisdn: expected a string or null, found number"},
        {R"({"esim": {"profiles": [{"name": "A", "kind": "2"}]}})",
         "esim.profiles[0].kind: expected a 32-bit integer"},
        {tooMany, "esim.profiles: expected at most 255 entries, found 256"},
        {R"({"deviced": {"reply_delay_ms": -1}})",
         "deviced.reply_delay_ms: expected a non-negative integer"},
        {R"({"csc": {"features": {"barcode": true}}})",
         "csc.features.barcode: expected a feature number as key"},
        {R"({"csc": {"features": {"30": 1}}})",
         "csc.features.30: expected a boolean (true or false)"},
        {R"({"latency": {"msisdn_ms": -5}})", "latency.msisdn_ms: expected a non-negative integer"},
        {R"({"bluetooth": {"address": null}})", "bluetooth.address: expected a string, found null"},
        {R"({"packages": ["com.x"]})", R"(packages: expected an object, found array ["com.x"])"},
        {R"({"packages": {"com.x": {"version": 2}}})",
         R"(packages["com.x"].version: expected a string, found number 2)"},
    };
    for (const auto &c : cases) {
        Profile profile;
        std::string error;
        EXPECT_FALSE(profile.parse(c.text, "watch.json", &error));
        EXPECT_EQ(error.rfind("watch.json: " + c.message, 0), 0u) << c.text << "\n  got: " << error;
    }
}

TEST(Profile, UnknownKeysAreWarnedAboutNotRefused) {
    Profile profile;
    std::string error;
    ASSERT_TRUE(profile.parse(R"({"colour": "red", "storage": {"blocks": 1},
        "system_info": {"oem": {}}, "packages": {"com.x": {"version": "1", "size": 3}},
        "telephony": {"modem": true, "imei": "1", "volte_enable": 0, "misc_sn": false},
        "sim": {"msisdn": null, "iccid": "89"}, "bluetooth": {}, "wifi": {"mac_address": "a0"},
        "esim": {"eid": "89", "profiles": [], "profile_list_result": -5, "eid_result": 0},
        "deviced": {"present": false, "serial": "", "reply_delay_ms": 0},
        "csc": {"features": {"30": true}, "approval_version": "X"}, "latency": {"msisdn_ms": 1}})",
                              "watch.json", &error))
        << error;
    std::vector<std::string> warnings = profile.warnings();
    std::sort(warnings.begin(), warnings.end());
    EXPECT_EQ(warnings, (std::vector<std::string>{
                            "watch.json: colour: unknown key (ignored)",
                            "watch.json: packages[\"com.x\"].size: unknown key (ignored)",
                            "watch.json: storage.blocks: unknown key (ignored)",
                            "watch.json: system_info.oem: unknown key (ignored)"}));
}

TEST(Profile, SeedingWritesEachSettingWithItsTypeAndTheProfileLast) {
    simtest::TempDir dir;
    const std::string state = dir / "watch";
    Profile profile;
    std::string error;
    ASSERT_TRUE(profile.parse(R"({"settings": {"db/b": true, "db/i": -3, "db/whole": 2.0,
                                  "db/s": "KTO"}, "storage": {"block_size": 512}})",
                              "p.json", &error));
    simtest::writeText(dir / "file", "");
    EXPECT_FALSE(profile.seed(dir / "file/watch", &error));
    EXPECT_TRUE(simtest::contains(error, "mkdir(" + dir / "file")) << error;
    ASSERT_TRUE(profile.seed(state, &error)) << error;
    SettingsStore store(state);
    const std::pair<const char *, SettingValue> cases[] = {{"db/b", SettingValue::ofBool(true)},
                                                           {"db/i", SettingValue::ofInt(-3)},
                                                           {"db/whole", SettingValue::ofDouble(2)},
                                                           {"db/s", SettingValue::ofString("KTO")}};
    for (const auto &c : cases) {
        SettingValue value;
        EXPECT_EQ(store.read(c.first, &value, &error), SettingsStore::Ok) << error;
        EXPECT_TRUE(value == c.second) << c.first << " = " << value.text();
    }
    Profile seeded;
    ASSERT_TRUE(seeded.load(state + "/profile.json", &error)) << error;
    EXPECT_EQ(seeded.json(), profile.json());
    EXPECT_EQ(Profile::resolve("mine.json", sim::profilesDir()), "mine.json") << "a file as given";
}

TEST(Profile, TheDefaultWatchSeedsEverySettingTheAboutPageReadsWithItsType) {
    Profile profile;
    std::string error;
    ASSERT_TRUE(profile.load(Profile::resolve("default", sim::profilesDir()), &error)) << error;
    const nlohmann::json expected = {
        {"db/setting/debug_mode", false},       {"db/wms/user_agreement/errorlog", false},
        {"db/csc/text_string_country", "GB"},   {"db/setting/update-service/auto_update_type", 0},
        {"db/csc/country_iso", "GB"},           {"db/csc/salescode", "XEU"},
        {"db/retailmode/enabled", 0},           {"db/menu_widget/regionformat", "en_GB.UTF-8"},
        {"db/setup_wizard/standalone", 0},      {"db/menu_widget/language", "en_US.UTF-8"},
        {"db/retailmode/RDU_V9/enabled", 0},    {"db/setting/developer_option_state", false},
        {"db/setting/accessibility/tts", false}};
    for (const auto &entry : expected.items())
        EXPECT_EQ(profile.json()["settings"].value(entry.key(), nlohmann::json()), entry.value())
            << entry.key();
}
