#ifndef BUNDLE_H
#define BUNDLE_H

#include <tizen_error.h>

#ifdef __cplusplus
extern "C" {
#endif

/* A small ordered set of string key-value pairs. */
typedef struct _bundle_t bundle;

#define BUNDLE_ERROR_NONE TIZEN_ERROR_NONE
#define BUNDLE_ERROR_INVALID_PARAMETER TIZEN_ERROR_INVALID_PARAMETER
#define BUNDLE_ERROR_KEY_NOT_AVAILABLE (-ENOKEY)
#define BUNDLE_ERROR_KEY_EXISTS (-EPERM)

typedef void (*bundle_iterator_t)(const char *key, const char *val, void *data);

bundle *bundle_create(void);
int bundle_free(bundle *b);
int bundle_add_str(bundle *b, const char *key, const char *str);
/* The value stays owned by the bundle. */
int bundle_get_str(bundle *b, const char *key, char **str);
int bundle_get_count(bundle *b);
/* Calls the iterator for every pair in the order they were added. */
void bundle_iterate(bundle *b, bundle_iterator_t callback, void *cb_data);

#ifdef __cplusplus
}
#endif

#endif
