#include "DaemonLink.h"

#include <Ecore.h>

#include <time.h>

#include <cstdlib>
#include <list>
#include <utility>

namespace platform {

const char *const kNoBus = "com.nerova.quillset.Error.NoBus";

namespace {

// A call sent with daemonSend whose answer has not been handled yet.
struct Pending {
    DBusPendingCall *call = nullptr;  // our reference
    DaemonAnswerHandler done;
};

struct Link {
    DBusConnection *connection = nullptr;
    Ecore_Job *dispatch = nullptr;
    bool dispatching = false;  // libdbus must not be asked to dispatch from inside a dispatch
    std::list<Pending *> pending;
};

Link g_link;

double now() {
    struct timespec ts;
    clock_gettime(CLOCK_MONOTONIC, &ts);
    return static_cast<double>(ts.tv_sec) + static_cast<double>(ts.tv_nsec) / 1e9;
}

// ---- The connection on the Ecore main loop ------------------------------------------------
// libdbus says which descriptors and timers it needs; Ecore watches them and hands what
// happened back. Messages read are dispatched from a job, never from inside libdbus.

void dispatchCb(void *) {
    g_link.dispatch = nullptr;
    DBusConnection *connection = g_link.connection;
    if (!connection)
        return;
    dbus_connection_ref(connection);
    g_link.dispatching = true;
    while (dbus_connection_dispatch(connection) == DBUS_DISPATCH_DATA_REMAINS) {
    }
    g_link.dispatching = false;
    dbus_connection_unref(connection);
}

void scheduleDispatch() {
    if (!g_link.dispatch && g_link.connection)
        g_link.dispatch = ecore_job_add(dispatchCb, nullptr);
}

void dispatchStatusCb(DBusConnection *, DBusDispatchStatus status, void *) {
    if (status == DBUS_DISPATCH_DATA_REMAINS)
        scheduleDispatch();
}

Eina_Bool watchCb(void *data, Ecore_Fd_Handler *handler) {
    unsigned int condition = 0;
    if (ecore_main_fd_handler_active_get(handler, ECORE_FD_READ))
        condition |= DBUS_WATCH_READABLE;
    if (ecore_main_fd_handler_active_get(handler, ECORE_FD_WRITE))
        condition |= DBUS_WATCH_WRITABLE;
    if (ecore_main_fd_handler_active_get(handler, ECORE_FD_ERROR))
        condition |= DBUS_WATCH_ERROR;
    // May remove the watch, and this handler with it.
    dbus_watch_handle(static_cast<DBusWatch *>(data), condition);
    return ECORE_CALLBACK_RENEW;
}

void stopWatching(DBusWatch *watch) {
    if (auto *handler = static_cast<Ecore_Fd_Handler *>(dbus_watch_get_data(watch)))
        ecore_main_fd_handler_del(handler);
    dbus_watch_set_data(watch, nullptr, nullptr);
}

void startWatching(DBusWatch *watch) {
    stopWatching(watch);
    if (!dbus_watch_get_enabled(watch))
        return;
    unsigned int flags = dbus_watch_get_flags(watch);
    int events = ECORE_FD_ERROR;
    if (flags & DBUS_WATCH_READABLE)
        events |= ECORE_FD_READ;
    if (flags & DBUS_WATCH_WRITABLE)
        events |= ECORE_FD_WRITE;
    Ecore_Fd_Handler *handler = ecore_main_fd_handler_add(
        dbus_watch_get_unix_fd(watch), static_cast<Ecore_Fd_Handler_Flags>(events), watchCb, watch,
        nullptr, nullptr);
    dbus_watch_set_data(watch, handler, nullptr);
}

dbus_bool_t addWatchCb(DBusWatch *watch, void *) {
    startWatching(watch);
    return TRUE;
}

void removeWatchCb(DBusWatch *watch, void *) {
    stopWatching(watch);
}

void toggleWatchCb(DBusWatch *watch, void *) {
    startWatching(watch);
}

Eina_Bool timeoutCb(void *data) {
    // May remove the timeout, and this timer with it.
    dbus_timeout_handle(static_cast<DBusTimeout *>(data));
    return ECORE_CALLBACK_RENEW;
}

void stopTimer(DBusTimeout *timeout) {
    if (auto *timer = static_cast<Ecore_Timer *>(dbus_timeout_get_data(timeout)))
        ecore_timer_del(timer);
    dbus_timeout_set_data(timeout, nullptr, nullptr);
}

void startTimer(DBusTimeout *timeout) {
    stopTimer(timeout);
    if (!dbus_timeout_get_enabled(timeout))
        return;
    Ecore_Timer *timer =
        ecore_timer_add(dbus_timeout_get_interval(timeout) / 1000.0, timeoutCb, timeout);
    dbus_timeout_set_data(timeout, timer, nullptr);
}

dbus_bool_t addTimeoutCb(DBusTimeout *timeout, void *) {
    startTimer(timeout);
    return TRUE;
}

void removeTimeoutCb(DBusTimeout *timeout, void *) {
    stopTimer(timeout);
}

void toggleTimeoutCb(DBusTimeout *timeout, void *) {
    startTimer(timeout);
}

// ---- Answers ----------------------------------------------------------------------------

DaemonError errorOf(DBusMessage *reply) {
    DaemonError error;
    error.name = dbus_message_get_error_name(reply) ? dbus_message_get_error_name(reply) : "";
    const char *text = nullptr;
    if (dbus_message_get_args(reply, nullptr, DBUS_TYPE_STRING, &text, DBUS_TYPE_INVALID) && text)
        error.text = text;
    return error;
}

void finish(Pending *pending, DBusMessage *reply, const DaemonError &error) {
    g_link.pending.remove(pending);
    DaemonAnswerHandler done = std::move(pending->done);
    dbus_pending_call_unref(pending->call);
    delete pending;
    if (done)
        done(reply, error);
}

void notifyCb(DBusPendingCall *call, void *data) {
    auto *pending = static_cast<Pending *>(data);
    DBusMessage *reply = dbus_pending_call_steal_reply(call);
    DaemonError error;
    if (!reply)
        error = {DBUS_ERROR_NO_REPLY, "no answer"};
    else if (dbus_message_get_type(reply) == DBUS_MESSAGE_TYPE_ERROR)
        error = errorOf(reply);
    bool answered = reply && error.name.empty();
    finish(pending, answered ? reply : nullptr, error);
    if (reply)
        dbus_message_unref(reply);
}

// Tells the handlers of the calls still awaited that no answer will come.
void abandonPending(const DaemonError &error) {
    while (!g_link.pending.empty()) {
        Pending *pending = g_link.pending.front();
        dbus_pending_call_cancel(pending->call);
        finish(pending, nullptr, error);
    }
}

// Handles what has arrived, then closes the connection.
void dropConnection(const DaemonError &error) {
    DBusConnection *connection = g_link.connection;
    if (!connection)
        return;
    if (g_link.dispatch)
        ecore_job_del(g_link.dispatch);
    g_link.dispatch = nullptr;
    // A connection that was lost has answered every call with an error; those answers are
    // handled first.
    while (!g_link.dispatching &&
           dbus_connection_dispatch(connection) == DBUS_DISPATCH_DATA_REMAINS) {
    }
    g_link.connection = nullptr;
    abandonPending(error);
    dbus_connection_set_watch_functions(connection, nullptr, nullptr, nullptr, nullptr, nullptr);
    dbus_connection_set_timeout_functions(connection, nullptr, nullptr, nullptr, nullptr, nullptr);
    dbus_connection_set_dispatch_status_function(connection, nullptr, nullptr, nullptr);
    dbus_connection_close(connection);
    dbus_connection_unref(connection);
}

// The connection, opened when there is none or the last one was lost; null with *error when
// the bus cannot be reached.
DBusConnection *connection(DaemonError *error) {
    if (g_link.connection && dbus_connection_get_is_connected(g_link.connection))
        return g_link.connection;
    dropConnection({DBUS_ERROR_DISCONNECTED, "the connection to the bus was lost"});
    const char *address = getenv("DBUS_SYSTEM_BUS_ADDRESS");
    if (!address || !*address) {
        *error = {kNoBus, "no private system bus (DBUS_SYSTEM_BUS_ADDRESS is not set)"};
        return nullptr;
    }
    DBusError failure;
    dbus_error_init(&failure);
    DBusConnection *opened = dbus_connection_open_private(address, &failure);
    if (opened && !dbus_bus_register(opened, &failure)) {
        dbus_connection_close(opened);
        dbus_connection_unref(opened);
        opened = nullptr;
    }
    if (!opened) {
        *error = {kNoBus, std::string("the private system bus cannot be reached: ") +
                              (failure.message ? failure.message : "unknown error")};
        dbus_error_free(&failure);
        return nullptr;
    }
    // A lost bus is answered like a missing daemon, never by ending the application.
    dbus_connection_set_exit_on_disconnect(opened, FALSE);
    dbus_connection_set_watch_functions(opened, addWatchCb, removeWatchCb, toggleWatchCb, nullptr,
                                        nullptr);
    dbus_connection_set_timeout_functions(opened, addTimeoutCb, removeTimeoutCb, toggleTimeoutCb,
                                          nullptr, nullptr);
    dbus_connection_set_dispatch_status_function(opened, dispatchStatusCb, nullptr, nullptr);
    g_link.connection = opened;
    // The bus's greeting (NameAcquired) waits to be dispatched.
    scheduleDispatch();
    return opened;
}

}  // namespace

std::string DaemonError::describe() const {
    if (text.empty())
        return name;
    if (name == kNoBus)
        return text;
    return text + " (" + name + ")";
}

bool daemonSend(DBusMessage *call, int timeoutMs, DaemonAnswerHandler done, DaemonError *error) {
    DBusConnection *bus = connection(error);
    DBusPendingCall *sent = nullptr;
    if (bus && (!dbus_connection_send_with_reply(bus, call, &sent, timeoutMs) || !sent))
        *error = {DBUS_ERROR_DISCONNECTED, "the call could not be sent"};
    dbus_message_unref(call);
    if (!sent)
        return false;
    auto *pending = new Pending{sent, std::move(done)};
    g_link.pending.push_back(pending);
    dbus_pending_call_set_notify(sent, notifyCb, pending, nullptr);
    return true;
}

DBusMessage *daemonCall(DBusMessage *call, int timeoutMs, DaemonError *error) {
    DBusConnection *bus = connection(error);
    if (!bus) {
        dbus_message_unref(call);
        return nullptr;
    }
    DBusError failure;
    dbus_error_init(&failure);
    double start = now();
    DBusMessage *reply = dbus_connection_send_with_reply_and_block(bus, call, timeoutMs, &failure);
    dbus_message_unref(call);
    // Answers to other calls may have been read while waiting.
    scheduleDispatch();
    if (!reply) {
        *error = {failure.name ? failure.name : DBUS_ERROR_FAILED,
                  failure.message ? failure.message : ""};
        // libdbus names its own time-out like a recipient that left without answering.
        if (error->name == DBUS_ERROR_NO_REPLY && (now() - start) * 1000 >= timeoutMs * 0.95)
            *error = {DBUS_ERROR_TIMEOUT, "no answer within " + std::to_string(timeoutMs) + " ms"};
        dbus_error_free(&failure);
    }
    return reply;
}

int daemonAnswersAwaited() {
    return static_cast<int>(g_link.pending.size());
}

void daemonLinkShutdown(double seconds) {
    DBusConnection *bus = g_link.connection;
    if (!bus)
        return;
    double deadline = now() + seconds;
    dbus_connection_flush(bus);
    while (!g_link.pending.empty() && dbus_connection_get_is_connected(bus)) {
        int remainingMs = static_cast<int>((deadline - now()) * 1000);
        if (remainingMs <= 0)
            break;
        dbus_connection_read_write_dispatch(bus, remainingMs);
    }
    dropConnection({DBUS_ERROR_NO_REPLY, "no answer before the application ended"});
}

}  // namespace platform
