// The stand-ins that answer from the watch's profile: system information by namespace,
// installed packages, the CSC approval version and the suite's shared resources.

#include <app_manager.h>
#include <csc_svc_config.h>
#include <gtest/gtest.h>
#include <package_manager.h>
#include <system_info.h>

#include <cstdlib>
#include <sstream>

#include "StatePaths.h"
#include "sim_platform_support.h"

namespace {

const char *const kProfile = R"({"system_info": {
    "platform": {"system/model_name": "QX-M480", "screen/width": 360, "screen/dpi": 301.5,
                 "feature/network.telephony.service.cdma": true},
    "vendor": {"tizen/feature/esim.phase": 1, "tizen/system/rated_current": "5V 0.5A",
               "tizen/feature/nfc": true, "tizen/big": 4294967296}}})";

class PlatformInfoTest : public simtest::StateTest {
protected:
    void SetUp() override {
        StateTest::SetUp();
        useProfile(kProfile);
    }
};

// Asks for a key as a platform or custom (vendor) value of the given type: the result and the
// value as text, "untouched" for a string left alone (other types start as false or 7).
std::string ask(bool custom, char type, const std::string &key, int *ret) {
    const char *k = key.c_str();
    std::ostringstream text;
    if (type == 's') {
        char untouched, *value = &untouched;
        *ret = custom ? system_info_get_custom_string(k, &value)
                      : system_info_get_platform_string(k, &value);
        text << (value == &untouched ? "untouched" : value ? value : "(null)");
        if (value != &untouched)
            free(value);
    } else if (type == 'b') {
        bool value = false;
        *ret = custom ? system_info_get_custom_bool(k, &value)
                      : system_info_get_platform_bool(k, &value);
        text << (value ? "true" : "false");
    } else if (type == 'i') {
        int value = 7;
        *ret = custom ? system_info_get_custom_int(k, &value)
                      : system_info_get_platform_int(k, &value);
        text << value;
    } else {
        double value = 7;
        *ret = custom ? system_info_get_custom_double(k, &value)
                      : system_info_get_platform_double(k, &value);
        text << value;
    }
    return text.str();
}

}  // namespace

TEST_F(PlatformInfoTest, KeysAnswerFromTheirOwnNamespaceWithTheirOwnType) {
    const int kNone = SYSTEM_INFO_ERROR_NONE, kInvalid = SYSTEM_INFO_ERROR_INVALID_PARAMETER,
              kUnsupported = SYSTEM_INFO_ERROR_NOT_SUPPORTED;
    const std::string p = "http://tizen.org/", v = "http://developer.nerova.com/";
    const struct {
        bool custom;
        char type;
        std::string key;
        int ret;
        const char *value;
    } cases[] = {
        {false, 's', p + "system/model_name", kNone, "QX-M480"},
        {false, 'b', p + "feature/network.telephony.service.cdma", kNone, "true"},
        {false, 'i', p + "screen/width", kNone, "360"},
        {false, 'd', p + "screen/dpi", kNone, "301.5"},
        {false, 'd', p + "screen/width", kNone, "360"},  // a whole number is a double too
        {true, 'i', v + "tizen/feature/esim.phase", kNone, "1"},
        {true, 's', v + "tizen/system/rated_current", kNone, "5V 0.5A"},
        {true, 'b', v + "tizen/feature/nfc", kNone, "true"},
        // A failed string read gives NULL; other failed reads leave the value alone.
        {false, 's', v + "system/model_name", kInvalid, "(null)"},
        {false, 's', "tizen.org/system/model_name", kInvalid, "(null)"},
        {false, 's', p, kInvalid, "(null)"},
        {false, 's', p + "tizen/feature/esim.phase", kUnsupported, "(null)"},
        {false, 's', p + "system/no_such_key", kUnsupported, "(null)"},
        {false, 's', p + "screen/width", kInvalid, "(null)"},
        {false, 'b', p + "system/model_name", kInvalid, "false"},
        {true, 'i', v + "tizen/big", kInvalid, "7"},  // too big for an int
    };
    for (const auto &c : cases) {
        int ret = 0;
        EXPECT_EQ(ask(c.custom, c.type, c.key, &ret), c.value) << c.key;
        EXPECT_EQ(ret, c.ret) << c.key;
    }
    EXPECT_TRUE(simtest::contains(platformLog(), "W/SYSTEM_INFO("))
        << "a profile value of the wrong type is pointed out";
    int ret = 0;
    useProfile("{}");
    EXPECT_EQ(ask(false, 's', p + "system/model_name", &ret), "(null)");
    EXPECT_EQ(ret, kUnsupported) << "a profile without system information supports nothing";
}

