// The stand-ins that answer from the watch's profile (system information by namespace,
// installed packages, the CSC approval version, the suite's shared resources), the platform
// log (the line format people read, and where the lines go), and every stand-in without a watch.

#include <app_manager.h>
#include <csc_svc_config.h>
#include <dlog.h>
#include <gtest/gtest.h>
#include <package_manager.h>
#include <system_info.h>
#include <unistd.h>
#include <vconf.h>

#include <cstdlib>
#include <regex>
#include <tuple>

#include "StatePaths.h"
#include "sim_platform_support.h"

namespace {

// A fault may name a key by its path or by its whole name.
const char *const kProfile = R"({"system_info": {
    "platform": {"system/model_name": "QX-M480", "screen/width": 360, "system/build.string": "B",
                 "feature/network.telephony.service.cdma": true},
    "vendor": {"tizen/feature/esim.phase": 1, "tizen/system/rated_current": "5V 0.5A",
               "tizen/big": 4294967296, "tizen/feature/slots": 2}},
    "faults": [{"call": "system_info_get_platform_string", "key": "system/build.string", "code": -5},
               {"call": "system_info_get_custom_int", "code": -12,
                "key": "http://developer.nerova.com/tizen/feature/slots"}]})";

class PlatformInfoTest : public simtest::StateTest {
protected:
    void SetUp() override {
        StateTest::SetUp();
        useProfile(kProfile);
    }
};

// A key asked for as a platform or custom (vendor) string, bool or int: the value as text,
// "untouched" for a string left alone (a bool starts as false, an int as 7).
std::string ask(bool custom, char type, const std::string &key, int *ret) {
    const char *k = key.c_str();
    char untouched, *text = &untouched;
    bool flag = false;
    int number = 7;
    if (type == 's')
        *ret = custom ? system_info_get_custom_string(k, &text)
                      : system_info_get_platform_string(k, &text);
    else if (type == 'b')
        *ret = system_info_get_platform_bool(k, &flag);
    else
        *ret = custom ? system_info_get_custom_int(k, &number)
                      : system_info_get_platform_int(k, &number);
    if (type != 's')
        return type == 'b' ? (flag ? "true" : "false") : std::to_string(number);
    std::string value = text == &untouched ? "untouched" : text ? text : "(null)";
    if (text != &untouched)
        free(text);
    return value;
}

}  // namespace

TEST_F(PlatformInfoTest, KeysAnswerFromTheirOwnNamespaceWithTheirOwnType) {
    const int kNone = SYSTEM_INFO_ERROR_NONE, kInvalid = SYSTEM_INFO_ERROR_INVALID_PARAMETER,
              kUnsupported = SYSTEM_INFO_ERROR_NOT_SUPPORTED;
    const std::string p = "http://tizen.org/", v = "http://developer.nerova.com/";
    // Asked as a custom value or not, of which type: the result and the value.
    const std::tuple<bool, char, std::string, int, const char *> cases[] = {
        {false, 's', p + "system/model_name", kNone, "QX-M480"},
        {false, 'b', p + "feature/network.telephony.service.cdma", kNone, "true"},
        {false, 'i', p + "screen/width", kNone, "360"},
        {true, 'i', v + "tizen/feature/esim.phase", kNone, "1"},
        {true, 's', v + "tizen/system/rated_current", kNone, "5V 0.5A"},
        // A failed string read gives NULL; other failed reads leave the value alone.
        {false, 's', v + "system/model_name", kInvalid, "(null)"},
        {false, 's', "tizen.org/system/model_name", kInvalid, "(null)"},
        {false, 's', p, kInvalid, "(null)"},
        {false, 's', p + "tizen/feature/esim.phase", kUnsupported, "(null)"},
        {false, 's', p + "system/no_such_key", kUnsupported, "(null)"},
        {false, 's', p + "screen/width", kInvalid, "(null)"},
        {false, 'b', p + "system/model_name", kInvalid, "false"},
        {true, 'i', v + "tizen/big", kInvalid, "7"},  // too big for an int
        {false, 's', p + "system/build.string", -5, "(null)"},
        {true, 'i', v + "tizen/feature/slots", -12, "7"},
    };
    for (const auto &[custom, type, key, result, value] : cases) {
        int ret = 0;
        EXPECT_EQ(ask(custom, type, key, &ret), value) << key;
        EXPECT_EQ(ret, result) << key;
    }
    EXPECT_TRUE(simtest::contains(platformLog(), "W/SYSTEM_INFO("))
        << "a profile value of the wrong type is pointed out";
}

