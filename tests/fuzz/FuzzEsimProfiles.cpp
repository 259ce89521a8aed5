// The eSIM service's profile list, made of the input's bytes; each profile's name pointer is
// replaced by a text cut from the input (or null when its first byte is odd).

#include <esim.h>

#include <cstdint>
#include <string>
#include <vector>

#include "FuzzCheck.h"
#include "FuzzRecord.h"
#include "StInfoStatusRecordReader.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    auto list = recordFrom<esim_profile_list_s>(data, size);
    std::vector<std::string> names(ESIM_PROFILE_MAX);
    for (size_t i = 0; i < ESIM_PROFILE_MAX; ++i) {
        esim_profile_s &entry = list->profiles[i];
        size_t at = size ? (i * 7) % size : 0;
        if (size && (data[at] & 1)) {
            entry.name = nullptr;
            continue;
        }
        names[i].assign(reinterpret_cast<const char *>(data) + at, size ? (size - at) % 24 : 0);
        entry.name = const_cast<char *>(names[i].c_str());
    }

    auto profiles = StInfoStatusRecordReader::esimProfiles(*list);
    FUZZ_CHECK(profiles.size() == list->count);
    for (size_t i = 0; i < profiles.size(); ++i) {
        const esim_profile_s &entry = list->profiles[i];
        FUZZ_CHECK(profiles[i]->name == (entry.name ? entry.name : ""));
        FUZZ_CHECK(profiles[i]->kind == entry.kind && profiles[i]->state == entry.state);
    }
    return 0;
}