TEST_F(PlatformInfoTest, FaultsFailAKeyByItsPathOrWholeName) {
    useProfile(std::string(kProfile).insert(1, R"("faults": [
        {"call": "system_info_get_platform_string", "key": "system/model_name", "code": -5},
        {"call": "system_info_get_custom_int",
         "key": "http://developer.nerova.com/tizen/feature/esim.phase", "code": -12}],)"));
    int ret = 0;
    EXPECT_EQ(ask(false, 's', "http://tizen.org/system/model_name", &ret), "(null)");
    EXPECT_EQ(ret, -5);
    EXPECT_EQ(ask(true, 'i', "http://developer.nerova.com/tizen/feature/esim.phase", &ret), "7");
    EXPECT_EQ(ret, -12);
    EXPECT_EQ(ask(false, 'i', "http://tizen.org/screen/width", &ret), "360");
}

TEST_F(PlatformInfoTest, PackagesApprovalVersionAndSharedResourcesComeFromTheProfile) {
    const std::string longVersion(100, 'V');
    useProfile(R"({"packages": {"com.nerova.tessid.ravelclient": {"version": "1.6.3"}},
                   "csc": {"approval_version": ")" +
               longVersion + "\"}}");
    package_info_h info = nullptr;
    ASSERT_EQ(package_manager_get_package_info("com.nerova.tessid.ravelclient", &info),
              PACKAGE_MANAGER_ERROR_NONE);
    EXPECT_EQ(package_info_destroy(info), PACKAGE_MANAGER_ERROR_NONE);
    EXPECT_EQ(package_manager_get_package_info("com.nerova.absent", &info),
              PACKAGE_MANAGER_ERROR_NO_SUCH_PACKAGE);
    EXPECT_EQ(info, nullptr);
    char version[CSC_SVC_CONFIG_APPROVAL_VERSION_MAX];
    EXPECT_EQ(csc_svc_config_get_approval_version(version), 1);
    EXPECT_EQ(version, longVersion.substr(0, CSC_SVC_CONFIG_APPROVAL_VERSION_MAX - 1));
    char *path = nullptr;
    ASSERT_EQ(app_manager_get_shared_resource_path("com.nerova.quillset", &path),
              APP_MANAGER_ERROR_NONE);
    EXPECT_EQ(path, sim::dataDir() + "/shared/res/") << "callers append file names to it";
    free(path);
    EXPECT_EQ(app_manager_get_shared_resource_path("com.nerova.quillset.reset", &path),
              APP_MANAGER_ERROR_NO_SUCH_APP);

    useProfile(R"({"packages": {"com.nerova.tessid.ravelclient": {}},
                   "faults": [{"call": "package_manager_get_package_info", "code": -5}]})");
    EXPECT_EQ(package_manager_get_package_info("com.nerova.tessid.ravelclient", &info), -5);
    EXPECT_EQ(info, nullptr);
    EXPECT_EQ(csc_svc_config_get_approval_version(version), 0) << "no approval version";
}

TEST(PlatformInfoWithoutAWatch, ReadsAreIoErrors) {
    unsetenv("QUILLSET_STATE");
    char *value = nullptr;
    EXPECT_EQ(system_info_get_platform_string("http://tizen.org/system/model_name", &value),
              SYSTEM_INFO_ERROR_IO_ERROR);
    EXPECT_EQ(value, nullptr);
}
