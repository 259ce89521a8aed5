#include "StInfoSwModel.h"

#include <csc_svc_config.h>
#include <system_info.h>
#include <vconf.h>

#include <cstdlib>

#include "StInfoDefines.h"
#include "StLog.h"

StInfoSwModel *StInfoSwModel::_instance = nullptr;

StInfoSwModel *StInfoSwModel::getInstance() {
    if (!_instance)
        _instance = new StInfoSwModel();
    return _instance;
}

StInfoSwModel::~StInfoSwModel() {}

std::string StInfoSwModel::getSwVersionInfo() {
    char *build = nullptr;
    int ret = system_info_get_platform_string(ST_PLATFORM_KEY("system/build.string"), &build);
    if (ret != SYSTEM_INFO_ERROR_NONE || !build) {
        ST_ERR("Setting - Software Version name does not exist![%d]", ret);
        free(build);
        return ST_UNKNOWN_TEXT;
    }
    std::string result = build;
    free(build);

    // An operator-approved version replaces the build string entirely; the two are not joined.
    if (csc_svc_config_chk_approval_version_exist() == 1) {
        char approval[CSC_SVC_CONFIG_APPROVAL_VERSION_MAX] = {};
        if (csc_svc_config_get_approval_version(approval) == 1 && approval[0] != '\0')
            result = approval;
    }
    return result;
}

std::string StInfoSwModel::getTizenVersion() {
    char *version = nullptr;
    int ret =
        system_info_get_platform_string(ST_PLATFORM_KEY("feature/platform.version"), &version);
    if (ret != SYSTEM_INFO_ERROR_NONE || !version) {
        ST_ERR("Setting - Tizen Version name does not exist![%d]", ret);
        free(version);
        return ST_UNKNOWN_TEXT;
    }
    std::string result = version;
    free(version);
    return result;
}

std::string StInfoSwModel::getSecurityStatus() {
    char *policy = vconf_get_str("db/smack/spd_installed_policy_version");
    if (!policy || !*policy) {
        ST_ERR("Vconf value error!");
        free(policy);
        return ST_UNKNOWN_TEXT;
    }
    std::string result = policy;
    free(policy);
    return result;
}
