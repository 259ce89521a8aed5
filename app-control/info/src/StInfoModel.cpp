#include "StInfoModel.h"

#include <mdm.h>
#include <storage.h>
#include <system_info.h>
#include <tessid_mdm_platform.h>

#include <cstdlib>
#include <cstring>

#include "StInfoDefines.h"
#include "StInfoModule.h"
#include "StInfoModuleEntries.h"
#include "StInfoTextUtils.h"
#include "StLog.h"

namespace {

const char *const kDebugModeKey = "db/setting/debug_mode";
const char *const kErrorLogKey = "db/wms/user_agreement/errorlog";
const char *const kAutoUpdateTypeKey = "db/setting/update-service/auto_update_type";
const char *const kCountryKey = "db/csc/text_string_country";
const char *const kCountryIsoKey = "db/csc/country_iso";
const char *const kSalesCodeKey = "db/csc/salescode";

const double kFixedCapacityBytes = 4294967296.0;  // the watch's 4 GB

bool stringKeyEquals(const char *key, const char *expected) {
    char *value = vconf_get_str(key);
    bool equal = value && !strcmp(value, expected);
    free(value);
    return equal;
}

// One model sells under carrier codes that add a letter to its number.
const char *salesCodeSuffix(const char *code) {
    static const struct {
        const char *code;
        const char *suffix;
    } kSuffixes[] = {{"SKC", "S"}, {"SKO", "S"}, {"KTC", "K"},
                     {"KTO", "K"}, {"LUC", "L"}, {"LUO", "L"}};
    for (const auto &entry : kSuffixes)
        if (!strcmp(code, entry.code))
            return entry.suffix;
    return "";
}

}  // namespace

StInfoModel *StInfoModel::_instance = nullptr;

StInfoModel *StInfoModel::getInstance() {
    if (!_instance) {
        _instance = new StInfoModel();
        _instance->_init();
    }
    return _instance;
}

StInfoModel::StInfoModel() : _policyReceiver(0) {
    if (vconf_notify_key_changed(kDebugModeKey, _usbDebuggingKeyChangedCb, this) != VCONF_OK)
        ST_ERR("Register vconf notify key changed failed(VCONFKEY_SETAPPL_USB_DEBUG_MODE_BOOL)");
    if (vconf_notify_key_changed(kErrorLogKey, _reportDiagnosticKeyChangedCb, this) != VCONF_OK)
        ST_ERR("Register vconf notify key changed failed(KEY_USER_AGREEMENT_ERROR_LOG)");
    if (vconf_notify_key_changed(kAutoUpdateTypeKey, _autoUpdateTypeKeyChangedCb, this) != VCONF_OK)
        ST_ERR("Register vconf notify key changed failed(VCONFKEY_AUTO_UPDATE_TYPE)");
}

void StInfoModel::_init() {
    int ret = mdm_get_service();
    if (ret != MDM_RESULT_SUCCESS) {
        ST_ERR("[MDM] mdm_get_service() failed %d", ret);
        return;
    }
    _policyReceiver =
        mdm_register_policy_receiver(MDM_POLICY_USB_DEBUGGING, this, _usbDebuggingPolicyChangedCb);
    mdm_release_service();
}

StInfoModel::~StInfoModel() {
    if (vconf_ignore_key_changed(kDebugModeKey, _usbDebuggingKeyChangedCb) != VCONF_OK)
        ST_ERR("Ignore vconf key changed failed(VCONFKEY_SETAPPL_USB_DEBUG_MODE_BOOL)");
    if (vconf_ignore_key_changed(kErrorLogKey, _reportDiagnosticKeyChangedCb) != VCONF_OK)
        ST_ERR("Ignore vconf key changed failed(KEY_USER_AGREEMENT_ERROR_LOG)");
    if (vconf_ignore_key_changed(kAutoUpdateTypeKey, _autoUpdateTypeKeyChangedCb) != VCONF_OK)
        ST_ERR("Ignore vconf key changed failed(VCONFKEY_AUTO_UPDATE_TYPE)");
    if (_policyReceiver) {
        mdm_deregister_policy_receiver(_policyReceiver);
        _policyReceiver = 0;
    }
    if (_instance == this)
        _instance = nullptr;
}

bool StInfoModel::isUsbDebuggingEnabled() {
    int value = 0;
    if (vconf_get_bool(kDebugModeKey, &value) != VCONF_OK) {
        ST_ERR("Setting - USB debugging's info do not get!!!");
        return false;
    }
    return value != 0;
}

bool StInfoModel::setUsbDebuggingMode(bool enabled) {
    if (vconf_set_bool(kDebugModeKey, enabled) != VCONF_OK) {
        ST_ERR("Setting - USB debugging do not set!!!");
        return false;
    }
    return true;
}

