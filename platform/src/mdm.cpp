// The device-management policy client and the security platform's debugging answer. Answers
// come from the profile's "policy" section; `quillset-sim event policy usb-debugging STATUS`
// changes the debugging policy while the watch runs and tells the registered receivers.
//
// "policy": {"service": true, "allow_usb_debugging": 0, "change_allowed": true}

#include <mdm.h>
#include <tessid_mdm_platform.h>

#include <dlog.h>

#include <cstdlib>
#include <map>
#include <string>

#include "PlatformState.h"
#include "SimEvents.h"

namespace {

const char *const kTag = "MDM";

struct Receiver {
    int policy;
    void *userData;
    mdm_policy_receiver_cb callback;
};

struct PolicyState {
    int services = 0;  // mdm_get_service calls not yet released
    int nextHandle = 1;
    std::map<int, Receiver> receivers;
    bool overridden = false;
    int usbDebugging = 0;
    int eventSubscription = 0;
};

PolicyState &state() {
    static PolicyState s;
    return s;
}

const nlohmann::json &policy() {
    static const nlohmann::json empty = nlohmann::json::object();
    const nlohmann::json &profile = platform::profile();
    auto it = profile.find("policy");
    return it != profile.end() && it->is_object() ? *it : empty;
}

bool serviceAvailable() {
    return policy().value("service", true);
}

void usbDebuggingEvent(const std::vector<std::string> &args) {
    if (args.size() != 2 || args[0] != "usb-debugging") {
        dlog_print(DLOG_ERROR, kTag, "policy event: expected usb-debugging STATUS");
        return;
    }
    char *end = nullptr;
    long status = strtol(args[1].c_str(), &end, 10);
    if (args[1].empty() || *end) {
        dlog_print(DLOG_ERROR, kTag, "policy event: status '%s' is not a number", args[1].c_str());
        return;
    }
    PolicyState &s = state();
    s.overridden = true;
    s.usbDebugging = static_cast<int>(status);
    auto receivers = s.receivers;
    for (auto &entry : receivers)
        if (entry.second.policy == MDM_POLICY_USB_DEBUGGING && s.receivers.count(entry.first))
            entry.second.callback(s.usbDebugging, entry.second.userData);
}

}  // namespace

extern "C" {

int mdm_get_service(void) {
    int code;
    if (platform::fault("mdm_get_service", nullptr, &code))
        return code;
    if (!serviceAvailable())
        return MDM_RESULT_SERVICE_NOT_ENABLED;
    ++state().services;
    return MDM_RESULT_SUCCESS;
}

int mdm_release_service(void) {
    PolicyState &s = state();
    if (s.services <= 0) {
        dlog_print(DLOG_ERROR, kTag, "mdm_release_service without mdm_get_service");
        return MDM_RESULT_FAIL;
    }
    --s.services;
    return MDM_RESULT_SUCCESS;
}

int mdm_get_allow_usb_debugging(void) {
    int code;
    if (platform::fault("mdm_get_allow_usb_debugging", nullptr, &code))
        return code;
    if (state().services <= 0)
        return MDM_RESULT_SERVICE_NOT_ENABLED;
    if (state().overridden)
        return state().usbDebugging;
    return policy().value("allow_usb_debugging", 0);
}

int mdm_register_policy_receiver(int policy, void *user_data, mdm_policy_receiver_cb callback) {
    if (!callback)
        return 0;
    if (platform::fault("mdm_register_policy_receiver", nullptr, nullptr))
        return 0;
    PolicyState &s = state();
    if (!s.eventSubscription)
        s.eventSubscription = platform::simEventSubscribe("policy", usbDebuggingEvent);
    int handle = s.nextHandle++;
    s.receivers[handle] = Receiver{policy, user_data, callback};
    return handle;
}

int mdm_deregister_policy_receiver(int handle) {
    if (!state().receivers.erase(handle))
        return MDM_RESULT_INVALID_PARAMETER;
    return MDM_RESULT_SUCCESS;
}

int tessid_mdm_platform_is_usb_debugging_change_allowed(bool *allowed) {
    if (!allowed)
        return MDM_RESULT_INVALID_PARAMETER;
    int code;
    if (platform::fault("tessid_mdm_platform_is_usb_debugging_change_allowed", nullptr, &code))
        return code;
    *allowed = policy().value("change_allowed", true);
    return MDM_RESULT_SUCCESS;
}

}  // extern "C"
