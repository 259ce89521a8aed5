// The log provider's client. On the watch the log provider is a process of its own; here it is
// the services daemon (quillset-simd), which keeps the records in the watch's usage database,
// where `quillset-sim usage` shows them. As the platform's client queues a record, the insert
// hands it to the daemon and returns at once; a record the daemon does not take is logged once
// that is known, and the application never waits for it.

#include <nerova_log_manager.h>

#include <dlog.h>

#include <string>

#include "DaemonLink.h"
#include "PlatformState.h"

struct nerova_log_manager_s {
    int inserted = 0;
};

namespace {

const char *const kTag = "LOG_MANAGER";
const char *const kProviderName = "com.nerova.logmgr";
const char *const kProviderPath = "/com/nerova/logmgr/provider";
const char *const kProviderInterface = "com.nerova.logmgr.Provider";

int g_handlesOpen = 0;

const char *valueOf(bundle *record, const char *key) {
    char *value = nullptr;
    return bundle_get_str(record, key, &value) == BUNDLE_ERROR_NONE ? value : nullptr;
}

// Insert(s uri, a{ss} record): the record's pairs in their order.
DBusMessage *insertCall(const char *uri, bundle *record) {
    DBusMessage *call =
        dbus_message_new_method_call(kProviderName, kProviderPath, kProviderInterface, "Insert");
    if (!call)
        return nullptr;
    DBusMessageIter args, pairs;
    dbus_message_iter_init_append(call, &args);
    dbus_message_iter_append_basic(&args, DBUS_TYPE_STRING, &uri);
    dbus_message_iter_open_container(&args, DBUS_TYPE_ARRAY, "{ss}", &pairs);
    bundle_iterate(
        record,
        [](const char *key, const char *value, void *data) {
            DBusMessageIter entry;
            auto *into = static_cast<DBusMessageIter *>(data);
            dbus_message_iter_open_container(into, DBUS_TYPE_DICT_ENTRY, nullptr, &entry);
            dbus_message_iter_append_basic(&entry, DBUS_TYPE_STRING, &key);
            dbus_message_iter_append_basic(&entry, DBUS_TYPE_STRING, &value);
            dbus_message_iter_close_container(into, &entry);
        },
        &pairs);
    dbus_message_iter_close_container(&args, &pairs);
    return call;
}

void notDelivered(const std::string &record, const platform::DaemonError &error) {
    dlog_print(DLOG_ERROR, kTag, "usage record %s not delivered to the log provider: %s",
               record.c_str(), error.describe().c_str());
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
    ++g_handlesOpen;
    return NEROVA_LOG_MANAGER_ERROR_NONE;
}

int nerova_log_manager_insert(nerova_log_manager_h handle, const char *uri, bundle *record,
                              void *reserved1, void *reserved2, int *request_id) {
    if (!handle || !uri || !record || reserved1 || reserved2)
        return NEROVA_LOG_MANAGER_ERROR_INVALID_PARAMETER;
    int code;
    if (platform::fault("nerova_log_manager_insert", uri, &code))
        return code;
    const char *feature = valueOf(record, "feature");
    std::string name = std::string(feature ? feature : "(no feature)") + " for " + uri;
    DBusMessage *call = insertCall(uri, record);
    if (!call)
        return NEROVA_LOG_MANAGER_ERROR_IO_ERROR;
    platform::DaemonError error;
    bool sent = platform::daemonSend(
        call, DBUS_TIMEOUT_USE_DEFAULT,
        [name](DBusMessage *reply, const platform::DaemonError &failure) {
            if (!reply)
                notDelivered(name, failure);
        },
        &error);
    if (!sent) {
        notDelivered(name, error);
        return NEROVA_LOG_MANAGER_ERROR_IO_ERROR;
    }
    if (request_id)
        *request_id = ++handle->inserted;
    return NEROVA_LOG_MANAGER_ERROR_NONE;
}

int nerova_log_manager_destroy(nerova_log_manager_h handle) {
    if (!handle)
        return NEROVA_LOG_MANAGER_ERROR_INVALID_PARAMETER;
    delete handle;
    --g_handlesOpen;
    return NEROVA_LOG_MANAGER_ERROR_NONE;
}

}  // extern "C"

int platform::logManagerHandlesOpen() {
    return g_handlesOpen;
}
