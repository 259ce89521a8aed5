// The device profile loader: a profile is refused with a message naming the file, or loaded;
// a loaded one can be written into a state directory (profile.json).

#include <cstdint>
#include <string>

#include "FuzzCheck.h"
#include "Profile.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    std::string text(reinterpret_cast<const char *>(data), size);
    sim::Profile profile;
    std::string error;
    if (!profile.parse(text, "fuzz.json", &error)) {
        FUZZ_CHECK(error.compare(0, 11, "fuzz.json: ") == 0);
        return 0;
    }
    FUZZ_CHECK(profile.json().is_object());
    profile.description();
    profile.json().dump(2);
    return 0;
}
