// Installed packages, from the profile's "packages" section: an object keyed by package id,
// each an object such as {"version": "1.0.0", "label": "Tessid"}.

#include <package_manager.h>

#include <new>
#include <string>

#include "PlatformState.h"

struct package_info_s {
    std::string package;
    std::string version;
    std::string label;
};

extern "C" {

int package_manager_get_package_info(const char *package, package_info_h *package_info) {
    if (!package || !*package || !package_info)
        return PACKAGE_MANAGER_ERROR_INVALID_PARAMETER;
    *package_info = nullptr;
    int code;
    if (platform::fault(__func__, package, &code))
        return code;
    if (!platform::hasState())
        return PACKAGE_MANAGER_ERROR_IO_ERROR;
    const nlohmann::json &profile = platform::profile();
    auto packages = profile.find("packages");
    if (packages == profile.end() || !packages->is_object())
        return PACKAGE_MANAGER_ERROR_NO_SUCH_PACKAGE;
    auto it = packages->find(package);
    if (it == packages->end())
        return PACKAGE_MANAGER_ERROR_NO_SUCH_PACKAGE;
    auto *info = new (std::nothrow) package_info_s;
    if (!info)
        return PACKAGE_MANAGER_ERROR_OUT_OF_MEMORY;
    info->package = package;
    if (it->is_object()) {
        auto version = it->find("version");
        if (version != it->end() && version->is_string())
            info->version = version->get<std::string>();
        auto label = it->find("label");
        if (label != it->end() && label->is_string())
            info->label = label->get<std::string>();
    }
    *package_info = info;
    return PACKAGE_MANAGER_ERROR_NONE;
}

int package_info_destroy(package_info_h package_info) {
    if (!package_info)
        return PACKAGE_MANAGER_ERROR_INVALID_PARAMETER;
    delete package_info;
    return PACKAGE_MANAGER_ERROR_NONE;
}

}  // extern "C"
