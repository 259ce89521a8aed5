// The eSIM service of the simulated watch, from the profile's "esim" section:
//   "esim": {"eid": "8904...", "profiles": [{"name": "Nerova Mobile", "kind": 2, "state": 1}],
//            "profile_list_result": 0, "eid_result": 0}
//   "latency": {"esim_profile_list_ms": 1500, "esim_eid_ms": 1500}
// The service exists when the vendor key tizen/feature/esim.phase is 1.
// `quillset-sim event esim TYPE DATA [--profiles FILE]` raises an event, with a new profile
// list first when one is given.

#include <esim.h>

#include <Ecore.h>
#include <dlog.h>
#include <system_info.h>

#include <cstddef>
#include <cstdlib>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "PlatformState.h"
#include "SimEvents.h"

// The application reads the profile list by byte offset.
static_assert(offsetof(esim_profile_list_s, count) == 0, "profile count");
static_assert(offsetof(esim_profile_list_s, profiles) == 16, "first profile");
static_assert(sizeof(esim_profile_s) == 32, "profile entry");
static_assert(offsetof(esim_profile_s, name) == 0, "profile name");
static_assert(offsetof(esim_profile_s, kind) == 8, "profile kind");
static_assert(offsetof(esim_profile_s, state) == 12, "profile state");

namespace {

const char *const kTag = "ESIM";

struct Registration {
    esim_noti_cb callback;
    void *userData;
};

struct Request {
    esim_h handle;
    esim_profile_list_cb listCallback;
    esim_eid_cb eidCallback;
    void *userData;
    Ecore_Timer *timer;
};

struct Profile {
    std::string name;
    int kind;
    int state;
};

}  // namespace

struct esim_s {
    std::map<int, Registration> registrations;
    std::set<Request *> pending;
    int eventSubscription = 0;
};

namespace {

// The profile list since the last event that brought one.
std::optional<std::vector<Profile>> &changedProfiles() {
    static std::optional<std::vector<Profile>> profiles;
    return profiles;
}

const nlohmann::json &section() {
    static const nlohmann::json empty = nlohmann::json::object();
    const nlohmann::json &profile = platform::profile();
    auto it = profile.find("esim");
    return it != profile.end() && it->is_object() ? *it : empty;
}

std::vector<Profile> parseProfiles(const nlohmann::json &list) {
    std::vector<Profile> out;
    if (!list.is_array())
        return out;
    for (const auto &entry : list) {
        if (out.size() == ESIM_PROFILE_MAX) {
            dlog_print(DLOG_WARN, kTag,
                       "eSIM profiles after the first %d ignored: the list counts "
                       "them in a byte",
                       ESIM_PROFILE_MAX);
            break;
        }
        if (!entry.is_object())
            continue;
        try {
            out.push_back({entry.value("name", std::string()), entry.value("kind", 0),
                           entry.value("state", 0)});
        } catch (const nlohmann::json::exception &e) {
            dlog_print(DLOG_WARN, kTag, "eSIM profile %s ignored: %s", entry.dump().c_str(),
                       e.what());
        }
    }
    return out;
}

std::vector<Profile> currentProfiles() {
    if (changedProfiles())
        return *changedProfiles();
    auto it = section().find("profiles");
    return it == section().end() ? std::vector<Profile>() : parseProfiles(*it);
}

int replyResult(const char *key) {
    auto it = section().find(key);
    return it != section().end() && it->is_number_integer() ? it->get<int>() : ESIM_ERROR_NONE;
}

void eventArrived(esim_h handle, const std::vector<std::string> &args) {
    if (args.size() < 2)
        return;
    int type = atoi(args[0].c_str());
    int data = atoi(args[1].c_str());
    if (args.size() > 2) {
        nlohmann::json list = nlohmann::json::parse(args[2], nullptr, false);
        if (list.is_array())
            changedProfiles() = parseProfiles(list);
        else
            dlog_print(DLOG_WARN, kTag, "eSIM event with a malformed profile list ignored");
    }
    auto it = handle->registrations.find(type);
    if (it == handle->registrations.end())
        return;
    Registration r = it->second;
    r.callback(handle, type, &data, r.userData);
}

Eina_Bool profileListReplyCb(void *data) {
    auto *request = static_cast<Request *>(data);
    request->handle->pending.erase(request);
    platform::awaitReplies(-1);
    int result = replyResult("profile_list_result");
    std::vector<Profile> profiles = currentProfiles();
    auto list = std::make_unique<esim_profile_list_s>();
    list->count = static_cast<unsigned char>(profiles.size());
    for (size_t i = 0; i < profiles.size(); ++i) {
        list->profiles[i].name = const_cast<char *>(profiles[i].name.c_str());
        list->profiles[i].kind = profiles[i].kind;
        list->profiles[i].state = profiles[i].state;
    }
    request->listCallback(request->handle, result, result == ESIM_ERROR_NONE ? list.get() : nullptr,
                          request->userData);
    delete request;
    return ECORE_CALLBACK_CANCEL;
}

Eina_Bool eidReplyCb(void *data) {
    auto *request = static_cast<Request *>(data);
    request->handle->pending.erase(request);
    platform::awaitReplies(-1);
    int result = replyResult("eid_result");
    auto it = section().find("eid");
    std::string eid = it != section().end() && it->is_string() ? it->get<std::string>() : "";
    if (result == ESIM_ERROR_NONE && (it == section().end() || !it->is_string()))
        result = ESIM_ERROR_OPERATION_FAILED;
    request->eidCallback(request->handle, result, result == ESIM_ERROR_NONE ? eid.c_str() : nullptr,
                         request->userData);
    delete request;
    return ECORE_CALLBACK_CANCEL;
}

int startRequest(esim_h handle, Request *request, const char *latencyKey, Ecore_Task_Cb replyCb) {
    request->timer = ecore_timer_add(platform::latencySeconds(latencyKey), replyCb, request);
    if (!request->timer) {
        delete request;
        return ESIM_ERROR_OPERATION_FAILED;
    }
    handle->pending.insert(request);
    platform::awaitReplies(1);
    return ESIM_ERROR_NONE;
}

}  // namespace

