#ifndef STORAGE_H
#define STORAGE_H

#include <sys/statvfs.h>
#include <tizen_error.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef enum {
    STORAGE_ERROR_NONE = TIZEN_ERROR_NONE,
    STORAGE_ERROR_INVALID_PARAMETER = TIZEN_ERROR_INVALID_PARAMETER,
    STORAGE_ERROR_OUT_OF_MEMORY = TIZEN_ERROR_OUT_OF_MEMORY,
    STORAGE_ERROR_OPERATION_FAILED = TIZEN_ERROR_IO_ERROR,
    STORAGE_ERROR_NOT_SUPPORTED = TIZEN_ERROR_NOT_SUPPORTED,
} storage_error_e;

/* Sizes of the internal storage: f_bsize, f_blocks and f_bavail are set. */
int storage_get_internal_memory_size(struct statvfs *buf);

#ifdef __cplusplus
}
#endif

#endif
