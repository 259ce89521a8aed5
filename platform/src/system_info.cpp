// System information from the profile's "system_info" section: platform keys are asked for as
// "http://tizen.org/<path>", vendor keys as "http://developer.nerova.com/<path>".

#include <system_info.h>

#include <dlog.h>

#include <climits>
#include <cstdlib>
#include <cstring>
#include <string>

#include "PlatformState.h"

namespace {

const char *const kTag = "SYSTEM_INFO";

struct Namespace {
    const char *prefix;
    const char *section;
};

const Namespace kPlatform = {"http://tizen.org/", "platform"};
const Namespace kVendor = {"http://developer.nerova.com/", "vendor"};

// Finds the profile's value of a key, or answers why there is none.
int lookup(const char *call, const Namespace &ns, const char *key, const nlohmann::json **value) {
    if (!key)
        return SYSTEM_INFO_ERROR_INVALID_PARAMETER;
    size_t prefixLength = strlen(ns.prefix);
    if (strncmp(key, ns.prefix, prefixLength) != 0 || !key[prefixLength])
        return SYSTEM_INFO_ERROR_INVALID_PARAMETER;
    const char *path = key + prefixLength;
    int code;
    if (platform::fault(call, path, &code) || platform::fault(call, key, &code))
        return code;
    if (!platform::hasState())
        return SYSTEM_INFO_ERROR_IO_ERROR;
    const nlohmann::json &profile = platform::profile();
    auto info = profile.find("system_info");
    if (info == profile.end() || !info->is_object())
        return SYSTEM_INFO_ERROR_NOT_SUPPORTED;
    auto keys = info->find(ns.section);
    if (keys == info->end() || !keys->is_object())
        return SYSTEM_INFO_ERROR_NOT_SUPPORTED;
    auto it = keys->find(path);
    if (it == keys->end())
        return SYSTEM_INFO_ERROR_NOT_SUPPORTED;
    *value = &*it;
    return SYSTEM_INFO_ERROR_NONE;
}

int wrongType(const char *call, const char *key, const nlohmann::json &value) {
    dlog_print(DLOG_WARN, kTag, "%s(%s): the profile holds %s %s", call, key, value.type_name(),
               value.dump().c_str());
    return SYSTEM_INFO_ERROR_INVALID_PARAMETER;
}

int getBool(const char *call, const Namespace &ns, const char *key, bool *out) {
    const nlohmann::json *value = nullptr;
    int ret = out ? lookup(call, ns, key, &value) : SYSTEM_INFO_ERROR_INVALID_PARAMETER;
    if (ret != SYSTEM_INFO_ERROR_NONE)
        return ret;
    if (!value->is_boolean())
        return wrongType(call, key, *value);
    *out = value->get<bool>();
    return SYSTEM_INFO_ERROR_NONE;
}

int getInt(const char *call, const Namespace &ns, const char *key, int *out) {
    const nlohmann::json *value = nullptr;
    int ret = out ? lookup(call, ns, key, &value) : SYSTEM_INFO_ERROR_INVALID_PARAMETER;
    if (ret != SYSTEM_INFO_ERROR_NONE)
        return ret;
    bool fits = value->is_number_unsigned()
                    ? value->get<unsigned long long>() <= INT_MAX
                    : value->is_number_integer() && value->get<long long>() >= INT_MIN &&
                          value->get<long long>() <= INT_MAX;
    if (!fits)
        return wrongType(call, key, *value);
    *out = value->get<int>();
    return SYSTEM_INFO_ERROR_NONE;
}

int getDouble(const char *call, const Namespace &ns, const char *key, double *out) {
    const nlohmann::json *value = nullptr;
    int ret = out ? lookup(call, ns, key, &value) : SYSTEM_INFO_ERROR_INVALID_PARAMETER;
    if (ret != SYSTEM_INFO_ERROR_NONE)
        return ret;
    if (!value->is_number())
        return wrongType(call, key, *value);
    *out = value->get<double>();
    return SYSTEM_INFO_ERROR_NONE;
}

int getString(const char *call, const Namespace &ns, const char *key, char **out) {
    if (!out)
        return SYSTEM_INFO_ERROR_INVALID_PARAMETER;
    *out = nullptr;
    const nlohmann::json *value = nullptr;
    int ret = lookup(call, ns, key, &value);
    if (ret != SYSTEM_INFO_ERROR_NONE)
        return ret;
    if (!value->is_string())
        return wrongType(call, key, *value);
    *out = strdup(value->get<std::string>().c_str());
    return *out ? SYSTEM_INFO_ERROR_NONE : SYSTEM_INFO_ERROR_OUT_OF_MEMORY;
}

}  // namespace

extern "C" {

int system_info_get_platform_bool(const char *key, bool *value) {
    return getBool(__func__, kPlatform, key, value);
}

int system_info_get_platform_int(const char *key, int *value) {
    return getInt(__func__, kPlatform, key, value);
}

int system_info_get_platform_double(const char *key, double *value) {
    return getDouble(__func__, kPlatform, key, value);
}

int system_info_get_platform_string(const char *key, char **value) {
    return getString(__func__, kPlatform, key, value);
}

int system_info_get_custom_bool(const char *key, bool *value) {
    return getBool(__func__, kVendor, key, value);
}

int system_info_get_custom_int(const char *key, int *value) {
    return getInt(__func__, kVendor, key, value);
}

int system_info_get_custom_double(const char *key, double *value) {
    return getDouble(__func__, kVendor, key, value);
}

int system_info_get_custom_string(const char *key, char **value) {
    return getString(__func__, kVendor, key, value);
}

}  // extern "C"
