#ifndef APP_PREFERENCE_H
#define APP_PREFERENCE_H

#include <stdbool.h>
#include <tizen_error.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef enum {
    PREFERENCE_ERROR_NONE = TIZEN_ERROR_NONE,
    PREFERENCE_ERROR_INVALID_PARAMETER = TIZEN_ERROR_INVALID_PARAMETER,
    PREFERENCE_ERROR_OUT_OF_MEMORY = TIZEN_ERROR_OUT_OF_MEMORY,
    PREFERENCE_ERROR_NO_KEY = TIZEN_ERROR_APPLICATION | 0x30,
    PREFERENCE_ERROR_IO_ERROR = TIZEN_ERROR_IO_ERROR,
} preference_error_e;

int preference_get_boolean(const char *key, bool *value);

#ifdef __cplusplus
}
#endif

#endif
