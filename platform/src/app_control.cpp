// Application control: launch and terminate requests for other applications. On the watch the
// application manager, a process of its own, carries them out; here it is the services daemon
// (quillset-simd). No other application runs on the simulated watch: the daemon journals every
// request in the usage database so that people and tests can see what was asked
// (`quillset-sim launches`), and a profile fault makes it refuse one.
//
// As on the watch, a request waits for the application manager's answer, and for no longer than
// the platform's own request would.

#include <app_control.h>

#include <dlog.h>

#include <cstdlib>
#include <cstring>
#include <map>
#include <string>

#include "AppControlRequest.h"
#include "DaemonLink.h"
#include "PlatformState.h"

struct app_control_s {
    std::string appId;
    std::string operation;
    std::map<std::string, std::string> extraData;
    app_control_launch_mode_e launchMode = APP_CONTROL_LAUNCH_MODE_SINGLE;
    long long launchId = 0;  // journal id of the last accepted launch
};

namespace {

const char *const kTag = "APP_CONTROL";
const char *const kManagerName = "com.nerova.quillset.sim";
const char *const kManagerPath = "/com/nerova/quillset/sim/apps";
const char *const kManagerInterface = "com.nerova.quillset.Apps";
// How long a request waits for the application manager: the time-out of the platform's socket
// to it (5.2 s), after which the platform answers APP_CONTROL_ERROR_TIMED_OUT.
const int kManagerTimeoutMs = 5200;

// The request's app id, operation, extra data and launch mode, after the arguments given.
void appendRequest(DBusMessage *call, const app_control_s *handle) {
    DBusMessageIter args, extra;
    dbus_message_iter_init_append(call, &args);
    const char *appId = handle->appId.c_str(), *operation = handle->operation.c_str();
    dbus_message_iter_append_basic(&args, DBUS_TYPE_STRING, &appId);
    dbus_message_iter_append_basic(&args, DBUS_TYPE_STRING, &operation);
    dbus_message_iter_open_container(&args, DBUS_TYPE_ARRAY, "{ss}", &extra);
    for (const auto &pair : handle->extraData) {
        DBusMessageIter entry;
        const char *key = pair.first.c_str(), *value = pair.second.c_str();
        dbus_message_iter_open_container(&extra, DBUS_TYPE_DICT_ENTRY, nullptr, &entry);
        dbus_message_iter_append_basic(&entry, DBUS_TYPE_STRING, &key);
        dbus_message_iter_append_basic(&entry, DBUS_TYPE_STRING, &value);
        dbus_message_iter_close_container(&extra, &entry);
    }
    dbus_message_iter_close_container(&args, &extra);
    dbus_int32_t mode = handle->launchMode;
    dbus_message_iter_append_basic(&args, DBUS_TYPE_INT32, &mode);
}

// Hands the request to the application manager and returns its result; *launchId receives the
// journal id it answers with (Launch only). Without an answer the result is the platform's:
// TIMED_OUT when the manager was too slow, LAUNCH_REJECTED when it could not be reached.
int carryOut(DBusMessage *call, const char *request, const app_control_s *handle,
             long long *launchId) {
    if (!call)
        return APP_CONTROL_ERROR_OUT_OF_MEMORY;
    appendRequest(call, handle);
    platform::DaemonError error;
    DBusMessage *reply = platform::daemonCall(call, kManagerTimeoutMs, &error);
    dbus_int32_t result = APP_CONTROL_ERROR_LAUNCH_REJECTED;
    dbus_int64_t id = 0;
    bool answered =
        reply && (launchId ? dbus_message_get_args(reply, nullptr, DBUS_TYPE_INT32, &result,
                                                   DBUS_TYPE_INT64, &id, DBUS_TYPE_INVALID)
                           : dbus_message_get_args(reply, nullptr, DBUS_TYPE_INT32, &result,
                                                   DBUS_TYPE_INVALID));
    if (reply && !answered)
        error = {DBUS_ERROR_INVALID_ARGS, "the application manager's answer is malformed"};
    if (reply)
        dbus_message_unref(reply);
    if (!answered) {
        result = error.name == DBUS_ERROR_TIMEOUT ? APP_CONTROL_ERROR_TIMED_OUT
                                                  : APP_CONTROL_ERROR_LAUNCH_REJECTED;
        dlog_print(DLOG_ERROR, kTag, "%s request for %s not carried out (%d): %s", request,
                   handle->appId.c_str(), result, error.describe().c_str());
        return result;
    }
    if (launchId && result != APP_CONTROL_ERROR_NONE)
        dlog_print(DLOG_ERROR, kTag, "launch of %s refused: %d", handle->appId.c_str(), result);
    if (launchId)
        *launchId = id;
    return result;
}

}  // namespace

