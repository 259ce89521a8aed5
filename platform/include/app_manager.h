#ifndef APP_MANAGER_H
#define APP_MANAGER_H

#include <tizen_error.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef enum {
    APP_MANAGER_ERROR_NONE = TIZEN_ERROR_NONE,
    APP_MANAGER_ERROR_INVALID_PARAMETER = TIZEN_ERROR_INVALID_PARAMETER,
    APP_MANAGER_ERROR_OUT_OF_MEMORY = TIZEN_ERROR_OUT_OF_MEMORY,
    APP_MANAGER_ERROR_IO_ERROR = TIZEN_ERROR_IO_ERROR,
    APP_MANAGER_ERROR_NO_SUCH_APP = TIZEN_ERROR_APPLICATION_MANAGER | 0x01,
} app_manager_error_e;

/* The shared resource directory of an installed package, ending with a slash; the caller
 * frees it. */
int app_manager_get_shared_resource_path(const char *app_id, char **path);

#ifdef __cplusplus
}
#endif

#endif
