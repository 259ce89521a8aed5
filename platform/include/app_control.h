#ifndef APP_CONTROL_H
#define APP_CONTROL_H

#include <stdbool.h>
#include <tizen_error.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef struct app_control_s *app_control_h;

typedef enum {
    APP_CONTROL_ERROR_NONE = TIZEN_ERROR_NONE,
    APP_CONTROL_ERROR_INVALID_PARAMETER = TIZEN_ERROR_INVALID_PARAMETER,
    APP_CONTROL_ERROR_OUT_OF_MEMORY = TIZEN_ERROR_OUT_OF_MEMORY,
    APP_CONTROL_ERROR_APP_NOT_FOUND = TIZEN_ERROR_APPLICATION | 0x21,
    APP_CONTROL_ERROR_KEY_NOT_FOUND = -ENOKEY,
    APP_CONTROL_ERROR_LAUNCH_REJECTED = TIZEN_ERROR_APPLICATION | 0x23,
    APP_CONTROL_ERROR_LAUNCH_FAILED = TIZEN_ERROR_APPLICATION | 0x24,
    APP_CONTROL_ERROR_TIMED_OUT = TIZEN_ERROR_TIMED_OUT,
    APP_CONTROL_ERROR_PERMISSION_DENIED = TIZEN_ERROR_PERMISSION_DENIED,
} app_control_error_e;

typedef enum {
    APP_CONTROL_RESULT_APP_STARTED = 1,
    APP_CONTROL_RESULT_SUCCEEDED = 0,
    APP_CONTROL_RESULT_FAILED = -1,
    APP_CONTROL_RESULT_CANCELED = -2,
} app_control_result_e;

typedef enum {
    APP_CONTROL_LAUNCH_MODE_SINGLE = 0,
    APP_CONTROL_LAUNCH_MODE_GROUP = 1,
} app_control_launch_mode_e;

#define APP_CONTROL_OPERATION_DEFAULT "http://tizen.org/appcontrol/operation/default"

typedef void (*app_control_reply_cb)(app_control_h request, app_control_h reply,
                                     app_control_result_e result, void *user_data);

int app_control_create(app_control_h *app_control);
int app_control_destroy(app_control_h app_control);
int app_control_set_app_id(app_control_h app_control, const char *app_id);
int app_control_get_app_id(app_control_h app_control, char **app_id);
int app_control_set_operation(app_control_h app_control, const char *operation);
int app_control_get_operation(app_control_h app_control, char **operation);
int app_control_add_extra_data(app_control_h app_control, const char *key, const char *value);
int app_control_get_extra_data(app_control_h app_control, const char *key, char **value);
int app_control_set_launch_mode(app_control_h app_control, app_control_launch_mode_e mode);
int app_control_send_launch_request(app_control_h app_control, app_control_reply_cb callback,
                                    void *user_data);
int app_control_send_terminate_request(app_control_h app_control);

#ifdef __cplusplus
}
#endif

#endif
