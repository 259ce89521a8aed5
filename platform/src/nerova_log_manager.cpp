// The log provider's client: every record goes to the usage database of the simulated watch,
// where `quillset-sim usage` shows it.

#include <nerova_log_manager.h>

#include <string>

#include "PlatformState.h"

struct nerova_log_manager_s {
    int inserted = 0;
};

namespace {

const char *valueOf(bundle *record, const char *key) {
    char *value = nullptr;
    return bundle_get_str(record, key, &value) == BUNDLE_ERROR_NONE ? value : nullptr;
}

}  // namespace

extern "C" {

int nerova_log_manager_create(nerova_log_manager_h *handle) {
    if (!handle)
        return NEROVA_LOG_MANAGER_ERROR_INVALID_PARAMETER;
    int code;
    if (platform::fault("nerova_log_manager_create", nullptr, &code)) {
        *handle = nullptr;
        return code;
    }
    *handle = new nerova_log_manager_s();
    return NEROVA_LOG_MANAGER_ERROR_NONE;
}

int nerova_log_manager_insert(nerova_log_manager_h handle, const char *uri, bundle *record,
                              void *reserved1, void *reserved2, int *request_id) {
    if (!handle || !uri || !record || reserved1 || reserved2)
        return NEROVA_LOG_MANAGER_ERROR_INVALID_PARAMETER;
    int code;
    if (platform::fault("nerova_log_manager_insert", uri, &code))
        return code;
    const char *appId = valueOf(record, "app_id");
    const char *feature = valueOf(record, "feature");
    if (!platform::recordUsage(uri, appId ? appId : "", feature ? feature : "",
                               valueOf(record, "extra"), valueOf(record, "value")))
        return NEROVA_LOG_MANAGER_ERROR_IO_ERROR;
    if (request_id)
        *request_id = ++handle->inserted;
    return NEROVA_LOG_MANAGER_ERROR_NONE;
}

int nerova_log_manager_destroy(nerova_log_manager_h handle) {
    if (!handle)
        return NEROVA_LOG_MANAGER_ERROR_INVALID_PARAMETER;
    delete handle;
    return NEROVA_LOG_MANAGER_ERROR_NONE;
}

}  // extern "C"
