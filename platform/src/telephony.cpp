// The modem of the simulated watch, from the profile's "telephony" and "sim" sections:
//   "telephony": {"modem": true, "hw_version": "REV0.3", "prl_version": "", "eri_version": "",
//                 "imei": "...", "imei_sv": "...", "meid": "", "esn": "",
//                 "volte_enable": 1, "misc_version": true, "misc_sn": true}
//   "sim": {"msisdn": "+447700900123" | "" (no number) | null (a reply without data),
//           "iccid": "8944...", "msisdn_count": 3 (the count the list announces, if it lies)}
//   "latency": {"msisdn_ms": 1500}
// `quillset-sim event sim-refresh [--msisdn NUMBER]` refreshes the SIM (with a new number).

#include <ITapiModem.h>
#include <ITapiSim.h>

#include <Ecore.h>
#include <dlog.h>

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <map>
#include <optional>
#include <set>
#include <string>

#include "PlatformState.h"
#include "SimEvents.h"

// The application reads these records by byte offset.
static_assert(offsetof(TelMiscVersionInformation, szHwVersion) == 33, "hardware version");
static_assert(offsetof(TelMiscVersionInformation, szPrlVersion) == 147, "PRL version");
static_assert(offsetof(TelMiscVersionInformation, szEriVersion) == 199, "ERI version");
static_assert(offsetof(TelMiscSNInformation, szMeid) == 32, "MEID");
static_assert(offsetof(TelMiscSNInformation, szImei) == 64, "IMEI");
static_assert(offsetof(TelMiscSNInformation, szImeiSv) == 96, "IMEI SV");
static_assert(offsetof(TelSimMsisdnList_t, count) == 0, "MSISDN count");
static_assert(offsetof(TelSimMsisdnList_t, list) == 4, "first MSISDN");
static_assert(offsetof(TelSimSubscriberInfo_t, num) == 0, "MSISDN number");
static_assert(offsetof(TelSimIccIdRecord_t, icc_length) == 0, "ICCID length");
static_assert(offsetof(TelSimIccIdRecord_t, icc_num) == 4, "ICCID text");
static_assert(sizeof(TelSimIccIdRecord_t) == 5124, "ICCID record");

namespace {

const char *const kTag = "TELEPHONY";

struct Notification {
    tapi_notification_cb callback;
    void *userData;
};

struct Request {
    TapiHandle *handle;
    tapi_response_cb callback;
    void *userData;
    Ecore_Timer *timer;
};

}  // namespace

struct tapi_handle {
    std::map<std::string, Notification> notifications;
    std::set<Request *> pending;
    int eventSubscription = 0;
};

namespace {

// The SIM's number since the last refresh that brought one.
std::optional<std::string> &refreshedMsisdn() {
    static std::optional<std::string> number;
    return number;
}

const nlohmann::json &section(const char *name) {
    static const nlohmann::json empty = nlohmann::json::object();
    const nlohmann::json &profile = platform::profile();
    auto it = profile.find(name);
    return it != profile.end() && it->is_object() ? *it : empty;
}

std::string text(const nlohmann::json &object, const char *key) {
    auto it = object.find(key);
    return it != object.end() && it->is_string() ? it->get<std::string>() : "";
}

// The modem's records hold their texts in char or unsigned char fields.
template <typename Char>
void copyField(Char *field, size_t size, const std::string &value) {
    size_t length = strnlen(value.c_str(), size - 1);
    memcpy(field, value.c_str(), length);
    memset(field + length, 0, size - length);
}

void simRefreshed(TapiHandle *handle, const std::vector<std::string> &args) {
    if (!args.empty())
        refreshedMsisdn() = args[0];
    auto it = handle->notifications.find(TAPI_NOTI_SIM_REFRESHED);
    if (it == handle->notifications.end())
        return;
    Notification n = it->second;
    n.callback(handle, TAPI_NOTI_SIM_REFRESHED, nullptr, n.userData);
}

Eina_Bool msisdnReplyCb(void *data) {
    auto *request = static_cast<Request *>(data);
    request->handle->pending.erase(request);
    platform::awaitReplies(-1);
    const nlohmann::json &sim = section("sim");
    auto number = sim.find("msisdn");
    std::optional<std::string> value = refreshedMsisdn();
    bool noData = !value && number != sim.end() && number->is_null();
    if (!value && number != sim.end() && number->is_string())
        value = number->get<std::string>();
    if (noData || sim.empty()) {
        request->callback(request->handle, sim.empty() ? TAPI_API_SIM_NOT_FOUND : 0, nullptr,
                          request->userData);
    } else {
        TelSimMsisdnList_t list;
        memset(&list, 0, sizeof(list));
        if (value && !value->empty()) {
            list.count = 1;
            copyField(list.list[0].num, sizeof(list.list[0].num), *value);
        }
        auto announced = sim.find("msisdn_count");
        if (announced != sim.end() && announced->is_number_integer())
            list.count = announced->get<int>();
        request->callback(request->handle, TAPI_API_SUCCESS, &list, request->userData);
    }
    delete request;
    return ECORE_CALLBACK_CANCEL;
}

}  // namespace

