// Device profiles: the messages a profile author gets, a section at a time, and seeding a watch
// from a profile. That any wrongly typed value is refused with its key path, and unknown keys
// only warned about, is checked against the documented schema (profile_schema_test.py).

#include <gtest/gtest.h>

#include "Profile.h"
#include "SettingsStore.h"
#include "StatePaths.h"
#include "sim_support.h"

using sim::Profile;
using sim::SettingValue;

TEST(Profile, EveryWrongValueIsRefusedWithItsPlaceAndWhatWasExpected) {
    const nlohmann::json tooMany = {{"esim", {{"profiles", std::vector<nlohmann::json>(256)}}}};
    const std::pair<std::string, std::string> cases[] = {
        // the profile, how the message starts
        {"", "line 1, column 1: malformed JSON"},
        {"{\n\"a\": tru}",
         "line 2, column 9: malformed JSON (syntax error while parsing value - "
         "invalid literal; last read: '\"a\": tru}')"},
        {"[1, 2]", "(top level): expected an object, found array [1,2]"},
        {R"({"description": 5})", "description: expected a string, found number 5"},
        {R"({"settings": {"db/x": 4294967296}})", R"(settings["db/x"]: expected a 32-bit integer)"},
        {R"({"settings": {"../x": 1}})", R"(settings["../x"]: expected a settings key)"},
        {R"({"system_info": {"platform": {"a/b": {}}}})", R"(system_info.platform["a/b"]: expect)"},
        {R"({"storage": {"block_size": "4k"}})",
         R"(storage.block_size: expected a positive integ)"},
        {R"({"storage": {"block_size": 0}})", "storage.block_size: expected a positive integer"},
        {R"({"storage": {"total_blocks": 10, "available_blocks": 11}})",
         "storage.available_blocks: expected at most total_blocks (10), found number 11"},
        {R"({"policy": {"service": "yes"}})", "policy.service: expected a boolean"},
        {R"({"faults": [{"call": "x"}]})", "faults[0].code: missing (expected the error code"},
        {R"({"faults": [{"code": -5}]})", "faults[0].call: missing"},
        {R"({"faults": [{"call": "", "code": -5}]})", "faults[0].call: expected a non-empty"},
        {R"({"telephony": {"modem": "yes"}})", "telephony.modem: expected a boolean (true or f"},
        {R"({"sim": {"msisdn": 4477}})", "sim.msisdn: expected a string or null, found number"},
        {tooMany.dump(), "esim.profiles: expected at most 255 entries, found 256"},
        {R"({"deviced": {"reply_delay_ms": -1}})", "deviced.reply_delay_ms: expected a non-neg"},
        {R"({"csc": {"features": {"barcode": true}}})", "csc.features.barcode: expected a feature"},
        {R"({"latency": {"msisdn_ms": -5}})", "latency.msisdn_ms: expected a non-negative integer"},
        {R"({"bluetooth": {"address": null}})", "bluetooth.address: expected a string, found null"},
        {R"({"packages": {"com.x": {"version": 2}}})", R"(packages["com.x"].version: expected a )"
                                                       "string, found number 2"},
        {R"({"settings": )" + std::string(100000, '[') + std::string(100000, ']') + "}",
         "line 1, column 77: nested more than 64 levels deep"},
    };
    for (const auto &[text, message] : cases) {
        Profile profile;
        std::string error;
        EXPECT_FALSE(profile.parse(text, "watch.json", &error));
        EXPECT_EQ(error.rfind("watch.json: " + message, 0), 0u)
            << text.substr(0, 80) << "\n  got: " << error;
    }
    // An endless file is not read at all.
    Profile profile;
    std::string error;
    EXPECT_FALSE(profile.load("/dev/zero", &error));
    EXPECT_EQ(error, "/dev/zero: not a regular file");
}

TEST(Profile, SeedingWritesEachSettingWithItsType) {
    simtest::TempDir dir;
    Profile profile;
    std::string error, seeded;
    ASSERT_TRUE(profile.parse(R"({"settings": {"db/b": true, "db/i": -3, "db/whole": 2.0,
                                  "db/s": "KTO"}})",
                              "p.json", &error));
    ASSERT_TRUE(profile.seed(dir.path(), &error)) << error;
    for (const char *key : {"db/b", "db/i", "db/whole", "db/s"}) {
        SettingValue value;
        sim::SettingsStore(dir.path()).read(key, &value, &error);
        seeded += sim::SettingsStore::encode(value) + " ";
    }
    EXPECT_EQ(seeded, "bool:1 int:-3 double:2 string:KTO ");
    EXPECT_EQ(Profile::resolve("mine.json", sim::profilesDir()), "mine.json") << "a file as given";
}
