// Application control: launch and terminate requests for other applications. On the simulated
// watch no other application runs; every request is journalled in the usage database so that
// people and tests can see what was asked, and a profile fault can make a launch fail.

#include <app_control.h>

#include <dlog.h>
#include <nlohmann/json.hpp>

#include <cstdlib>
#include <cstring>
#include <map>
#include <string>

#include "AppControlRequest.h"
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

std::string extraJson(const app_control_s *handle) {
    nlohmann::json extra = nlohmann::json::object();
    for (const auto &entry : handle->extraData)
        extra[entry.first] = entry.second;
    return extra.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
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
    int result = APP_CONTROL_ERROR_NONE;
    platform::fault("app_control_send_launch_request", app_control->appId.c_str(), &result);
    long long id = platform::journal("launch", app_control->appId, app_control->operation,
                                     extraJson(app_control), app_control->launchMode, result, 0);
    if (result == APP_CONTROL_ERROR_NONE)
        app_control->launchId = id;
    else
        dlog_print(DLOG_ERROR, kTag, "launch of %s refused: %d", app_control->appId.c_str(),
                   result);
    return result;
}

int app_control_send_terminate_request(app_control_h app_control) {
    if (!app_control)
        return APP_CONTROL_ERROR_INVALID_PARAMETER;
    int result = APP_CONTROL_ERROR_NONE;
    platform::fault("app_control_send_terminate_request", app_control->appId.c_str(), &result);
    if (result == APP_CONTROL_ERROR_NONE && !app_control->launchId)
        result = APP_CONTROL_ERROR_INVALID_PARAMETER;  // nothing was launched with it
    platform::journal("terminate", app_control->appId, app_control->operation,
                      extraJson(app_control), app_control->launchMode, result,
                      app_control->launchId);
    return result;
}

}  // extern "C"
