#ifndef APP_H
#define APP_H

#include <stdbool.h>
#include <tizen_error.h>
#include <app_control.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef enum {
    APP_ERROR_NONE = TIZEN_ERROR_NONE,
    APP_ERROR_INVALID_PARAMETER = TIZEN_ERROR_INVALID_PARAMETER,
    APP_ERROR_OUT_OF_MEMORY = TIZEN_ERROR_OUT_OF_MEMORY,
    APP_ERROR_INVALID_CONTEXT = TIZEN_ERROR_APPLICATION | 0x01,
    APP_ERROR_NO_SUCH_FILE = -ENOENT,
    APP_ERROR_ALREADY_RUNNING = -EALREADY,
} app_error_e;

typedef enum {
    APP_EVENT_LOW_MEMORY = 0,
    APP_EVENT_LOW_BATTERY = 1,
    APP_EVENT_LANGUAGE_CHANGED = 2,
    APP_EVENT_DEVICE_ORIENTATION_CHANGED = 3,
    APP_EVENT_REGION_FORMAT_CHANGED = 4,
    APP_EVENT_SUSPENDED_STATE_CHANGED = 5,
} app_event_type_e;

typedef struct app_event_info *app_event_info_h;
typedef struct app_event_handler *app_event_handler_h;
typedef void (*app_event_cb)(app_event_info_h event_info, void *user_data);

typedef bool (*app_create_cb)(void *user_data);
typedef void (*app_terminate_cb)(void *user_data);
typedef void (*app_pause_cb)(void *user_data);
typedef void (*app_resume_cb)(void *user_data);
typedef void (*app_control_cb)(app_control_h app_control, void *user_data);

typedef struct {
    app_create_cb create;
    app_terminate_cb terminate;
    app_pause_cb pause;
    app_resume_cb resume;
    app_control_cb app_control;
} ui_app_lifecycle_callback_s;

/* Runs the application's main loop: create, one app_control call per launch request (the
 * first one at start), terminate. Returns APP_ERROR_NONE after a normal exit. */
int ui_app_main(int argc, char **argv, ui_app_lifecycle_callback_s *callback, void *user_data);
void ui_app_exit(void);
int ui_app_add_event_handler(app_event_handler_h *handler, app_event_type_e event_type,
                             app_event_cb callback, void *user_data);
int ui_app_remove_event_handler(app_event_handler_h event_handler);

/* The new language of a language-changed event, such as "de_DE"; the caller frees it. */
int app_event_get_language(app_event_info_h event_info, char **lang);

/* The application's resource directory, ending with a slash; the caller frees it. */
char *app_get_resource_path(void);
char *app_get_data_path(void);
int app_get_id(char **id);

#ifdef __cplusplus
}
#endif

#endif
