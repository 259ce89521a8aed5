#include "StInfoStatusRecordReader.h"

#include <cstddef>
#include <cstdio>
#include <cstring>

namespace {

// The offsets the telephony service's records are read at.
static_assert(offsetof(TelMiscVersionInformation, szHwVersion) == 33, "hardware version");
static_assert(offsetof(TelMiscVersionInformation, szPrlVersion) == 147, "PRL version");
static_assert(offsetof(TelMiscVersionInformation, szEriVersion) == 199, "ERI version");
static_assert(offsetof(TelMiscSNInformation, szMeid) == 32, "MEID");
static_assert(offsetof(TelMiscSNInformation, szImei) == 64, "IMEI");
static_assert(offsetof(TelMiscSNInformation, szImeiSv) == 96, "IMEI SV");
static_assert(offsetof(TelSimMsisdnList_t, count) == 0, "MSISDN count");
static_assert(offsetof(TelSimMsisdnList_t, list) == 4, "first MSISDN");
static_assert(offsetof(TelSimIccIdRecord_t, icc_length) == 0, "ICCID length");
static_assert(offsetof(TelSimIccIdRecord_t, icc_num) == 4, "ICCID text");
static_assert(sizeof(TelSimIccIdRecord_t) == 5124, "ICCID record");

// And those of the eSIM service's profile list.
static_assert(offsetof(esim_profile_list_s, count) == 0, "profile count");
static_assert(offsetof(esim_profile_list_s, profiles) == 16, "first profile");
static_assert(sizeof(esim_profile_s) == 32, "profile entry");
static_assert(offsetof(esim_profile_s, name) == 0, "profile name");
static_assert(offsetof(esim_profile_s, kind) == 8, "profile kind");
static_assert(offsetof(esim_profile_s, state) == 12, "profile state");

// Carriers that show the ICCID split after the sixth digit and closed with an F.
const char *const kSplitIccidSalesCodes[] = {"SKC", "SKO", "KTC", "KTO", "LUC", "LUO"};

// A NUL-terminated text within a field of the record; a full field has no terminator.
template <size_t N>
std::string fieldText(const char (&field)[N]) {
    return std::string(field, strnlen(field, N));
}

}  // namespace

std::string StInfoStatusRecordReader::hwVersion(const TelMiscVersionInformation &record) {
    return fieldText(record.szHwVersion);
}

std::string StInfoStatusRecordReader::prlVersion(const TelMiscVersionInformation &record) {
    return fieldText(record.szPrlVersion);
}

std::string StInfoStatusRecordReader::eriVersion(const TelMiscVersionInformation &record) {
    return fieldText(record.szEriVersion);
}

std::string StInfoStatusRecordReader::meid(const TelMiscSNInformation &record) {
    return fieldText(record.szMeid);
}

std::string StInfoStatusRecordReader::imei(const TelMiscSNInformation &record) {
    return fieldText(record.szImei);
}

std::string StInfoStatusRecordReader::imeiSv(const TelMiscSNInformation &record) {
    return fieldText(record.szImeiSv);
}

std::string StInfoStatusRecordReader::msisdn(const TelSimMsisdnList_t &list) {
    if (list.count <= 0)
        return "";
    // A number that fills its field has no terminator; it must not run into the name after it.
    return fieldText(list.list[0].num);
}

bool StInfoStatusRecordReader::iccid(const TelSimIccIdRecord_t &record,
                                     const std::string &salesCode, std::string *text) {
    if (record.icc_length <= 0)
        return false;
    std::string digits = fieldText(record.icc_num);
    for (const char *code : kSplitIccidSalesCodes) {
        if (salesCode != code)
            continue;
        char buffer[256] = {0};
        if (record.icc_length > 6 && digits.size() > 6)
            snprintf(buffer, sizeof(buffer), "%.6s %sF", digits.c_str(), digits.c_str() + 6);
        *text = buffer;
        return true;
    }
    *text = digits;
    return true;
}

std::vector<std::shared_ptr<StInfoStatusModel::StInfoEsimProfile>>
StInfoStatusRecordReader::esimProfiles(const esim_profile_list_s &list) {
    std::vector<std::shared_ptr<StInfoStatusModel::StInfoEsimProfile>> profiles;
    // The count is a byte, the list holds fewer entries: a larger count is read as a full list.
    unsigned count = list.count < ESIM_PROFILE_MAX ? list.count : ESIM_PROFILE_MAX;
    for (unsigned i = 0; i < count; ++i) {
        const esim_profile_s &entry = list.profiles[i];
        auto profile = std::make_shared<StInfoStatusModel::StInfoEsimProfile>();
        profile->name = entry.name ? entry.name : "";
        profile->kind = entry.kind;
        profile->state = entry.state;
        profiles.push_back(profile);
    }
    return profiles;
}