extern "C" {

TapiHandle *tel_init(const char *cp_name) {
    int code;
    if (platform::fault("tel_init", cp_name, &code))
        return nullptr;
    const nlohmann::json &telephony = section("telephony");
    if (!telephony.value("modem", false)) {
        dlog_print(DLOG_ERROR, kTag, "tel_init: this watch has no modem");
        return nullptr;
    }
    auto *handle = new tapi_handle();
    handle->eventSubscription = platform::simEventSubscribe(
        "sim-refresh",
        [handle](const std::vector<std::string> &args) { simRefreshed(handle, args); });
    return handle;
}

int tel_deinit(TapiHandle *handle) {
    // The handle holds nothing the caller could use again: a failing close still frees it.
    if (handle) {
        platform::simEventUnsubscribe(handle->eventSubscription);
        platform::awaitReplies(-static_cast<int>(handle->pending.size()));
        for (Request *request : handle->pending) {
            ecore_timer_del(request->timer);
            delete request;
        }
        delete handle;
    }
    int code;
    if (platform::fault("tel_deinit", nullptr, &code))
        return code;
    return handle ? TAPI_API_SUCCESS : TAPI_API_INVALID_PTR;
}

int tel_register_noti_event(TapiHandle *handle, const char *noti_id, tapi_notification_cb callback,
                            void *user_data) {
    if (!handle || !noti_id || !callback)
        return TAPI_API_INVALID_PTR;
    int code;
    if (platform::fault("tel_register_noti_event", noti_id, &code))
        return code;
    handle->notifications[noti_id] = {callback, user_data};
    return TAPI_API_SUCCESS;
}

int tel_deregister_noti_event(TapiHandle *handle, const char *noti_id) {
    if (!handle || !noti_id)
        return TAPI_API_INVALID_PTR;
    int code;
    if (platform::fault("tel_deregister_noti_event", noti_id, &code))
        return code;
    return handle->notifications.erase(noti_id) ? TAPI_API_SUCCESS : TAPI_API_INVALID_INPUT;
}

TelMiscVersionInformation *tel_get_misc_me_version_sync(TapiHandle *handle) {
    int code;
    if (platform::fault("tel_get_misc_me_version_sync", nullptr, &code) || !handle)
        return nullptr;
    const nlohmann::json &telephony = section("telephony");
    if (!telephony.value("misc_version", true))
        return nullptr;
    auto *info =
        static_cast<TelMiscVersionInformation *>(calloc(1, sizeof(TelMiscVersionInformation)));
    if (!info)
        return nullptr;
    copyField(info->szSwVersion, sizeof(info->szSwVersion), text(telephony, "sw_version"));
    copyField(info->szHwVersion, sizeof(info->szHwVersion), text(telephony, "hw_version"));
    copyField(info->szPrlVersion, sizeof(info->szPrlVersion), text(telephony, "prl_version"));
    copyField(info->szEriVersion, sizeof(info->szEriVersion), text(telephony, "eri_version"));
    info->prl_nam_num = info->szPrlVersion[0] ? 1 : 0;
    info->eri_nam_num = info->szEriVersion[0] ? 1 : 0;
    return info;
}

TelMiscSNInformation *tel_get_misc_me_sn_sync(TapiHandle *handle) {
    int code;
    if (platform::fault("tel_get_misc_me_sn_sync", nullptr, &code) || !handle)
        return nullptr;
    const nlohmann::json &telephony = section("telephony");
    if (!telephony.value("misc_sn", true))
        return nullptr;
    auto *info = static_cast<TelMiscSNInformation *>(calloc(1, sizeof(TelMiscSNInformation)));
    if (!info)
        return nullptr;
    copyField(info->szEsn, sizeof(info->szEsn), text(telephony, "esn"));
    copyField(info->szMeid, sizeof(info->szMeid), text(telephony, "meid"));
    copyField(info->szImei, sizeof(info->szImei), text(telephony, "imei"));
    copyField(info->szImeiSv, sizeof(info->szImeiSv), text(telephony, "imei_sv"));
    return info;
}

int tel_get_property_int(TapiHandle *handle, const char *property, int *result) {
    if (!handle || !property || !result)
        return TAPI_API_INVALID_PTR;
    int code;
    if (platform::fault("tel_get_property_int", property, &code))
        return code;
    if (strcmp(property, TAPI_PROP_NETWORK_VOLTE_ENABLE) != 0)
        return TAPI_API_NOT_SUPPORTED;
    const nlohmann::json &telephony = section("telephony");
    auto it = telephony.find("volte_enable");
    if (it == telephony.end())
        return TAPI_API_NOT_SUPPORTED;
    if (it->is_boolean())
        *result = it->get<bool>() ? 1 : 0;
    else if (it->is_number_integer())
        *result = it->get<int>();
    else
        return TAPI_API_OPERATION_FAILED;
    return TAPI_API_SUCCESS;
}

int tel_get_sim_msisdn(TapiHandle *handle, tapi_response_cb callback, void *user_data) {
    if (!handle || !callback)
        return TAPI_API_INVALID_PTR;
    int code;
    if (platform::fault("tel_get_sim_msisdn", nullptr, &code))
        return code;
    auto *request = new Request{handle, callback, user_data, nullptr};
    request->timer = ecore_timer_add(platform::latencySeconds("msisdn_ms"), msisdnReplyCb, request);
    if (!request->timer) {
        delete request;
        return TAPI_API_OPERATION_FAILED;
    }
    handle->pending.insert(request);
    platform::awaitReplies(1);
    return TAPI_API_SUCCESS;
}

int tel_request_sim_sync(TapiHandle *handle, int request, void *in_data, void *out_data) {
    (void)in_data;
    if (!handle || !out_data)
        return TAPI_API_INVALID_PTR;
    int code;
    if (platform::fault("tel_request_sim_sync", std::to_string(request).c_str(), &code))
        return code;
    if (request != TAPI_SIM_REQ_GET_ICCID)
        return TAPI_API_NOT_SUPPORTED;
    const nlohmann::json &sim = section("sim");
    if (sim.empty())
        return TAPI_API_SIM_NOT_FOUND;
    auto *record = static_cast<TelSimIccIdRecord_t *>(out_data);
    std::string iccid = text(sim, "iccid");
    copyField(record->icc_num, sizeof(record->icc_num), iccid);
    record->icc_length = static_cast<int>(strlen(record->icc_num));
    return TAPI_API_SUCCESS;
}

}  // extern "C"
