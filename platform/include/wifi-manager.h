#ifndef WIFI_MANAGER_H
#define WIFI_MANAGER_H

#include <tizen_error.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef void *wifi_manager_h;

typedef enum {
    WIFI_MANAGER_ERROR_NONE = TIZEN_ERROR_NONE,
    WIFI_MANAGER_ERROR_INVALID_PARAMETER = TIZEN_ERROR_INVALID_PARAMETER,
    WIFI_MANAGER_ERROR_OUT_OF_MEMORY = TIZEN_ERROR_OUT_OF_MEMORY,
    WIFI_MANAGER_ERROR_NOT_SUPPORTED = TIZEN_ERROR_NOT_SUPPORTED,
    WIFI_MANAGER_ERROR_INVALID_OPERATION = -0x01C50000 | 0x0101,
    WIFI_MANAGER_ERROR_OPERATION_FAILED = -0x01C50000 | 0x0104,
} wifi_manager_error_e;

int wifi_manager_initialize(wifi_manager_h *wifi);
int wifi_manager_deinitialize(wifi_manager_h wifi);
/* The MAC address as "xx:xx:xx:xx:xx:xx" (free() it); may be NULL on success. */
int wifi_manager_get_mac_address(wifi_manager_h wifi, char **mac_address);

#ifdef __cplusplus
}
#endif

#endif
