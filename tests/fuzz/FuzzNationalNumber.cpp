// The national form of a formatted phone number.

#include <cstdint>
#include <string>

#include "FuzzCheck.h"
#include "StInfoTextUtils.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    std::string formatted(reinterpret_cast<const char *>(data), size);
    std::string national = toNationalNumber(formatted);
    size_t space = formatted.find(' ');
    // Only a number with a country code changes: the trunk prefix takes the place of the code
    // and its blank, and without a blank nothing is left.
    if (formatted.empty() || formatted[0] != '+')
        FUZZ_CHECK(national == formatted);
    else
        FUZZ_CHECK(national ==
                   (space == std::string::npos ? "" : "0" + formatted.substr(space + 1)));
    return 0;
}
