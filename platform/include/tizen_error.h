#ifndef TIZEN_ERROR_H
#define TIZEN_ERROR_H

#include <errno.h>

/* Error codes shared by the platform C APIs: 0 for success, negative errno values or
 * family-specific codes for failures. */
#define TIZEN_ERROR_MIN_PLATFORM_ERROR (-1073741824LL)
#define TIZEN_ERROR_APPLICATION -0x01100000
#define TIZEN_ERROR_APPLICATION_MANAGER -0x01110000
#define TIZEN_ERROR_BLUETOOTH -0x01C00000

typedef enum {
    TIZEN_ERROR_NONE = 0,
    TIZEN_ERROR_IO_ERROR = -EIO,
    TIZEN_ERROR_OUT_OF_MEMORY = -ENOMEM,
    TIZEN_ERROR_PERMISSION_DENIED = -EACCES,
    TIZEN_ERROR_INVALID_PARAMETER = -EINVAL,
    TIZEN_ERROR_TIMED_OUT = -1073741824 + 1,
    TIZEN_ERROR_NOT_SUPPORTED = -1073741824 + 2,
} tizen_error_e;

#endif