extern "C" {

esim_h esim_init(void) {
    int code;
    if (platform::fault("esim_init", nullptr, &code))
        return nullptr;
    int phase = 0;
    if (system_info_get_custom_int("http://developer.nerova.com/tizen/feature/esim.phase",
                                   &phase) != SYSTEM_INFO_ERROR_NONE ||
        phase != 1) {
        dlog_print(DLOG_ERROR, kTag, "esim_init: this watch has no eSIM");
        return nullptr;
    }
    auto *handle = new esim_s();
    handle->eventSubscription = platform::simEventSubscribe(
        "esim", [handle](const std::vector<std::string> &args) { eventArrived(handle, args); });
    return handle;
}

int esim_deinit(esim_h handle) {
    int code;
    if (platform::fault("esim_deinit", nullptr, &code))
        return code;
    if (!handle)
        return ESIM_ERROR_INVALID_PARAMETER;
    platform::simEventUnsubscribe(handle->eventSubscription);
    platform::awaitReplies(-static_cast<int>(handle->pending.size()));
    for (Request *request : handle->pending) {
        ecore_timer_del(request->timer);
        delete request;
    }
    delete handle;
    return ESIM_ERROR_NONE;
}

int esim_register_noti_event(esim_h handle, int event_type, esim_noti_cb callback,
                             void *user_data) {
    if (!handle || !callback)
        return ESIM_ERROR_INVALID_PARAMETER;
    int code;
    if (platform::fault("esim_register_noti_event", std::to_string(event_type).c_str(), &code))
        return code;
    handle->registrations[event_type] = {callback, user_data};
    return ESIM_ERROR_NONE;
}

int esim_deregister_noti_event(esim_h handle, int event_type) {
    if (!handle)
        return ESIM_ERROR_INVALID_PARAMETER;
    int code;
    if (platform::fault("esim_deregister_noti_event", std::to_string(event_type).c_str(), &code))
        return code;
    return handle->registrations.erase(event_type) ? ESIM_ERROR_NONE : ESIM_ERROR_INVALID_PARAMETER;
}

int esim_get_profile_list(esim_h handle, esim_profile_list_cb callback, void *user_data) {
    if (!handle || !callback)
        return ESIM_ERROR_INVALID_PARAMETER;
    int code;
    if (platform::fault("esim_get_profile_list", nullptr, &code))
        return code;
    return startRequest(handle, new Request{handle, callback, nullptr, user_data, nullptr},
                        "esim_profile_list_ms", profileListReplyCb);
}

int esim_get_eid(esim_h handle, esim_eid_cb callback, void *user_data) {
    if (!handle || !callback)
        return ESIM_ERROR_INVALID_PARAMETER;
    int code;
    if (platform::fault("esim_get_eid", nullptr, &code))
        return code;
    return startRequest(handle, new Request{handle, nullptr, callback, user_data, nullptr},
                        "esim_eid_ms", eidReplyCb);
}

}  // extern "C"