bool StInfoModel::isUsbDebuggingMenuRestricted() {
    if (mdm_get_service() != MDM_RESULT_SUCCESS) {
        ST_ERR("[MDM] mdm_get_service failed");
        return false;
    }
    int allowed = mdm_get_allow_usb_debugging();
    mdm_release_service();
    return allowed == 1;
}

bool StInfoModel::isUsbDebuggingChangeRestricted() {
    if (mdm_get_service() != MDM_RESULT_SUCCESS) {
        ST_ERR("[MDM] mdm_get_service failed");
        return false;
    }
    bool allowed = true;
    if (tessid_mdm_platform_is_usb_debugging_change_allowed(&allowed) != 0) {
        ST_ERR("[MDM] tessid_mdm_platform_is_usb_debugging_change_allowed failed");
        mdm_release_service();
        return false;
    }
    mdm_release_service();
    return !allowed;
}

bool StInfoModel::isReportDiagnosticEnabled() {
    int value = 0;
    if (vconf_get_bool(kErrorLogKey, &value) != VCONF_OK) {
        ST_ERR("Setting - report diagnostic not get!!!");
        return false;
    }
    return value != 0;
}

bool StInfoModel::setReportDiagnosticMode(bool enabled) {
    if (vconf_set_bool(kErrorLogKey, enabled) != VCONF_OK) {
        ST_ERR("Setting - report diagnostic is not set!!!");
        return false;
    }
    notifyLogProvider();
    return true;
}

void StInfoModel::notifyLogProvider() {
    // One-way: the provider re-reads the consent itself; nothing waits for it. The D-Bus GLib
    // binding it goes through is loaded on first use: few users ever change their consent.
    static StInfoModule logProvider(ST_INFO_LOGPROVIDER_MODULE);
    auto notify =
        reinterpret_cast<StInfoNotifyLogProviderFn>(logProvider.symbol(ST_INFO_NOTIFY_ENTRY));
    if (notify)
        notify();
}

bool StInfoModel::isChinaCountry() {
    return stringKeyEquals(kCountryKey, "CN");
}

bool StInfoModel::isIndiaCountry() {
    return stringKeyEquals(kCountryIsoKey, "IN");
}

std::string StInfoModel::getSystemInfoModel() {
    char *model = nullptr;
    int ret = system_info_get_platform_string(ST_PLATFORM_KEY("system/model_name"), &model);
    if (ret != SYSTEM_INFO_ERROR_NONE || !model) {
        ST_ERR("Setting - Model number do not get!! error!! [%d]", ret);
        free(model);
        return ST_UNKNOWN_TEXT;
    }
    std::string result = model;
    if (result == "QX-M480") {
        char *salesCode = vconf_get_str(kSalesCodeKey);
        if (salesCode && *salesCode)
            result += salesCodeSuffix(salesCode);
        free(salesCode);
    }
    free(model);
    return result;
}

bool StInfoModel::getAvailableInternalMemory(uint64_t *bytes) {
    if (!bytes)
        return false;
    struct statvfs info;
    if (storage_get_internal_memory_size(&info) != STORAGE_ERROR_NONE)
        return false;
    *bytes = static_cast<uint64_t>(info.f_bsize) * static_cast<uint64_t>(info.f_bavail);
    return true;
}

std::string StInfoModel::getStorageUsageText() {
    uint64_t available = 0;
    if (!getAvailableInternalMemory(&available))
        return ST_UNKNOWN_TEXT;
    char buffer[50] = {0};
    formatStorageSize(kFixedCapacityBytes - static_cast<double>(available), buffer, sizeof(buffer));
    return buffer;
}

void StInfoModel::_usbDebuggingKeyChangedCb(keynode_t *node, void *data) {
    if (!data)
        return;
    static_cast<StInfoModel *>(data)->_usbDebuggingSignal.emit(vconf_keynode_get_bool(node) != 0);
}

void StInfoModel::_reportDiagnosticKeyChangedCb(keynode_t *node, void *data) {
    if (!data)
        return;
    static_cast<StInfoModel *>(data)->_reportDiagnosticSignal.emit(vconf_keynode_get_bool(node) !=
                                                                   0);
}

void StInfoModel::_autoUpdateTypeKeyChangedCb(keynode_t *node, void *data) {
    if (!data)
        return;
    static_cast<StInfoModel *>(data)->_autoUpdateTypeSignal.emit(vconf_keynode_get_int(node));
}

void StInfoModel::_usbDebuggingPolicyChangedCb(int status, void *data) {
    if (!data)
        return;
    static_cast<StInfoModel *>(data)->_usbDebuggingRestrictionSignal.emit(status == 1);
}
