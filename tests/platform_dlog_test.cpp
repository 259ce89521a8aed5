// The platform log: the line format people read, and where the lines go.

#include <dlog.h>
#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdlib>
#include <regex>
#include <sstream>
#include <string>

#include "sim_platform_support.h"

using simtest::StateTest;

using DlogTest = StateTest;

TEST_F(DlogTest, EachMessageIsOneStampedLineOnStderrAndInTheLog) {
    testing::internal::CaptureStderr();
    int n = dlog_print(DLOG_ERROR, "W-SETTING", "%s: %s(%d) > %s", "StInfoModel.cpp", "_init", 42,
                       "\033[0;31m* Critical * vconf failed\033[0;m");
    std::string err = testing::internal::GetCapturedStderr();
    const std::string pid = std::to_string(getpid());
    std::regex line("^\\d\\d:\\d\\d:\\d\\d\\.\\d\\d\\d E/W-SETTING\\(" + pid +
                    "\\): StInfoModel\\.cpp: _init\\(42\\) > \033\\[0;31m\\* Critical \\* vconf "
                    "failed\033\\[0;m\n$");
    EXPECT_TRUE(std::regex_match(err, line)) << err;
    EXPECT_EQ(platformLog(), err) << "the same line, colour codes kept";
    EXPECT_EQ(n, static_cast<int>(err.size()));
}

TEST_F(DlogTest, PrioritiesShowAsLetters) {
    const std::pair<log_priority, char> cases[] = {
        {DLOG_VERBOSE, 'V'}, {DLOG_DEBUG, 'D'}, {DLOG_INFO, 'I'}, {DLOG_DEFAULT, 'I'},
        {DLOG_WARN, 'W'},    {DLOG_ERROR, 'E'}, {DLOG_FATAL, 'F'}};
    testing::internal::CaptureStderr();
    for (const auto &c : cases)
        dlog_print(c.first, "T", "m");
    EXPECT_EQ(dlog_print(DLOG_SILENT, "T", "never shown"), 0);
    testing::internal::GetCapturedStderr();
    std::string log = platformLog();
    std::string letters;
    std::istringstream lines(log);
    std::string line;
    while (std::getline(lines, line))
        letters += line.substr(13, 1);  // after "HH:MM:SS.mmm "
    EXPECT_EQ(letters, "VDIIWEF");
}

TEST_F(DlogTest, LongMessagesAreWholeAndATrailingNewlineIsNotDoubled) {
    testing::internal::CaptureStderr();
    std::string big(10000, 'x');
    dlog_print(DLOG_INFO, "T", "%s", big.c_str());
    dlog_print(DLOG_INFO, "T", "ends with a newline\n");
    testing::internal::GetCapturedStderr();
    std::string log = platformLog();
    EXPECT_NE(log.find(big + "\n"), std::string::npos);
    EXPECT_NE(log.find("): ends with a newline\n"), std::string::npos);
    EXPECT_EQ(log.find("\n\n"), std::string::npos);
}

TEST(DlogWithoutAWatch, LinesStillReachStderr) {
    unsetenv("QUILLSET_STATE");
    testing::internal::CaptureStderr();
    int n = dlog_print(DLOG_WARN, "T", "still here");
    std::string err = testing::internal::GetCapturedStderr();
    EXPECT_NE(err.find(" W/T("), std::string::npos) << err;
    EXPECT_NE(err.find("): still here\n"), std::string::npos) << err;
    EXPECT_EQ(n, -EIO) << "the log file could not be written";
}
