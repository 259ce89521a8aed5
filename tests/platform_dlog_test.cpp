// The platform log: the line format people read, and where the lines go.

#include <dlog.h>
#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdlib>
#include <regex>

#include "sim_platform_support.h"

using DlogTest = simtest::StateTest;

TEST_F(DlogTest, EachMessageIsOneStampedLineOnStderrAndInTheLog) {
    testing::internal::CaptureStderr();
    int n = dlog_print(DLOG_ERROR, "W-SETTING", "%s: %s(%d) > %s", "StInfoModel.cpp", "_init", 42,
                       "\033[0;31m* Critical * vconf failed\033[0;m");
    std::string err = testing::internal::GetCapturedStderr();
    std::regex line("^\\d\\d:\\d\\d:\\d\\d\\.\\d\\d\\d E/W-SETTING\\(" + std::to_string(getpid()) +
                    "\\): StInfoModel\\.cpp: _init\\(42\\) > \033\\[0;31m\\* Critical \\* vconf "
                    "failed\033\\[0;m\n$");
    EXPECT_TRUE(std::regex_match(err, line)) << err;
    EXPECT_EQ(platformLog(), err) << "the same line, colour codes kept";
    EXPECT_EQ(n, static_cast<int>(err.size()));
}

TEST_F(DlogTest, PrioritiesShowAsLettersAndMessagesAreWholeWithOneNewline) {
    const std::string big(10000, 'x');
    testing::internal::CaptureStderr();
    for (log_priority priority :
         {DLOG_VERBOSE, DLOG_DEBUG, DLOG_INFO, DLOG_DEFAULT, DLOG_WARN, DLOG_ERROR, DLOG_FATAL})
        dlog_print(priority, "T", "ends with a newline\n");
    EXPECT_EQ(dlog_print(DLOG_SILENT, "T", "never shown"), 0);
    dlog_print(DLOG_INFO, "T", "%s", big.c_str());
    testing::internal::GetCapturedStderr();
    std::string log = platformLog(), letters;
    for (size_t at = 0; at < log.size(); at = log.find('\n', at) + 1)
        letters += log[at + 13];  // after "HH:MM:SS.mmm "
    EXPECT_EQ(letters, "VDIIWEFI");
    EXPECT_TRUE(simtest::contains(log, "): " + big + "\n")) << "a long message is whole";
    EXPECT_FALSE(simtest::contains(log, "\n\n"));
}

TEST(DlogWithoutAWatch, LinesStillReachStderr) {
    unsetenv("QUILLSET_STATE");
    testing::internal::CaptureStderr();
    int n = dlog_print(DLOG_WARN, "T", "still here");
    std::string err = testing::internal::GetCapturedStderr();
    EXPECT_TRUE(simtest::contains(err, " W/T(" + std::to_string(getpid()) + "): still here\n"));
    EXPECT_EQ(n, -EIO) << "the log file could not be written";
}
