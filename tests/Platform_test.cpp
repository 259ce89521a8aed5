// The simulated platform: the settings store as processes see it, the device profile and the
// faults it injects.

#include <gtest/gtest.h>
#include <system_info.h>
#include <vconf.h>

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <string>

#include "PlatformState.h"
#include "Profile.h"
#include "SettingsStore.h"
#include "support/EflTestEnvironment.h"
#include "support/SimulatedWatch.h"

namespace {

struct Seen {
    int calls = 0;
    int type = -1;
    int value = -1;
    std::chrono::steady_clock::time_point at;
};

void boolChangedCb(keynode_t *node, void *data) {
    auto *seen = static_cast<Seen *>(data);
    ++seen->calls;
    seen->type = vconf_keynode_get_type(node);
    seen->value = vconf_keynode_get_bool(node);
    seen->at = std::chrono::steady_clock::now();
}

void writeProfile(const std::string &json) {
    std::ofstream(EflTestEnvironment::stateDir() + "/profile.json") << json;
    platform::reloadProfile();
}

}  // namespace

class PlatformTest : public EflTest {
protected:
    void TearDown() override {
        writeProfile("{}");
        EflTest::TearDown();
    }
};

TEST_F(PlatformTest, SettingsAreTypedAndAReadOfAnotherTypeFails) {
    ASSERT_EQ(vconf_set_bool("db/test/flag", 1), VCONF_OK);
    ASSERT_EQ(vconf_set_int("db/test/count", -42), VCONF_OK);
    ASSERT_EQ(vconf_set_str("db/test/name", "Kesta \xE2\x9C\x93"), VCONF_OK);
    int b = 0, i = 0;
    EXPECT_EQ(vconf_get_bool("db/test/flag", &b), VCONF_OK);
    EXPECT_EQ(b, 1);
    EXPECT_EQ(vconf_get_int("db/test/count", &i), VCONF_OK);
    EXPECT_EQ(i, -42);
    char *name = vconf_get_str("db/test/name");
    ASSERT_NE(name, nullptr);
    EXPECT_STREQ(name, "Kesta \xE2\x9C\x93");
    free(name);
    EXPECT_EQ(vconf_get_int("db/test/flag", &i), VCONF_ERROR_WRONG_TYPE);
    EXPECT_EQ(vconf_get_str("db/test/count"), nullptr);
    EXPECT_EQ(vconf_get_bool("db/test/missing", &b), VCONF_ERROR_FILE_NO_ENT);
}

TEST_F(PlatformTest, CorruptOrTruncatedValuesAreFailedReadsWithAReason) {
    sim::SettingsStore store(EflTestEnvironment::stateDir());
    for (const char *content : {"bool:", "boo", "int:12x", "bool:2", "", "double:nan"}) {
        std::string path = store.pathOf("db/test/corrupt");
        std::string error;
        ASSERT_EQ(store.write("db/test/corrupt", sim::SettingValue::ofInt(1), &error),
                  sim::SettingsStore::Ok);
        std::ofstream(path, std::ios::trunc) << content;
        int value = 7;
        EXPECT_EQ(vconf_get_int("db/test/corrupt", &value), VCONF_ERROR) << content;
        EXPECT_EQ(value, 7) << "a failed read leaves the caller's value alone";
    }
    EXPECT_NE(logSinceStart().find("corrupt value"), std::string::npos);
}

TEST_F(PlatformTest, KeysThatWouldLeaveTheStoreAreRefused) {
    EXPECT_EQ(vconf_set_int("../escape", 1), VCONF_ERROR);
    EXPECT_EQ(vconf_set_int("db//double", 1), VCONF_ERROR);
    EXPECT_EQ(vconf_set_int("/absolute", 1), VCONF_ERROR);
    EXPECT_EQ(vconf_set_int(nullptr, 1), VCONF_ERROR);
}

