// The system-information stand-in: keys by namespace from the watch's profile.

#include <gtest/gtest.h>
#include <system_info.h>

#include <cstdlib>
#include <string>

#include "sim_platform_support.h"

using simtest::StateTest;

namespace {

const char *const kProfile = R"({"system_info": {
    "platform": {"system/model_name": "QX-M480", "feature/platform.version": "6.0",
                 "feature/network.telephony.service.cdma": false, "screen/width": 360,
                 "screen/dpi": 301.5},
    "vendor": {"tizen/feature/esim.phase": 1, "tizen/system/rated_current": "5V 0.5A",
               "tizen/feature/nfc": true, "tizen/big": 4294967296}}})";

class SystemInfoTest : public StateTest {
protected:
    void SetUp() override {
        StateTest::SetUp();
        useProfile(kProfile);
    }
};

std::string platformString(const std::string &path, int *ret) {
    char *value = nullptr;
    *ret = system_info_get_platform_string(("http://tizen.org/" + path).c_str(), &value);
    std::string text = value ? value : "(null)";
    free(value);
    return text;
}

}  // namespace

TEST_F(SystemInfoTest, PlatformAndVendorKeysAnswerFromTheirOwnNamespace) {
    int ret;
    EXPECT_EQ(platformString("system/model_name", &ret), "QX-M480");
    EXPECT_EQ(ret, SYSTEM_INFO_ERROR_NONE);
    EXPECT_EQ(platformString("feature/platform.version", &ret), "6.0");

    bool cdma = true;
    EXPECT_EQ(system_info_get_platform_bool(
                  "http://tizen.org/feature/network.telephony.service.cdma", &cdma),
              SYSTEM_INFO_ERROR_NONE);
    EXPECT_FALSE(cdma);
    int width = 0;
    EXPECT_EQ(system_info_get_platform_int("http://tizen.org/screen/width", &width),
              SYSTEM_INFO_ERROR_NONE);
    EXPECT_EQ(width, 360);
    double dpi = 0;
    EXPECT_EQ(system_info_get_platform_double("http://tizen.org/screen/dpi", &dpi),
              SYSTEM_INFO_ERROR_NONE);
    EXPECT_EQ(dpi, 301.5);
    EXPECT_EQ(system_info_get_platform_double("http://tizen.org/screen/width", &dpi),
              SYSTEM_INFO_ERROR_NONE)
        << "a whole number is a double too";
    EXPECT_EQ(dpi, 360.0);

    int phase = 0;
    EXPECT_EQ(
        system_info_get_custom_int("http://developer.nerova.com/tizen/feature/esim.phase", &phase),
        SYSTEM_INFO_ERROR_NONE);
    EXPECT_EQ(phase, 1);
    char *current = nullptr;
    EXPECT_EQ(system_info_get_custom_string(
                  "http://developer.nerova.com/tizen/system/rated_current", &current),
              SYSTEM_INFO_ERROR_NONE);
    EXPECT_STREQ(current, "5V 0.5A");
    free(current);
    bool nfc = false;
    EXPECT_EQ(system_info_get_custom_bool("http://developer.nerova.com/tizen/feature/nfc", &nfc),
              SYSTEM_INFO_ERROR_NONE);
    EXPECT_TRUE(nfc);
}

TEST_F(SystemInfoTest, WrongNamespaceMissingKeyAndWrongTypeAreRefused) {
    struct Case {
        const char *key;
        int expected;
    };
    // Asked as a platform string.
    const Case cases[] = {
        {"http://developer.nerova.com/system/model_name", SYSTEM_INFO_ERROR_INVALID_PARAMETER},
        {"tizen.org/system/model_name", SYSTEM_INFO_ERROR_INVALID_PARAMETER},
        {"http://tizen.org/", SYSTEM_INFO_ERROR_INVALID_PARAMETER},
        {"http://tizen.org/tizen/feature/esim.phase", SYSTEM_INFO_ERROR_NOT_SUPPORTED},
        {"http://tizen.org/system/no_such_key", SYSTEM_INFO_ERROR_NOT_SUPPORTED},
        {"http://tizen.org/screen/width", SYSTEM_INFO_ERROR_INVALID_PARAMETER},
    };
    for (const Case &c : cases) {
        char *value = reinterpret_cast<char *>(0x1);
        EXPECT_EQ(system_info_get_platform_string(c.key, &value), c.expected) << c.key;
        EXPECT_EQ(value, nullptr) << c.key << ": a failed string read gives NULL";
    }
    bool flag = true;
    EXPECT_EQ(system_info_get_platform_bool("http://tizen.org/system/model_name", &flag),
              SYSTEM_INFO_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(system_info_get_platform_bool("http://tizen.org/feature/none", &flag),
              SYSTEM_INFO_ERROR_NOT_SUPPORTED);
    EXPECT_TRUE(flag) << "other failed reads leave the value alone";
    int number = 7;
    EXPECT_EQ(system_info_get_custom_int("http://developer.nerova.com/tizen/big", &number),
              SYSTEM_INFO_ERROR_INVALID_PARAMETER)
        << "too big for an int";
    EXPECT_EQ(number, 7);
    EXPECT_EQ(system_info_get_custom_int(nullptr, &number), SYSTEM_INFO_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(
        system_info_get_custom_int("http://developer.nerova.com/tizen/feature/esim.phase", nullptr),
        SYSTEM_INFO_ERROR_INVALID_PARAMETER);
    EXPECT_NE(platformLog().find("W/SYSTEM_INFO("), std::string::npos)
        << "a profile value of the wrong type is pointed out";
}

TEST_F(SystemInfoTest, FaultsFailAKeyByItsPathOrWholeName) {
    useProfile(std::string(kProfile).insert(1, R"("faults": [
        {"call": "system_info_get_platform_string", "key": "system/model_name", "code": -5},
        {"call": "system_info_get_custom_int",
         "key": "http://developer.nerova.com/tizen/feature/esim.phase", "code": -12}],)"));
    int ret;
    EXPECT_EQ(platformString("system/model_name", &ret), "(null)");
    EXPECT_EQ(ret, -5);
    EXPECT_EQ(platformString("feature/platform.version", &ret), "6.0");
    int phase = 0;
    EXPECT_EQ(
        system_info_get_custom_int("http://developer.nerova.com/tizen/feature/esim.phase", &phase),
        -12);
    EXPECT_EQ(phase, 0);
}

TEST_F(SystemInfoTest, AProfileWithoutSystemInformationSupportsNothing) {
    useProfile("{}");
    int ret;
    EXPECT_EQ(platformString("system/model_name", &ret), "(null)");
    EXPECT_EQ(ret, SYSTEM_INFO_ERROR_NOT_SUPPORTED);
}

TEST(SystemInfoWithoutAWatch, ReadsAreIoErrors) {
    unsetenv("QUILLSET_STATE");
    char *value = nullptr;
    EXPECT_EQ(system_info_get_platform_string("http://tizen.org/system/model_name", &value),
              SYSTEM_INFO_ERROR_IO_ERROR);
    EXPECT_EQ(value, nullptr);
}
