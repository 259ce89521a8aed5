#include "StInfoStatusModel.h"

#include <bluetooth.h>
#include <csc_feature.h>
#include <system_info.h>
#include <vconf.h>
#include <wifi-manager.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "StInfoDefines.h"
#include "StInfoStatusRecordReader.h"
#include "StInfoTextUtils.h"
#include "StLog.h"

namespace {

const char *const kSelectedNumberKey = "db/setting/selected_num";
const char *const kCustomerCodeKey = "db/csc/text_string_customer";
const char *const kEsimPhaseKey = ST_VENDOR_KEY("tizen/feature/esim.phase");

const char *const kDevicedBusName = "org.tizen.system.deviced";
const char *const kDevicedBoardPath = "/Org/Tizen/System/DeviceD/Board";
const char *const kDevicedBoardInterface = "org.tizen.system.deviced.Board";

// Features of the customer-specific configuration, by number.
const int kCscBarcode = 30;
const int kCscHwVersion = 39;
const int kCscRawPhoneNumber = 57;
const int kCscNationalPhoneNumber = 71;
const int kCscImsRegistration = 93;

const int kEsimProfileKindShown = 2;
const int kEsimProfileEnabled = 1;

bool cscFeatureOn(int feature) {
    return csc_feature_get_bool(feature) == 1;
}

}  // namespace

StInfoStatusModel *StInfoStatusModel::_instance = nullptr;

StInfoStatusModel *StInfoStatusModel::getInstance() {
    if (!_instance) {
        _instance = new StInfoStatusModel();
        _instance->_init();
    }
    return _instance;
}

StInfoStatusModel::StInfoStatusModel() : _tapihandle(nullptr), _esimHandle(nullptr) {}

void StInfoStatusModel::_init() {
    _tapihandle = tel_init(nullptr);
    if (!_tapihandle) {
        ST_ERR("tel init error!!");
    } else {
        _telGetSimMsisdn();
        tel_register_noti_event(_tapihandle, TAPI_NOTI_SIM_REFRESHED, _telSimRefreshedCb, this);
    }

    int phase = -1;
    if (system_info_get_custom_int(kEsimPhaseKey, &phase) != SYSTEM_INFO_ERROR_NONE) {
        ST_ERR("system_info_get_platform_int failed!!!!");
        return;
    }
    if (phase != 1)
        return;
    _esimHandle = esim_init();
    if (!_esimHandle) {
        ST_ERR("[ESIM] esim_init fail");
        return;
    }
    esim_register_noti_event(_esimHandle, ESIM_EVENT_STATE, _esimNotiEventCb, this);
    esim_register_noti_event(_esimHandle, ESIM_EVENT_PROFILE_CHANGED, _esimNotiEventCb, this);
    int ret = esim_get_profile_list(_esimHandle, _esimGetProfileCb, this);
    if (ret != 0)
        ST_ERR("[ESIM] esim_get_profile_list fail : %x", ret);
    ret = esim_get_eid(_esimHandle, _esimGetEIDCb, this);
    if (ret != 0)
        ST_ERR("[ESIM] esim_get_eid fail : %x", ret);
}

StInfoStatusModel::~StInfoStatusModel() {
    if (_tapihandle)
        tel_deregister_noti_event(_tapihandle, TAPI_NOTI_SIM_REFRESHED);
    if (tel_deinit(_tapihandle) != TAPI_API_SUCCESS) {
        ST_ERR("tel deinit error!!");
    } else {
        _tapihandle = nullptr;
        if (_esimHandle) {
            esim_deregister_noti_event(_esimHandle, ESIM_EVENT_STATE);
            esim_deregister_noti_event(_esimHandle, ESIM_EVENT_PROFILE_CHANGED);
            esim_deinit(_esimHandle);
            _esimHandle = nullptr;
        }
    }
    if (_instance == this)
        _instance = nullptr;
}

// ---- Modem records ----

std::string StInfoStatusModel::getHwVersionInfo() {
    TelMiscVersionInformation *info = tel_get_misc_me_version_sync(_tapihandle);
    if (!info) {
        ST_ERR("tel_get_misc_me_version_sync() failed.");
        return "";
    }
    std::string version = StInfoStatusRecordReader::hwVersion(*info);
    free(info);
    ST_INFO("HwVersion='%s'", version.c_str());
    return version;
}

