// The one-way call to the log provider, in a library of its own: the D-Bus GLib binding brings
// GObject and GIO along, which only a change of the diagnostic consent needs.
#include <dbus/dbus-glib.h>

#include "StInfoModuleEntries.h"

extern "C" void quillset_info_notify_log_provider(void) {
    GError *error = nullptr;
    DBusGConnection *bus = dbus_g_bus_get(DBUS_BUS_SYSTEM, &error);
    if (!bus) {
        if (error)
            g_error_free(error);
        return;
    }
    DBusGProxy *proxy = dbus_g_proxy_new_for_name(
        bus, "com.nerova.logmgr", "/com/nerova/logmgr/log/provider/report_app_status_survey",
        "com.nerova.logmgr.log.provider.use_app_feature_survey");
    if (proxy) {
        dbus_g_proxy_call_no_reply(proxy, "Select", G_TYPE_INVALID);
        // The call is queued on the shared connection; send it before letting go.
        dbus_g_connection_flush(bus);
        g_object_unref(proxy);
    }
    dbus_g_connection_unref(bus);
}
