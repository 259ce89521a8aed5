// The phone-number formatting: "<region format>\n<number>"; without a newline the whole input
// is the number and the region format is unset.

#include <cstdint>
#include <string>

#include "FuzzCheck.h"
#include "StInfoTextUtils.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    std::string input(reinterpret_cast<const char *>(data), size);
    size_t newline = input.find('\n');
    std::string format = newline == std::string::npos ? "" : input.substr(0, newline);
    std::string number = newline == std::string::npos ? input : input.substr(newline + 1);

    std::string region = regionOfFormat(newline == std::string::npos ? nullptr : format.c_str());
    FUZZ_CHECK(region.size() == 2);

    std::string shown = formatPhoneNumber(number, region);
    if (number.empty())
        FUZZ_CHECK(shown.empty());
    bool tooLong = number.size() >= 12 && !(number.size() <= 16 && number[0] == '+');
    if (!number.empty() && (tooLong || isUnformattedRegion(region)))
        FUZZ_CHECK(shown == number);
    // What the status page makes of it for carriers that show national numbers.
    toNationalNumber(shown);
    return 0;
}
