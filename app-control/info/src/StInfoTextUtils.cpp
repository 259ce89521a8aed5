#include "StInfoTextUtils.h"

#include <libintl.h>
#include <vconf.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "StInfoDefines.h"
#include "StInfoModule.h"
#include "StInfoModuleEntries.h"

namespace {

const char *const kRegionFormatKey = "db/menu_widget/regionformat";
const char *const kDefaultRegion = "KR";

const char *const kUnformattedRegions[] = {"RU", "UZ", "BY", "KZ", "BN", "KH", "ID", "MY",
                                           "MM", "PH", "SG", "TH", "VN", "IL", "CN"};

StInfoModule &phoneNumberModule() {
    static StInfoModule module(ST_INFO_PHONENUMBER_MODULE);
    return module;
}

}  // namespace

void formatStorageSize(double usedBytes, char *buffer, int size) {
    if (!buffer || size <= 0)
        return;
    double value;
    const char *unit;
    if (usedBytes < 1048576.0) {
        value = usedBytes * (1.0 / 1024.0);
        unit = "IDS_ST_BODY_KB";
    } else if (usedBytes < 1073741824.0) {
        value = usedBytes * (1.0 / 1048576.0);
        unit = "IDS_ST_BODY_MB";
    } else {
        value = usedBytes * (1.0 / 1073741824.0);
        unit = "IDS_ST_BODY_GB";
    }
    // The total is the watch's fixed 4 GB capacity.
    snprintf(buffer, size, "%4.2lf%s / %3.1f%s", value, dgettext(ST_INFO_TEXT_DOMAIN, unit), 4.0,
             dgettext(ST_INFO_TEXT_DOMAIN, "IDS_ST_BODY_GB"));
}

std::string getRegionCode() {
    char *value = vconf_get_str(kRegionFormatKey);
    std::string region = regionOfFormat(value);
    free(value);
    return region;
}

std::string regionOfFormat(const char *value) {
    // "en_GB.UTF-8": the country follows the language and its underscore.
    if (!value || strlen(value) < 5)
        return kDefaultRegion;
    return std::string(value + 3, 2);
}

bool isUnformattedRegion(const std::string &region) {
    if (region.empty())
        return false;
    for (const char *code : kUnformattedRegions)
        if (region == code)
            return true;
    return false;
}

std::string formatPhoneNumber(const std::string &number) {
    if (number.empty())
        return std::string();
    return formatPhoneNumber(number, getRegionCode());
}

std::string formatPhoneNumber(const std::string &number, const std::string &region) {
    if (number.empty())
        return std::string();
    size_t length = number.size();
    if (length >= 12 && !(length <= 16 && number[0] == '+'))
        return number;
    if (isUnformattedRegion(region))
        return number;

    auto format = reinterpret_cast<StInfoFormatAsYouTypeFn>(
        phoneNumberModule().symbol(ST_INFO_FORMAT_AS_YOU_TYPE_ENTRY));
    char *typed = format ? format(region.c_str(), number.c_str()) : nullptr;
    if (!typed)
        return std::string();
    std::string result = typed;
    free(typed);
    if (!result.empty() && result.back() == ' ')
        result.pop_back();
    return result;
}

void preparePhoneNumberFormatting() {
    phoneNumberModule().loadInBackground(ST_INFO_PHONENUMBER_WARM_UP_ENTRY);
}

void finishPhoneNumberFormatting() {
    phoneNumberModule().finishBackground();
}

std::string toNationalNumber(const std::string &formatted) {
    if (formatted.empty() || formatted[0] != '+')
        return formatted;
    size_t space = formatted.find(' ');
    if (space == std::string::npos)
        return std::string();
    std::string national = formatted.substr(space);
    national[0] = '0';
    return national;
}
