// Device profiles: the messages a profile author gets, seeding a watch, and the shipped
// profiles themselves.

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "Profile.h"
#include "SettingsStore.h"
#include "StatePaths.h"
#include "sim_support.h"

using sim::Profile;
using sim::SettingsStore;
using sim::SettingValue;

namespace {

std::string parseError(const std::string &text) {
    Profile profile;
    std::string error;
    EXPECT_FALSE(profile.parse(text, "watch.json", &error)) << text;
    return error;
}

}  // namespace

TEST(Profile, MalformedJsonIsReportedWithFileLineAndColumn) {
    struct Case {
        const char *text;
        const char *place;
    };
    const Case cases[] = {
        {"{\n  \"description\": \"x\",\n}", "watch.json: line 3, column 1: malformed JSON"},
        {"{\n \"settings\" {}}", "watch.json: line 2, column 13: malformed JSON"},
        {"{\"storage\": {\"block_size\": 4096}", "watch.json: line 1, column 33: malformed JSON"},
        {"", "watch.json: line 1, column 1: malformed JSON"},
    };
    for (const Case &c : cases) {
        std::string error = parseError(c.text);
        EXPECT_EQ(error.rfind(c.place, 0), 0u) << error;
        EXPECT_EQ(error.find("json.exception"), std::string::npos) << "no library jargon";
    }
    // The parser's reason follows the place.
    EXPECT_NE(parseError("{\"a\": tru}").find("invalid literal"), std::string::npos);
}

TEST(Profile, WrongValuesNameTheKeyPathAndTheExpectedType) {
    struct Case {
        const char *json;
        const char *message;
    };
    const Case cases[] = {
        {R"([1, 2])", "watch.json: (top level): expected an object, found array [1,2]"},
        {R"({"description": 5})", "watch.json: description: expected a string, found number 5"},
        {R"({"settings": {"db/setting/debug_mode": [true]}})",
         R"(watch.json: settings["db/setting/debug_mode"]: expected a boolean, integer, number )"
         R"(with a fraction or string, found array [true])"},
        {R"({"settings": {"db/x": 4294967296}})",
         R"(settings["db/x"]: expected a 32-bit integer, found number 4294967296)"},
        {R"({"settings": {"../x": 1}})", R"(settings["../x"]: expected a settings key)"},
        {R"({"system_info": {"platform": {"system/model_name": {"v": 1}}}})",
         R"(system_info.platform["system/model_name"]: expected a boolean, number or string, )"
         R"(found object)"},
        {R"({"system_info": []})", "system_info: expected an object, found array"},
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
        {R"({"faults": [{"call": "x", "code": "-5"}]})",
         R"(faults[0].code: expected a 32-bit integer, found string "-5")"},
        {R"({"telephony": 1})", "telephony: expected an object, found number 1"},
    };
    for (const Case &c : cases) {
        std::string error = parseError(c.json);
        EXPECT_NE(error.find(c.message), std::string::npos)
            << "profile: " << c.json << "\n error: " << error;
    }
    nlohmann::json tooMany = {{"esim", {{"profiles", nlohmann::json::array()}}}};
    for (int i = 0; i < 256; ++i)
        tooMany["esim"]["profiles"].push_back(nlohmann::json::object());
    EXPECT_NE(
        parseError(tooMany.dump()).find("esim.profiles: expected at most 255 entries, found 256"),
        std::string::npos);
}

TEST(Profile, UnknownKeysAreWarnedAboutNotRefused) {
    Profile profile;
    std::string error;
    ASSERT_TRUE(profile.parse(R"({"colour": "red", "storage": {"blocks": 1},
                                  "system_info": {"oem": {}}, "telephony": {"imei": "1"}})",
                              "watch.json", &error))
        << error;
    std::vector<std::string> expected = {"watch.json: colour: unknown key (ignored)",
                                         "watch.json: storage.blocks: unknown key (ignored)",
                                         "watch.json: system_info.oem: unknown key (ignored)"};
    std::vector<std::string> warnings = profile.warnings();
    std::sort(warnings.begin(), warnings.end());
    EXPECT_EQ(warnings, expected) << "sections read elsewhere (telephony) are not unknown";
}

TEST(Profile, AFailedParseKeepsThePreviousProfile) {
    Profile profile;
    std::string error;
    ASSERT_TRUE(profile.parse(R"({"description": "first"})", "a.json", &error));
    EXPECT_FALSE(profile.parse(R"({"description": 1})", "b.json", &error));
    EXPECT_EQ(profile.description(), "first");
}

