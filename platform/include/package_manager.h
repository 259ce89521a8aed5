#ifndef PACKAGE_MANAGER_H
#define PACKAGE_MANAGER_H

#include <tizen_error.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef enum {
    PACKAGE_MANAGER_ERROR_NONE = TIZEN_ERROR_NONE,
    PACKAGE_MANAGER_ERROR_INVALID_PARAMETER = TIZEN_ERROR_INVALID_PARAMETER,
    PACKAGE_MANAGER_ERROR_OUT_OF_MEMORY = TIZEN_ERROR_OUT_OF_MEMORY,
    PACKAGE_MANAGER_ERROR_IO_ERROR = TIZEN_ERROR_IO_ERROR,
    PACKAGE_MANAGER_ERROR_NO_SUCH_PACKAGE = TIZEN_ERROR_APPLICATION | 0x71,
} package_manager_error_e;

typedef struct package_info_s *package_info_h;

/* Information on an installed package; the caller releases it with package_info_destroy. */
int package_manager_get_package_info(const char *package, package_info_h *package_info);
int package_info_destroy(package_info_h package_info);

#ifdef __cplusplus
}
#endif

#endif
