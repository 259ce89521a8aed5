// The as-you-type phone-number formatter, in a library of its own: libphonenumber brings ICU
// and protobuf along, which only the device status page needs.
#include <phonenumbers/asyoutypeformatter.h>
#include <phonenumbers/phonenumberutil.h>

#include <cstring>
#include <memory>
#include <string>

#include "StInfoModuleEntries.h"

extern "C" char *quillset_info_format_as_you_type(const char *region, const char *number) {
    if (!region || !number)
        return nullptr;
    std::unique_ptr<i18n::phonenumbers::AsYouTypeFormatter> formatter(
        i18n::phonenumbers::PhoneNumberUtil::GetInstance()->GetAsYouTypeFormatter(region));
    std::string result;
    for (const char *c = number; *c; ++c)
        formatter->InputDigit(static_cast<unsigned char>(*c), &result);
    return strdup(result.c_str());
}

extern "C" void quillset_info_phonenumber_warm_up(void) {
    i18n::phonenumbers::PhoneNumberUtil::GetInstance();
}