std::string StInfoStatusModel::getPrlInfo() {
    TelMiscVersionInformation *info =
        _tapihandle ? tel_get_misc_me_version_sync(_tapihandle) : nullptr;
    if (!info) {
        ST_ERR("Getting misc version information is failed");
        return ST_UNKNOWN_TEXT;
    }
    std::string version = StInfoStatusRecordReader::prlVersion(*info);
    free(info);
    return version.empty() ? ST_UNKNOWN_TEXT : version;
}

std::string StInfoStatusModel::getEriInfo() {
    TelMiscVersionInformation *info =
        _tapihandle ? tel_get_misc_me_version_sync(_tapihandle) : nullptr;
    if (!info) {
        ST_ERR("Getting misc version information is failed");
        return ST_UNKNOWN_TEXT;
    }
    std::string version = StInfoStatusRecordReader::eriVersion(*info);
    free(info);
    return version.empty() ? ST_UNKNOWN_TEXT : version;
}

TelMiscSNInformation *StInfoStatusModel::_getMiscSnInfo() {
    if (!_tapihandle) {
        ST_ERR("_tapihandle is null");
        return nullptr;
    }
    return tel_get_misc_me_sn_sync(_tapihandle);
}

namespace {

// The text of one field of a serial-number record, which is freed.
std::string takeSerialText(TelMiscSNInformation *info,
                           std::string (*field)(const TelMiscSNInformation &)) {
    std::string text = field(*info);
    free(info);
    return text.empty() ? ST_UNKNOWN_TEXT : text;
}

}  // namespace

std::string StInfoStatusModel::getImeiInfo() {
    TelMiscSNInformation *info = _getMiscSnInfo();
    if (!info) {
        ST_ERR("Getting misc version information is failed");
        return ST_UNKNOWN_TEXT;
    }
    return takeSerialText(info, StInfoStatusRecordReader::imei);
}

std::string StInfoStatusModel::getImeiSvInfo() {
    TelMiscSNInformation *info = _getMiscSnInfo();
    if (!info) {
        ST_ERR("Getting misc version information is failed");
        return ST_UNKNOWN_TEXT;
    }
    return takeSerialText(info, StInfoStatusRecordReader::imeiSv);
}

std::string StInfoStatusModel::getMeIdInfo() {
    TelMiscSNInformation *info = _getMiscSnInfo();
    if (!info) {
        ST_ERR("Getting misc version information is failed");
        return ST_UNKNOWN_TEXT;
    }
    return takeSerialText(info, StInfoStatusRecordReader::meid);
}

bool StInfoStatusModel::getImsRegistrationInfo() {
    int value = 0;
    int ret = tel_get_property_int(_tapihandle, TAPI_PROP_NETWORK_VOLTE_ENABLE, &value);
    if (ret != TAPI_API_SUCCESS) {
        ST_ERR("tel_get_property_int failed [%d]", ret);
        return false;
    }
    return value != 0;
}

bool StInfoStatusModel::isHwVersionMenuEnabled() {
    return cscFeatureOn(kCscHwVersion);
}

bool StInfoStatusModel::isImsMenuEnabled() {
    return cscFeatureOn(kCscImsRegistration);
}

bool StInfoStatusModel::isBarcodeMenuEnabled() {
    return cscFeatureOn(kCscBarcode);
}

// ---- Radios ----

std::string StInfoStatusModel::getWifiMacAddress() {
    std::string result = ST_UNKNOWN_TEXT;
    wifi_manager_h handle = nullptr;
    int ret = wifi_manager_initialize(&handle);
    if (ret != WIFI_MANAGER_ERROR_NONE) {
        ST_ERR("wifi manager initialize failed! [%d]", ret);
        return result;
    }
    char *mac = nullptr;
    if (wifi_manager_get_mac_address(handle, &mac) != WIFI_MANAGER_ERROR_NONE) {
        wifi_manager_deinitialize(handle);
        ST_ERR("Failed to get wifi mac address!");
        return result;
    }
    if (mac) {
        result = mac;
        free(mac);
    }
    wifi_manager_deinitialize(handle);
    return result;
}

std::string StInfoStatusModel::getBluetoothAddress() {
    if (bt_initialize() != BT_ERROR_NONE)
        ST_ERR("bluetooth initialization failed");
    char *address = nullptr;
    int ret = bt_adapter_get_address(&address);
    bt_deinitialize();
    if (ret < 0) {
        ST_ERR("bt address : get bt address with error code:%d", ret);
        free(address);
        return "IDS_ST_BODY_UNAVAILABLE";
    }
    if (!address)
        return ST_UNKNOWN_TEXT;
    std::string result = address;
    free(address);
    return result;
}

