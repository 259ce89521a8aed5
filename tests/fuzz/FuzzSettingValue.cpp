// The settings store's value files: whatever a file holds, a read either fails with a reason
// or gives a value that writes back and reads again unchanged. The input is also tried as a
// key.

#include <cstdint>
#include <string>

#include "FuzzCheck.h"
#include "SettingsStore.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    std::string content(reinterpret_cast<const char *>(data), size);

    if (sim::SettingsStore::validKey(content)) {
        sim::SettingsStore store("/state");
        FUZZ_CHECK(store.keyOf(store.pathOf(content)) == content);
    }

    sim::SettingValue value;
    std::string error;
    if (!sim::SettingsStore::decode(content, &value, &error)) {
        FUZZ_CHECK(!error.empty());
        FUZZ_CHECK(value.type == sim::SettingValue::None);
        return 0;
    }
    FUZZ_CHECK(value.type != sim::SettingValue::None);
    // Bytes after a number, a NUL among them, make the file corrupt, not a shorter number.
    if (value.type != sim::SettingValue::String)
        FUZZ_CHECK(content.find('\0') == std::string::npos);

    sim::SettingValue reread;
    FUZZ_CHECK(sim::SettingsStore::decode(sim::SettingsStore::encode(value), &reread, &error));
    FUZZ_CHECK(reread == value);

    // What `quillset-sim get` prints, `quillset-sim set` takes back.
    sim::SettingValue typed;
    FUZZ_CHECK(sim::SettingValue::parse(sim::SettingValue::typeName(value.type), value.text(),
                                        &typed, &error));
    FUZZ_CHECK(typed == value);
    return 0;
}