TEST_F(PlatformTest, AChangeFromAnotherProcessReachesTheWatcherQuickly) {
    Seen seen;
    ASSERT_EQ(vconf_set_bool("db/test/watched", 0), VCONF_OK);
    ASSERT_EQ(vconf_notify_key_changed("db/test/watched", boolChangedCb, &seen), VCONF_OK);
    EXPECT_EQ(vconf_notify_key_changed("db/test/watched", boolChangedCb, &seen), VCONF_ERROR);

    std::string cmd = "env -u DBUS_SYSTEM_BUS_ADDRESS " + SimulatedWatch::binDir() +
                      "/quillset-sim --state " + EflTestEnvironment::stateDir() +
                      " set db/test/watched bool true";
    ASSERT_EQ(system(cmd.c_str()), 0);
    auto written = std::chrono::steady_clock::now();
    ASSERT_TRUE(runUntil([&]() { return seen.calls > 0; }, 2.0));
    EXPECT_EQ(seen.value, 1);
    EXPECT_EQ(seen.type, VCONF_TYPE_BOOL);
    auto latency = std::chrono::duration_cast<std::chrono::milliseconds>(seen.at - written);
    EXPECT_LT(latency.count(), 100);

    // Deleting a watched key tells the watcher too, with no value.
    sim::SettingsStore store(EflTestEnvironment::stateDir());
    std::string error;
    ASSERT_EQ(store.remove("db/test/watched", &error), sim::SettingsStore::Ok);
    ASSERT_TRUE(runUntil([&]() { return seen.calls > 1; }, 2.0));
    EXPECT_EQ(seen.type, VCONF_TYPE_NONE);

    EXPECT_EQ(vconf_ignore_key_changed("db/test/watched", boolChangedCb), VCONF_OK);
    ASSERT_EQ(vconf_set_bool("db/test/watched", 1), VCONF_OK);
    settle(0.1);
    EXPECT_EQ(seen.calls, 2);
}

TEST_F(PlatformTest, SystemInformationComesFromTheProfileByNamespace) {
    writeProfile(R"({"system_info": {"platform": {"system/model_name": "QX-R925",
                   "feature/x": true}, "vendor": {"tizen/feature/esim.phase": 1}}})");
    char *model = nullptr;
    ASSERT_EQ(system_info_get_platform_string("http://tizen.org/system/model_name", &model),
              SYSTEM_INFO_ERROR_NONE);
    EXPECT_STREQ(model, "QX-R925");
    free(model);
    int phase = 0;
    EXPECT_EQ(
        system_info_get_custom_int("http://developer.nerova.com/tizen/feature/esim.phase", &phase),
        SYSTEM_INFO_ERROR_NONE);
    EXPECT_EQ(phase, 1);
    // Wrong namespace, wrong type, missing key.
    EXPECT_EQ(system_info_get_custom_int("http://tizen.org/tizen/feature/esim.phase", &phase),
              SYSTEM_INFO_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(system_info_get_platform_string("http://tizen.org/feature/x", &model),
              SYSTEM_INFO_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(model, nullptr);
    EXPECT_EQ(system_info_get_platform_string("http://tizen.org/system/none", &model),
              SYSTEM_INFO_ERROR_NOT_SUPPORTED);
}

TEST_F(PlatformTest, AFaultFailsTheNamedCallOnlyForItsKey) {
    writeProfile(
        R"({"faults": [{"call": "vconf_get_int", "key": "db/test/faulty", "code": -13}]})");
    ASSERT_EQ(vconf_set_int("db/test/faulty", 1), VCONF_OK);
    ASSERT_EQ(vconf_set_int("db/test/fine", 1), VCONF_OK);
    int value = 0;
    EXPECT_EQ(vconf_get_int("db/test/faulty", &value), -13);
    EXPECT_EQ(vconf_get_int("db/test/fine", &value), VCONF_OK);
}

TEST(ProfileTest, ErrorsNameTheFileAndThePlace) {
    sim::Profile profile;
    std::string error;
    EXPECT_FALSE(profile.parse("{\n  \"storage\": {\"block_size\": -1}\n}", "p.json", &error));
    EXPECT_EQ(error,
              "p.json: storage.block_size: expected a non-negative integer, found number -1");
    EXPECT_FALSE(profile.parse("{\"faults\": [{\"call\": \"x\"}]}", "p.json", &error));
    EXPECT_NE(error.find("faults[0].code"), std::string::npos) << error;
    EXPECT_FALSE(profile.parse("{\n\"a\": tru\n}", "p.json", &error));
    EXPECT_EQ(error.rfind("p.json: line 2, column", 0), 0u) << error;
    EXPECT_FALSE(profile.parse("{\"settings\": {\"../x\": 1}}", "p.json", &error));
    EXPECT_NE(error.find("settings.../x"), std::string::npos) << error;

    ASSERT_TRUE(profile.parse("{\"colour\": 1, \"policy\": {\"sevice\": true}}", "p.json", &error))
        << error;
    ASSERT_EQ(profile.warnings().size(), 2u);
    EXPECT_EQ(profile.warnings()[1], "p.json: policy.sevice: unknown key (ignored)");
}