namespace platform {

app_control_h newAppControl() {
    return new app_control_s();
}

}  // namespace platform

extern "C" {

int app_control_create(app_control_h *app_control) {
    if (!app_control)
        return APP_CONTROL_ERROR_INVALID_PARAMETER;
    int code;
    if (platform::fault("app_control_create", nullptr, &code))
        return code;
    *app_control = new app_control_s();
    return APP_CONTROL_ERROR_NONE;
}

int app_control_destroy(app_control_h app_control) {
    if (!app_control)
        return APP_CONTROL_ERROR_INVALID_PARAMETER;
    delete app_control;
    return APP_CONTROL_ERROR_NONE;
}

int app_control_set_app_id(app_control_h app_control, const char *app_id) {
    if (!app_control)
        return APP_CONTROL_ERROR_INVALID_PARAMETER;
    app_control->appId = app_id ? app_id : "";
    return APP_CONTROL_ERROR_NONE;
}

int app_control_get_app_id(app_control_h app_control, char **app_id) {
    if (!app_control || !app_id)
        return APP_CONTROL_ERROR_INVALID_PARAMETER;
    *app_id = app_control->appId.empty() ? nullptr : strdup(app_control->appId.c_str());
    return APP_CONTROL_ERROR_NONE;
}

int app_control_set_operation(app_control_h app_control, const char *operation) {
    if (!app_control)
        return APP_CONTROL_ERROR_INVALID_PARAMETER;
    app_control->operation = operation ? operation : "";
    return APP_CONTROL_ERROR_NONE;
}

int app_control_get_operation(app_control_h app_control, char **operation) {
    if (!app_control || !operation)
        return APP_CONTROL_ERROR_INVALID_PARAMETER;
    *operation = app_control->operation.empty() ? nullptr : strdup(app_control->operation.c_str());
    return APP_CONTROL_ERROR_NONE;
}

int app_control_add_extra_data(app_control_h app_control, const char *key, const char *value) {
    if (!app_control || !key || !*key || !value)
        return APP_CONTROL_ERROR_INVALID_PARAMETER;
    app_control->extraData[key] = value;
    return APP_CONTROL_ERROR_NONE;
}

int app_control_get_extra_data(app_control_h app_control, const char *key, char **value) {
    if (!app_control || !key || !value)
        return APP_CONTROL_ERROR_INVALID_PARAMETER;
    auto it = app_control->extraData.find(key);
    if (it == app_control->extraData.end())
        return APP_CONTROL_ERROR_KEY_NOT_FOUND;
    *value = strdup(it->second.c_str());
    return APP_CONTROL_ERROR_NONE;
}

int app_control_set_launch_mode(app_control_h app_control, app_control_launch_mode_e mode) {
    if (!app_control ||
        (mode != APP_CONTROL_LAUNCH_MODE_SINGLE && mode != APP_CONTROL_LAUNCH_MODE_GROUP))
        return APP_CONTROL_ERROR_INVALID_PARAMETER;
    app_control->launchMode = mode;
    return APP_CONTROL_ERROR_NONE;
}

int app_control_send_launch_request(app_control_h app_control, app_control_reply_cb callback,
                                    void *user_data) {
    (void)callback;
    (void)user_data;
    if (!app_control || (app_control->appId.empty() && app_control->operation.empty()))
        return APP_CONTROL_ERROR_INVALID_PARAMETER;
    long long id = 0;
    int result = carryOut(
        dbus_message_new_method_call(kManagerName, kManagerPath, kManagerInterface, "Launch"),
        "launch", app_control, &id);
    if (result == APP_CONTROL_ERROR_NONE)
        app_control->launchId = id;
    return result;
}

int app_control_send_terminate_request(app_control_h app_control) {
    if (!app_control)
        return APP_CONTROL_ERROR_INVALID_PARAMETER;
    // Terminate(x launch_id, ...): the journal id of the launch it ends, 0 when none was.
    DBusMessage *call =
        dbus_message_new_method_call(kManagerName, kManagerPath, kManagerInterface, "Terminate");
    if (call) {
        dbus_int64_t launchId = app_control->launchId;
        dbus_message_append_args(call, DBUS_TYPE_INT64, &launchId, DBUS_TYPE_INVALID);
    }
    return carryOut(call, "terminate", app_control, nullptr);
}

}  // extern "C"
