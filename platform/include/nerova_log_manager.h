#ifndef NEROVA_LOG_MANAGER_H
#define NEROVA_LOG_MANAGER_H

#include <bundle.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Client of the device's log provider: usage records go to content URIs. */
typedef struct nerova_log_manager_s *nerova_log_manager_h;

#define NEROVA_LOG_MANAGER_ERROR_NONE 0
#define NEROVA_LOG_MANAGER_ERROR_INVALID_PARAMETER (-22)
#define NEROVA_LOG_MANAGER_ERROR_IO_ERROR (-5)

int nerova_log_manager_create(nerova_log_manager_h *handle);
/* Queues one record under uri; request_id receives its identifier. The two reserved arguments
 * must be NULL. */
int nerova_log_manager_insert(nerova_log_manager_h handle, const char *uri, bundle *record,
                              void *reserved1, void *reserved2, int *request_id);
int nerova_log_manager_destroy(nerova_log_manager_h handle);

#ifdef __cplusplus
}
#endif

#endif
