#ifndef SYSTEM_INFO_H
#define SYSTEM_INFO_H

#include <stdbool.h>
#include <tizen_error.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef enum {
    SYSTEM_INFO_ERROR_NONE = TIZEN_ERROR_NONE,
    SYSTEM_INFO_ERROR_INVALID_PARAMETER = TIZEN_ERROR_INVALID_PARAMETER,
    SYSTEM_INFO_ERROR_OUT_OF_MEMORY = TIZEN_ERROR_OUT_OF_MEMORY,
    SYSTEM_INFO_ERROR_IO_ERROR = TIZEN_ERROR_IO_ERROR,
    SYSTEM_INFO_ERROR_PERMISSION_DENIED = TIZEN_ERROR_PERMISSION_DENIED,
    SYSTEM_INFO_ERROR_NOT_SUPPORTED = TIZEN_ERROR_NOT_SUPPORTED,
} system_info_error_e;

/* Platform keys are "http://tizen.org/" followed by a path such as "system/model_name". */
int system_info_get_platform_bool(const char *key, bool *value);
int system_info_get_platform_int(const char *key, int *value);
int system_info_get_platform_double(const char *key, double *value);
int system_info_get_platform_string(const char *key, char **value);

/* Vendor keys are "http://developer.nerova.com/" followed by a path such as
 * "tizen/feature/esim.phase". */
int system_info_get_custom_bool(const char *key, bool *value);
int system_info_get_custom_int(const char *key, int *value);
int system_info_get_custom_double(const char *key, double *value);
int system_info_get_custom_string(const char *key, char **value);

#ifdef __cplusplus
}
#endif

#endif