TEST_F(PlatformInfoTest, PackagesApprovalVersionAndSharedResourcesComeFromTheProfile) {
    const std::string longVersion(100, 'V');
    useProfile(R"({"packages": {"com.nerova.tessid.ravelclient": {"version": "1.6.3"}},
                   "csc": {"approval_version": ")" +
               longVersion + "\"}}");
    package_info_h info = nullptr;
    ASSERT_EQ(package_manager_get_package_info("com.nerova.tessid.ravelclient", &info), 0);
    package_info_destroy(info);
    EXPECT_EQ(package_manager_get_package_info("com.nerova.absent", &info),
              PACKAGE_MANAGER_ERROR_NO_SUCH_PACKAGE);
    char version[CSC_SVC_CONFIG_APPROVAL_VERSION_MAX];
    EXPECT_EQ(csc_svc_config_get_approval_version(version), 1);
    EXPECT_EQ(version, longVersion.substr(0, CSC_SVC_CONFIG_APPROVAL_VERSION_MAX - 1));
    char *path = nullptr;
    ASSERT_EQ(app_manager_get_shared_resource_path("com.nerova.quillset", &path), 0);
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

using DlogTest = simtest::StateTest;

TEST_F(DlogTest, EachMessageIsOneStampedLineInTheLogBufferAndOnStderrOnlyWhenAsked) {
    unsetenv("QUILLSET_LOG_ECHO");
    testing::internal::CaptureStderr();
    int n = dlog_print(DLOG_ERROR, "W-SETTING", "%s: %s(%d) > %s", "StInfoModel.cpp", "_init", 42,
                       "\033[0;31m* Critical * vconf failed\033[0;m");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "") << "the terminal gets nothing";
    std::string first = platformLog();
    std::regex line("^\\d\\d:\\d\\d:\\d\\d\\.\\d\\d\\d E/W-SETTING\\(" + std::to_string(getpid()) +
                    "\\): StInfoModel\\.cpp: _init\\(42\\) > \033\\[0;31m\\* Critical \\* vconf "
                    "failed\033\\[0;m\n$");
    EXPECT_TRUE(std::regex_match(first, line)) << first;
    EXPECT_EQ(n, static_cast<int>(first.size()));

    // The terminal gets a copy only when QUILLSET_LOG_ECHO asks for one.
    for (const char *echo : {"", "0", "1"}) {
        setenv("QUILLSET_LOG_ECHO", echo, 1);
        size_t before = platformLog().size();
        testing::internal::CaptureStderr();
        dlog_print(DLOG_INFO, "T", "echo '%s'", echo);
        std::string err = testing::internal::GetCapturedStderr();
        EXPECT_EQ(err, *echo == '1' ? platformLog().substr(before) : "") << echo;
    }

    // Priorities show as letters; a long message is whole, a trailing newline not doubled.
    const std::string big(10000, 'x');
    size_t before = platformLog().size();
    testing::internal::CaptureStderr();
    for (log_priority priority :
         {DLOG_VERBOSE, DLOG_DEBUG, DLOG_INFO, DLOG_DEFAULT, DLOG_WARN, DLOG_ERROR, DLOG_FATAL})
        dlog_print(priority, "T", "ends with a newline\n");
    EXPECT_EQ(dlog_print(DLOG_SILENT, "T", "never shown"), 0);
    dlog_print(DLOG_INFO, "T", "%s", big.c_str());
    std::string err = testing::internal::GetCapturedStderr(), letters;
    unsetenv("QUILLSET_LOG_ECHO");
    EXPECT_EQ(platformLog().substr(before), err) << "the same lines, colour codes kept";
    for (size_t at = 0; at < err.size(); at = err.find('\n', at) + 1)
        letters += err[at + 13];  // after "HH:MM:SS.mmm "
    EXPECT_EQ(letters, "VDIIWEFI");
    EXPECT_TRUE(simtest::contains(err, "): " + big + "\n") && !simtest::contains(err, "\n\n"));
}

TEST(StandInsWithoutAWatch, CallsFailSayingWhyOnceAndLogLinesStillReachStderr) {
    // With no watch there is no log buffer: stderr is the only place left for a line.
    unsetenv("QUILLSET_STATE");
    testing::internal::CaptureStderr();
    int value = 3;
    char *text = nullptr;
    EXPECT_EQ(vconf_get_int("db/test/a", &value), VCONF_ERROR);
    EXPECT_EQ(vconf_set_int("db/test/a", 1), VCONF_ERROR);
    EXPECT_EQ(vconf_notify_key_changed(
                  "db/test/a", [](keynode_t *, void *) {}, nullptr),
              -1);
    EXPECT_EQ(system_info_get_platform_string("http://tizen.org/system/model_name", &text),
              SYSTEM_INFO_ERROR_IO_ERROR);
    EXPECT_EQ(dlog_print(DLOG_WARN, "T", "still here"), -EIO) << "no log file to write";
    std::string err = testing::internal::GetCapturedStderr();
    EXPECT_TRUE(value == 3 && text == nullptr);
    const char *reason = "QUILLSET_STATE is not set: start the program with `quillset-sim run`";
    EXPECT_NE(err.find(reason), std::string::npos) << err;
    EXPECT_EQ(err.find(reason), err.rfind(reason)) << "said once: " << err;
    EXPECT_TRUE(simtest::contains(err, " W/T(" + std::to_string(getpid()) + "): still here\n"));
}
