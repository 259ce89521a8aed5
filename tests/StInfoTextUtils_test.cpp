// The storage line and the phone-number presentation. Expected strings are what a person
// reads on an English watch; units come from the catalogue.

#include <gtest/gtest.h>
#include <vconf.h>

#include <cstdio>
#include <string>

#include "StInfoTextUtils.h"
#include "support/EflTestEnvironment.h"

class StInfoTextUtilsTest : public EflTest {
protected:
    std::string storage(double used) {
        char buffer[50] = {0};
        formatStorageSize(used, buffer, sizeof(buffer));
        return buffer;
    }
    void setRegion(const char *value) {
        ASSERT_EQ(vconf_set_str("db/menu_widget/regionformat", value), VCONF_OK);
    }
};

TEST_F(StInfoTextUtilsTest, StorageLinePicksTheUnitAtExactBinaryBoundaries) {
    EXPECT_EQ(storage(0), "0.00KB / 4.0GB");
    EXPECT_EQ(storage(1048575.0), "1024.00KB / 4.0GB");
    EXPECT_EQ(storage(1048576.0), "1.00MB / 4.0GB");
    EXPECT_EQ(storage(1073741823.0), "1024.00MB / 4.0GB");
    EXPECT_EQ(storage(1073741824.0), "1.00GB / 4.0GB");
    EXPECT_EQ(storage(3.5 * 1073741824.0), "3.50GB / 4.0GB");
}

TEST_F(StInfoTextUtilsTest, StorageLineIsCutToTheBuffer) {
    char buffer[8];
    formatStorageSize(3.5 * 1073741824.0, buffer, sizeof(buffer));
    EXPECT_STREQ(buffer, "3.50GB ");
}

TEST_F(StInfoTextUtilsTest, RegionComesFromTheRegionFormatAndSomeAreNeverFormatted) {
    setRegion("en_GB.UTF-8");
    EXPECT_EQ(getRegionCode(), "GB");
    setRegion("ko");  // too short to hold a country
    EXPECT_EQ(getRegionCode(), "KR");
    std::remove((EflTestEnvironment::stateDir() + "/settings/db/menu_widget/regionformat").c_str());
    EXPECT_EQ(getRegionCode(), "KR");
    for (const char *code :
         {"RU", "UZ", "BY", "KZ", "BN", "KH", "ID", "MY", "MM", "PH", "SG", "TH", "VN", "IL", "CN"})
        EXPECT_TRUE(isUnformattedRegion(code)) << code;
    for (const char *code : {"ru", "", "GB", "KR", "R"})
        EXPECT_FALSE(isUnformattedRegion(code)) << code;
}

TEST_F(StInfoTextUtilsTest, PhoneNumbersAreFormattedForTheRegion) {
    setRegion("en_GB.UTF-8");
    EXPECT_EQ(formatPhoneNumber(""), "");
    EXPECT_EQ(formatPhoneNumber("07700900123"), "07700 900123");
    // Twelve characters: only an international number is formatted.
    EXPECT_EQ(formatPhoneNumber("447700900123"), "447700900123");
    EXPECT_EQ(formatPhoneNumber("+447700900123"), "+44 7700 900123");
    // Sixteen characters with the "+" are the longest formatted; seventeen never are.
    EXPECT_EQ(formatPhoneNumber("+496912345678901"), "+49 69 12345678901");
    EXPECT_EQ(formatPhoneNumber("+4969123456789012"), "+4969123456789012");
}

TEST_F(StInfoTextUtilsTest, SomeRegionsKeepNumbersAsGiven) {
    setRegion("ru_RU.UTF-8");
    EXPECT_EQ(formatPhoneNumber("89161234567"), "89161234567");
    setRegion("ko_KR.UTF-8");
    EXPECT_EQ(formatPhoneNumber("01012345678"), "010-1234-5678");
}

TEST_F(StInfoTextUtilsTest, NationalFormReplacesTheCountryCodeWithTrunkZero) {
    EXPECT_EQ(toNationalNumber("+82 10-1234-5678"), "010-1234-5678");
    EXPECT_EQ(toNationalNumber("010-1234-5678"), "010-1234-5678");
    EXPECT_EQ(toNationalNumber("+821012345678"), "");
    EXPECT_EQ(toNationalNumber(""), "");
}
