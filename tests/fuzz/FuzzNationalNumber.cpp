// The national form of a formatted phone number.

#include <cstdint>
#include <string>

#include "FuzzCheck.h"
#include "StInfoTextUtils.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    std::string formatted(reinterpret_cast<const char *>(data), size);
    std::string national = toNationalNumber(formatted);
    if (formatted.empty() || formatted[0] != '+') {
        FUZZ_CHECK(national == formatted);
        return 0;
    }
    size_t space = formatted.find(' ');
    if (space == std::string::npos) {
        FUZZ_CHECK(national.empty());
        return 0;
    }
    // The trunk prefix takes the place of the country code and its blank.
    FUZZ_CHECK(national == "0" + formatted.substr(space + 1));
    return 0;
}
