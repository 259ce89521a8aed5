#include "StInfoStatusRecordReader.h"

#include <cstdio>
#include <cstring>

namespace {

// Carriers that show the ICCID split after the sixth digit and closed with an F.
const char *const kSplitIccidSalesCodes[] = {"SKC", "SKO", "KTC", "KTO", "LUC", "LUO"};

// A NUL-terminated text within a field of the record; a full field has no terminator. The
// modem's records declare their texts as unsigned char, the SIM's as char.
template <typename Char, size_t N>
std::string fieldText(const Char (&field)[N]) {
    const char *text = reinterpret_cast<const char *>(field);
    return std::string(text, strnlen(text, N));
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

std::string StInfoStatusRecordReader::iccid(const TelSimIccIdRecord_t &record,
                                            const std::string &salesCode) {
    std::string digits = fieldText(record.icc_num);
    for (const char *code : kSplitIccidSalesCodes) {
        if (salesCode != code)
            continue;
        char buffer[256] = {0};
        if (record.icc_length > 6 && digits.size() > 6)
            snprintf(buffer, sizeof(buffer), "%.6s %sF", digits.c_str(), digits.c_str() + 6);
        return buffer;
    }
    return digits;
}

std::vector<std::shared_ptr<StInfoStatusModel::StInfoEsimProfile>>
StInfoStatusRecordReader::esimProfiles(const esim_profile_list_s &list) {
    std::vector<std::shared_ptr<StInfoStatusModel::StInfoEsimProfile>> profiles;
    for (unsigned i = 0; i < list.count; ++i) {
        const esim_profile_s &entry = list.profiles[i];
        auto profile = std::make_shared<StInfoStatusModel::StInfoEsimProfile>();
        profile->name = entry.name ? entry.name : "";
        profile->kind = entry.kind;
        profile->state = entry.state;
        profiles.push_back(profile);
    }
    return profiles;
}