TEST(Profile, SeedingWritesEachSettingWithItsTypeAndTheProfileLast) {
    simtest::TempDir dir;
    std::string state = dir / "watch";
    Profile profile;
    std::string error;
    ASSERT_TRUE(profile.parse(R"({"settings": {"db/b": true, "db/i": -3, "db/d": 2.5,
                                  "db/whole": 2.0, "db/s": "KTO"}, "storage": {"block_size": 512}})",
                              "p.json", &error))
        << error;
    ASSERT_TRUE(profile.seed(state, &error)) << error;

    SettingsStore store(state);
    struct Case {
        const char *key;
        SettingValue value;
    };
    const Case cases[] = {{"db/b", SettingValue::ofBool(true)},
                          {"db/i", SettingValue::ofInt(-3)},
                          {"db/d", SettingValue::ofDouble(2.5)},
                          {"db/whole", SettingValue::ofDouble(2.0)},
                          {"db/s", SettingValue::ofString("KTO")}};
    for (const Case &c : cases) {
        SettingValue value;
        ASSERT_EQ(store.read(c.key, &value, &error), SettingsStore::Ok) << c.key << error;
        EXPECT_TRUE(value == c.value) << c.key << " = " << value.text();
    }
    Profile seeded;
    ASSERT_TRUE(seeded.load(state + "/profile.json", &error)) << error;
    EXPECT_EQ(seeded.json(), profile.json());
}

TEST(Profile, SeedingWhereNothingCanBeWrittenSaysWhy) {
    simtest::TempDir dir;
    simtest::writeText(dir / "file", "");
    Profile profile;
    std::string error;
    ASSERT_TRUE(profile.parse(R"({"settings": {"db/b": true}})", "p.json", &error));
    EXPECT_FALSE(profile.seed(dir / "file/watch", &error));
    EXPECT_NE(error.find("mkdir(" + dir / "file"), std::string::npos) << error;
    EXPECT_NE(error.find("Not a directory"), std::string::npos) << error;
}

TEST(Profile, NamesResolveInTheProfilesDirectoryAndPathsAsGiven) {
    std::string dir = sim::profilesDir();
    EXPECT_EQ(Profile::resolve("default", dir), dir + "/default.json");
    EXPECT_EQ(Profile::resolve("no-such-watch", dir), "");
    EXPECT_EQ(Profile::resolve("./mine.json", dir), "./mine.json");
    EXPECT_EQ(Profile::resolve("mine.json", dir), "mine.json");
    Profile profile;
    std::string error;
    EXPECT_FALSE(profile.load("/nonexistent/watch.json", &error));
    EXPECT_NE(error.find("open(/nonexistent/watch.json): No such file"), std::string::npos)
        << error;
}

TEST(Profile, EveryShippedProfileLoadsCleanly) {
    std::vector<std::string> names = Profile::names(sim::profilesDir());
    ASSERT_FALSE(names.empty()) << "no profiles in " << sim::profilesDir();
    for (const std::string &name : names) {
        Profile profile;
        std::string error;
        EXPECT_TRUE(profile.load(Profile::resolve(name, sim::profilesDir()), &error)) << error;
        EXPECT_TRUE(profile.warnings().empty()) << name << ": " << profile.warnings()[0];
        EXPECT_FALSE(profile.description().empty()) << name;
    }
}

TEST(Profile, TheDefaultWatchHasEveryValueTheAboutPageReads) {
    Profile profile;
    std::string error;
    ASSERT_TRUE(profile.load(Profile::resolve("default", sim::profilesDir()), &error)) << error;
    const nlohmann::json &p = profile.json();
    EXPECT_EQ(p["system_info"]["platform"]["system/model_name"], "QX-M480");
    EXPECT_EQ(p["system_info"]["vendor"]["tizen/feature/esim.phase"], 1);

    // The About page shows 4 GiB minus the available space as used.
    double available =
        p["storage"]["block_size"].get<double>() * p["storage"]["available_blocks"].get<double>();
    double usedGiB = (4294967296.0 - available) / 1073741824.0;
    EXPECT_EQ(p["storage"]["block_size"], 4096);
    EXPECT_GE(usedGiB, 1.15);
    EXPECT_LE(usedGiB, 1.3);

    const nlohmann::json expected = {
        {"db/setting/debug_mode", false},
        {"db/wms/user_agreement/errorlog", false},
        {"db/setting/update-service/auto_update_type", 0},
        {"db/csc/text_string_country", "GB"},
        {"db/csc/country_iso", "GB"},
        {"db/csc/salescode", "XEU"},
        {"db/menu_widget/regionformat", "en_GB.UTF-8"},
        {"db/menu_widget/language", "en_US.UTF-8"},
        {"db/retailmode/enabled", 0},
        {"db/retailmode/RDU_V9/enabled", 0},
        {"db/setting/developer_option_state", false},
        {"db/setting/accessibility/tts", false},
        {"db/setup_wizard/standalone", 0},
    };
    for (auto &entry : expected.items()) {
        ASSERT_TRUE(p["settings"].contains(entry.key())) << entry.key();
        const nlohmann::json &value = p["settings"][entry.key()];
        EXPECT_EQ(value, entry.value()) << entry.key();
        EXPECT_EQ(value.type_name(), entry.value().type_name()) << entry.key() << ": type";
    }
}
