// System information from the profile's "system_info" section: platform keys under
// "http://tizen.org/", vendor keys under "http://developer.nerova.com/".

#include <system_info.h>

#include <dlog.h>

#include <cstdlib>
#include <cstring>
#include <string>

#include "PlatformState.h"

namespace {

const char *const kPlatformPrefix = "http://tizen.org/";
const char *const kVendorPrefix = "http://developer.nerova.com/";

enum class Kind { Bool, Int, Double, String };

// Finds the profile's value of a key; returns an error code when it cannot be answered.
int lookup(const char *call, const char *prefix, const char *section, const char *key,
           const nlohmann::json **value) {
    if (!key)
        return SYSTEM_INFO_ERROR_INVALID_PARAMETER;
    size_t prefixLength = strlen(prefix);
    if (strncmp(key, prefix, prefixLength) != 0)
        return SYSTEM_INFO_ERROR_INVALID_PARAMETER;
    const char *path = key + prefixLength;
    int code;
    if (platform::fault(call, path, &code) || platform::fault(call, key, &code))
        return code;
    const nlohmann::json &profile = platform::profile();
    auto info = profile.find("system_info");
    if (info == profile.end() || !info->is_object())
        return SYSTEM_INFO_ERROR_NOT_SUPPORTED;
    auto keys = info->find(section);
    if (keys == info->end() || !keys->is_object())
        return SYSTEM_INFO_ERROR_NOT_SUPPORTED;
    auto it = keys->find(path);
    if (it == keys->end())
        return SYSTEM_INFO_ERROR_NOT_SUPPORTED;
    *value = &*it;
    return SYSTEM_INFO_ERROR_NONE;
}

template <typename T>
int get(const char *call, const char *prefix, const char *section, const char *key, T *out,
        Kind kind) {
    if (!out)
        return SYSTEM_INFO_ERROR_INVALID_PARAMETER;
    const nlohmann::json *value = nullptr;
    int ret = lookup(call, prefix, section, key, &value);
    if (ret != SYSTEM_INFO_ERROR_NONE)
        return ret;
    switch (kind) {
        case Kind::Bool:
            if (!value->is_boolean())
                return SYSTEM_INFO_ERROR_INVALID_PARAMETER;
            break;
        case Kind::Int:
            if (!value->is_number_integer())
                return SYSTEM_INFO_ERROR_INVALID_PARAMETER;
            break;
        case Kind::Double:
            if (!value->is_number())
                return SYSTEM_INFO_ERROR_INVALID_PARAMETER;
            break;
        case Kind::String:
            break;
    }
    *out = value->get<T>();
    return SYSTEM_INFO_ERROR_NONE;
}

int getString(const char *call, const char *prefix, const char *section, const char *key,
              char **out) {
    if (!out)
        return SYSTEM_INFO_ERROR_INVALID_PARAMETER;
    *out = nullptr;
    const nlohmann::json *value = nullptr;
    int ret = lookup(call, prefix, section, key, &value);
    if (ret != SYSTEM_INFO_ERROR_NONE)
        return ret;
    if (!value->is_string())
        return SYSTEM_INFO_ERROR_INVALID_PARAMETER;
    *out = strdup(value->get<std::string>().c_str());
    return *out ? SYSTEM_INFO_ERROR_NONE : SYSTEM_INFO_ERROR_OUT_OF_MEMORY;
}

}  // namespace

extern "C" {

int system_info_get_platform_bool(const char *key, bool *value) {
    return get(__func__, kPlatformPrefix, "platform", key, value, Kind::Bool);
}

int system_info_get_platform_int(const char *key, int *value) {
    return get(__func__, kPlatformPrefix, "platform", key, value, Kind::Int);
}

int system_info_get_platform_double(const char *key, double *value) {
    return get(__func__, kPlatformPrefix, "platform", key, value, Kind::Double);
}

int system_info_get_platform_string(const char *key, char **value) {
    return getString(__func__, kPlatformPrefix, "platform", key, value);
}

int system_info_get_custom_bool(const char *key, bool *value) {
    return get(__func__, kVendorPrefix, "vendor", key, value, Kind::Bool);
}

int system_info_get_custom_int(const char *key, int *value) {
    return get(__func__, kVendorPrefix, "vendor", key, value, Kind::Int);
}

int system_info_get_custom_double(const char *key, double *value) {
    return get(__func__, kVendorPrefix, "vendor", key, value, Kind::Double);
}

int system_info_get_custom_string(const char *key, char **value) {
    return getString(__func__, kVendorPrefix, "vendor", key, value);
}

}  // extern "C"
