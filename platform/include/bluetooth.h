#ifndef BLUETOOTH_H
#define BLUETOOTH_H

#include <tizen_error.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef enum {
    BT_ERROR_NONE = TIZEN_ERROR_NONE,
    BT_ERROR_OUT_OF_MEMORY = TIZEN_ERROR_OUT_OF_MEMORY,
    BT_ERROR_INVALID_PARAMETER = TIZEN_ERROR_INVALID_PARAMETER,
    BT_ERROR_NOT_SUPPORTED = TIZEN_ERROR_NOT_SUPPORTED,
    BT_ERROR_NOT_INITIALIZED = TIZEN_ERROR_BLUETOOTH | 0x0101,
    BT_ERROR_NOT_ENABLED = TIZEN_ERROR_BLUETOOTH | 0x0102,
    BT_ERROR_OPERATION_FAILED = TIZEN_ERROR_BLUETOOTH | 0x0104,
} bt_error_e;

int bt_initialize(void);
int bt_deinitialize(void);
/* The adapter's address as "XX:XX:XX:XX:XX:XX" (free() it); may be NULL on success. */
int bt_adapter_get_address(char **address);

#ifdef __cplusplus
}
#endif

#endif