// ---- Device daemon ----

std::string StInfoStatusModel::_getCustomerCode() {
    char *code = vconf_get_str(kCustomerCodeKey);
    if (!code) {
        ST_ERR("Customer Code is empty!");
        return "";
    }
    std::string result = code;
    free(code);
    return result;
}

DBusMessage *StInfoStatusModel::_dbusMethodSyncWithReplyCb(const char *destination,
                                                           const char *path, const char *interface,
                                                           const char *method) {
    // The shared connection belongs to libdbus and is never closed here; only the reference
    // this call took is given back.
    DBusConnection *connection = dbus_bus_get(DBUS_BUS_SYSTEM, nullptr);
    if (!connection)
        return nullptr;
    DBusMessage *message = dbus_message_new_method_call(destination, path, interface, method);
    if (!message) {
        dbus_connection_unref(connection);
        return nullptr;
    }
    DBusMessageIter iter;
    dbus_message_iter_init_append(message, &iter);
    DBusError error;
    dbus_error_init(&error);
    DBusMessage *reply = dbus_connection_send_with_reply_and_block(connection, message, -1, &error);
    dbus_connection_unref(connection);
    if (!reply)
        ST_ERR("dbus_connection_send_with_reply_and_block failed");
    if (dbus_error_is_set(&error)) {
        ST_ERR("dbus_connection_send error(%s:%s)", error.name, error.message);
        dbus_error_free(&error);
        dbus_message_unref(message);
        if (reply)
            dbus_message_unref(reply);
        return nullptr;
    }
    dbus_message_unref(message);
    return reply;
}

std::string StInfoStatusModel::_getImeiSerialInfo() {
    DBusMessage *reply = _dbusMethodSyncWithReplyCb(kDevicedBusName, kDevicedBoardPath,
                                                    kDevicedBoardInterface, "GetNum");
    if (!reply) {
        ST_ERR("fail send message");
        return "";
    }
    DBusError error;
    dbus_error_init(&error);
    const char *text = nullptr;
    dbus_int32_t unused = 0;
    if (!dbus_message_get_args(reply, &error, DBUS_TYPE_STRING, &text, DBUS_TYPE_INT32, &unused,
                               DBUS_TYPE_INVALID)) {
        ST_ERR("no message : [%s:%s]", error.name, error.message);
        dbus_message_unref(reply);
        dbus_error_free(&error);
        return "";
    }
    std::string result;
    if (text && *text) {
        ST_INFO("Serial Info: %s", text);
        result = text;
    } else {
        ST_ERR("no serial info is returned.");
    }
    dbus_message_unref(reply);
    dbus_error_free(&error);
    return result;
}

std::string StInfoStatusModel::getSerialNumberInfo() {
    std::string text = _getImeiSerialInfo();
    if (text.empty())
        return "";
    size_t comma = text.find(',');
    if ((cscFeatureOn(kCscBarcode) || _getCustomerCode() == "VZW") && comma != std::string::npos)
        return text.substr(0, comma);
    return text;
}

std::string StInfoStatusModel::getBarcodeNumberInfo() {
    std::string text = _getImeiSerialInfo();
    if (text.empty())
        return "";
    size_t comma = text.rfind(',');
    return comma == std::string::npos ? "" : text.substr(comma + 1);
}

// ---- SIM and phone number ----

bool StInfoStatusModel::_telGetSimMsisdn() {
    if (!_tapihandle)
        return true;
    int ret = tel_get_sim_msisdn(_tapihandle, _tapiSimMsisdnGetCb, this);
    if (ret != TAPI_API_SUCCESS) {
        ST_ERR("tel_get_sim_msisdn failed [%d]", ret);
        return false;
    }
    return true;
}

void StInfoStatusModel::_telSimRefreshedCb(TapiHandle *, const char *, void *, void *model) {
    static_cast<StInfoStatusModel *>(model)->_telGetSimMsisdn();
}

void StInfoStatusModel::_tapiSimMsisdnGetCb(TapiHandle *, int, void *data, void *model) {
    auto *self = static_cast<StInfoStatusModel *>(model);
    if (!data) {
        ST_ERR("no sim card info is returned");
        vconf_set_str(kSelectedNumberKey, "");
        return;
    }
    std::string number =
        StInfoStatusRecordReader::msisdn(*static_cast<const TelSimMsisdnList_t *>(data));
    vconf_set_str(kSelectedNumberKey, number.c_str());
    self->_msisdnSignal.emit();
}

