#ifndef _ST_INFO_TEXT_UTILS_H_
#define _ST_INFO_TEXT_UTILS_H_

#include <string>

// Text utilities of the About page: the storage line and the device's own phone number.

// Writes "<used><unit> / 4.0<GB>" into buffer (at most size bytes, terminator included).
void formatStorageSize(double usedBytes, char *buffer, int size);

// The two-letter region of the watch's region format ("KR" when unknown).
std::string getRegionCode();

// The two-letter region of a region-format value such as "en_GB.UTF-8" ("KR" for none).
std::string regionOfFormat(const char *value);

// Regions whose numbers are shown exactly as the network gives them.
bool isUnformattedRegion(const std::string &region);

// The number formatted as the user types it in the watch's region.
std::string formatPhoneNumber(const std::string &number);

// The number formatted as the user types it in region.
std::string formatPhoneNumber(const std::string &number, const std::string &region);

// Has the formatter (a library loaded on first use) loaded off the main loop ahead of need.
void preparePhoneNumberFormatting();
// Before the process ends: waits for that load if it is still under way.
void finishPhoneNumberFormatting();

// "+82 10-1234-5678" -> "010-1234-5678": drops the country code for the trunk prefix 0.
std::string toNationalNumber(const std::string &formatted);

#endif
