// The customer-specific configuration (CSC) of the simulated watch, from the profile's "csc"
// section:
//   "csc": {"features": {"30": true, "39": false}, "approval_version": "M480-KT-3.2.0611"}
// Features the profile does not name are off.

#include <csc_feature.h>
#include <csc_svc_config.h>

#include <cstring>
#include <string>

#include "PlatformState.h"

namespace {

const nlohmann::json &section() {
    static const nlohmann::json empty = nlohmann::json::object();
    const nlohmann::json &profile = platform::profile();
    auto it = profile.find("csc");
    return it != profile.end() && it->is_object() ? *it : empty;
}

}  // namespace

extern "C" {

int csc_feature_get_bool(int feature) {
    std::string key = std::to_string(feature);
    int code;
    if (platform::fault("csc_feature_get_bool", key.c_str(), &code))
        return code;
    auto features = section().find("features");
    if (features == section().end() || !features->is_object())
        return 0;
    auto it = features->find(key);
    return it != features->end() && it->is_boolean() && it->get<bool>() ? 1 : 0;
}

int csc_svc_config_chk_approval_version_exist(void) {
    int code;
    if (platform::fault("csc_svc_config_chk_approval_version_exist", nullptr, &code))
        return code;
    auto it = section().find("approval_version");
    return it != section().end() && it->is_string() ? 1 : 0;
}

int csc_svc_config_get_approval_version(char *buffer) {
    if (!buffer)
        return -1;
    int code;
    if (platform::fault("csc_svc_config_get_approval_version", nullptr, &code))
        return code;
    auto it = section().find("approval_version");
    if (it == section().end() || !it->is_string())
        return 0;
    std::string version = it->get<std::string>();
    strncpy(buffer, version.c_str(), CSC_SVC_CONFIG_APPROVAL_VERSION_MAX - 1);
    buffer[CSC_SVC_CONFIG_APPROVAL_VERSION_MAX - 1] = '\0';
    return 1;
}

}  // extern "C"