std::string StInfoStatusModel::_getMsisdnNumber() {
    char *number = vconf_get_str(kSelectedNumberKey);
    if (!number) {
        ST_ERR("MSISDN Number is empty");
        return "";
    }
    std::string result = number;
    free(number);
    return result;
}

std::string StInfoStatusModel::getPhoneNumberInfo() {
    std::string number = _getMsisdnNumber();
    if (number.empty())
        return ST_UNKNOWN_TEXT;
    bool raw = cscFeatureOn(kCscRawPhoneNumber);
    bool national = cscFeatureOn(kCscNationalPhoneNumber);
    if (national) {
        std::string formatted = formatPhoneNumber(number);
        if (formatted.empty())
            return number;
        std::string nationalNumber = toNationalNumber(formatted);
        return nationalNumber.empty() ? number : nationalNumber;
    }
    if (raw)
        return number;
    std::string formatted = formatPhoneNumber(number);
    return formatted.empty() ? number : formatted;
}

std::string StInfoStatusModel::getIccidInfo() {
    if (_esimHandle) {
        bool enabled = false;
        for (const auto &profile : _esimProfiles)
            if (profile->state == kEsimProfileEnabled) {
                enabled = true;
                break;
            }
        if (!enabled)
            return ST_UNKNOWN_TEXT;
    }
    if (!_tapihandle)
        return ST_UNKNOWN_TEXT;
    auto record = std::make_unique<TelSimIccIdRecord_t>();
    int ret = tel_request_sim_sync(_tapihandle, TAPI_SIM_REQ_GET_ICCID, nullptr, record.get());
    if (ret != TAPI_API_SUCCESS) {
        ST_ERR("tel_request_sim_sync failed [%d]", ret);
        return ST_UNKNOWN_TEXT;
    }
    // The sales code is read only for a record that holds an ICCID.
    if (record->icc_length <= 0)
        return ST_UNKNOWN_TEXT;
    return StInfoStatusRecordReader::iccid(*record, _getCustomerCode());
}

// ---- eSIM ----

bool StInfoStatusModel::isEsimMenuEnabled() {
    int phase = -1;
    if (system_info_get_custom_int(kEsimPhaseKey, &phase) != SYSTEM_INFO_ERROR_NONE) {
        ST_ERR("system_info_get_platform_int failed!!!!");
        return false;
    }
    return phase == 1;
}

void StInfoStatusModel::_esimNotiEventCb(esim_h, int eventType, void *eventData, void *model) {
    auto *self = static_cast<StInfoStatusModel *>(model);
    if (eventType != ESIM_EVENT_PROFILE_CHANGED || !eventData)
        return;
    int32_t data = 0;
    memcpy(&data, eventData, sizeof(data));
    if (data < 0 || data > 3)
        return;
    int ret = esim_get_profile_list(self->_esimHandle, _esimGetProfileCb, self);
    if (ret != 0)
        ST_ERR("[ESIM] esim_get_profile_list fail : %d", ret);
}

void StInfoStatusModel::_esimGetProfileCb(esim_h, int result, esim_profile_list_s *profileList,
                                          void *model) {
    auto *self = static_cast<StInfoStatusModel *>(model);
    if (result != 0) {
        ST_ERR("[ESIM] _esimGetProfileCb result (%d)", result);
        return;
    }
    self->_esimProfiles.clear();
    if (profileList)
        self->_esimProfiles = StInfoStatusRecordReader::esimProfiles(*profileList);
    self->_esimProfileSignal.emit();
}

void StInfoStatusModel::_esimGetEIDCb(esim_h, int result, const char *eidText, void *model) {
    auto *self = static_cast<StInfoStatusModel *>(model);
    if (result == 0) {
        self->_eid = eidText ? eidText : "";
        self->_eidSignal.emit();
        return;
    }
    ST_ERR("[ESIM] _esimGetEIDCb result (%d)", result);
    self->_eid.clear();
}

std::string StInfoStatusModel::getEnabledEsimName() {
    for (const auto &profile : _esimProfiles)
        if (profile->kind == kEsimProfileKindShown && profile->state == kEsimProfileEnabled)
            return profile->name;
    ST_ERR("no enabled profile");
    return "";
}

std::string StInfoStatusModel::getEid() {
    return _eid;
}
