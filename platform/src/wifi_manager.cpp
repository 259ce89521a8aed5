// The Wi-Fi manager of the simulated watch, from the profile's "wifi" section:
//   "wifi": {"mac_address": "a0:b1:c2:d3:e4:f6"}   (no "mac_address": the manager answers none)
// A watch without the section has no Wi-Fi.

#include <wifi-manager.h>

#include <cstdlib>
#include <cstring>

#include "PlatformState.h"

struct wifi_manager_s {
    int magic = 0x57494649;
};

extern "C" {

int wifi_manager_initialize(wifi_manager_h *wifi) {
    if (!wifi)
        return WIFI_MANAGER_ERROR_INVALID_PARAMETER;
    *wifi = nullptr;
    int code;
    if (platform::fault("wifi_manager_initialize", nullptr, &code))
        return code;
    const nlohmann::json &profile = platform::profile();
    auto it = profile.find("wifi");
    if (it == profile.end() || !it->is_object())
        return WIFI_MANAGER_ERROR_NOT_SUPPORTED;
    *wifi = new wifi_manager_s();
    return WIFI_MANAGER_ERROR_NONE;
}

int wifi_manager_deinitialize(wifi_manager_h wifi) {
    if (!wifi)
        return WIFI_MANAGER_ERROR_INVALID_PARAMETER;
    // The handle holds nothing the caller could use again: a failing close still frees it.
    delete static_cast<wifi_manager_s *>(wifi);
    int code;
    if (platform::fault("wifi_manager_deinitialize", nullptr, &code))
        return code;
    return WIFI_MANAGER_ERROR_NONE;
}

int wifi_manager_get_mac_address(wifi_manager_h wifi, char **mac_address) {
    if (!wifi || !mac_address)
        return WIFI_MANAGER_ERROR_INVALID_PARAMETER;
    *mac_address = nullptr;
    int code;
    if (platform::fault("wifi_manager_get_mac_address", nullptr, &code))
        return code;
    const nlohmann::json &profile = platform::profile();
    auto section = profile.find("wifi");
    if (section == profile.end() || !section->is_object())
        return WIFI_MANAGER_ERROR_INVALID_OPERATION;
    auto it = section->find("mac_address");
    if (it != section->end() && it->is_string()) {
        *mac_address = strdup(it->get<std::string>().c_str());
        if (!*mac_address)
            return WIFI_MANAGER_ERROR_OUT_OF_MEMORY;
    }
    return WIFI_MANAGER_ERROR_NONE;
}

}  // extern "C"
