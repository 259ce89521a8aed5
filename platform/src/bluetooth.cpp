// The Bluetooth adapter of the simulated watch, from the profile's "bluetooth" section:
//   "bluetooth": {"address": "A0:B1:C2:D3:E4:F5"}   (no "address": the adapter answers none)
// A watch without the section has no adapter.

#include <bluetooth.h>

#include <cstdlib>
#include <cstring>

#include "PlatformState.h"

namespace {

int g_initialized = 0;

}  // namespace

extern "C" {

int bt_initialize(void) {
    int code;
    if (platform::fault("bt_initialize", nullptr, &code))
        return code;
    ++g_initialized;
    return BT_ERROR_NONE;
}

int bt_deinitialize(void) {
    int code;
    if (platform::fault("bt_deinitialize", nullptr, &code))
        return code;
    if (g_initialized == 0)
        return BT_ERROR_NOT_INITIALIZED;
    --g_initialized;
    return BT_ERROR_NONE;
}

int bt_adapter_get_address(char **address) {
    if (!address)
        return BT_ERROR_INVALID_PARAMETER;
    *address = nullptr;
    int code;
    if (platform::fault("bt_adapter_get_address", nullptr, &code))
        return code;
    if (g_initialized == 0)
        return BT_ERROR_NOT_INITIALIZED;
    const nlohmann::json &profile = platform::profile();
    auto adapter = profile.find("bluetooth");
    if (adapter == profile.end() || !adapter->is_object())
        return BT_ERROR_NOT_SUPPORTED;
    auto it = adapter->find("address");
    if (it != adapter->end() && it->is_string()) {
        *address = strdup(it->get<std::string>().c_str());
        if (!*address)
            return BT_ERROR_OUT_OF_MEMORY;
    }
    return BT_ERROR_NONE;
}

}  // extern "C"
