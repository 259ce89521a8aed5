#ifndef METADATA_EXTRACTOR_H
#define METADATA_EXTRACTOR_H

#include <tizen_error.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef struct metadata_extractor_s *metadata_extractor_h;

typedef enum {
    METADATA_EXTRACTOR_ERROR_NONE = TIZEN_ERROR_NONE,
    METADATA_EXTRACTOR_ERROR_INVALID_PARAMETER = TIZEN_ERROR_INVALID_PARAMETER,
    METADATA_EXTRACTOR_ERROR_OUT_OF_MEMORY = TIZEN_ERROR_OUT_OF_MEMORY,
    METADATA_EXTRACTOR_ERROR_FILE_EXISTS = TIZEN_ERROR_IO_ERROR,
    METADATA_EXTRACTOR_ERROR_OPERATION_FAILED = -0x01940000 | 0x01,
} metadata_extractor_error_e;

typedef enum {
    METADATA_DURATION = 0,
    METADATA_ARTIST = 11,
    METADATA_ALBUM = 13,
    METADATA_TITLE = 12,
} metadata_extractor_attr_e;

int metadata_extractor_create(metadata_extractor_h *metadata);
int metadata_extractor_set_path(metadata_extractor_h metadata, const char *path);
/* The value is a copy the caller frees, or NULL when the file has no such attribute. */
int metadata_extractor_get_metadata(metadata_extractor_h metadata,
                                    metadata_extractor_attr_e attribute, char **value);
int metadata_extractor_destroy(metadata_extractor_h metadata);

#ifdef __cplusplus
}
#endif

#endif
