#include "SimEvents.h"

#include <Eldbus.h>
#include <dlog.h>

#include <cstdlib>
#include <map>
#include <utility>

namespace platform {

namespace {

const char *const kTag = "SIM_EVENTS";
const char *const kSimBusName = "com.nerova.quillset.sim";
const char *const kSimPath = "/com/nerova/quillset/sim";
const char *const kSimInterface = "com.nerova.quillset.Sim";

struct Subscriptions {
    Eldbus_Connection *bus = nullptr;
    Eldbus_Signal_Handler *handler = nullptr;
    bool tried = false;
    int nextId = 1;
    std::map<int, std::pair<std::string, SimEventHandler>> handlers;
};

Subscriptions &subscriptions() {
    static Subscriptions s;
    return s;
}

void eventCb(void *, const Eldbus_Message *msg) {
    const char *kind = nullptr;
    Eldbus_Message_Iter *array = nullptr;
    if (!eldbus_message_arguments_get(msg, "sas", &kind, &array)) {
        dlog_print(DLOG_ERROR, kTag, "malformed event from the services daemon");
        return;
    }
    std::vector<std::string> args;
    const char *arg = nullptr;
    while (eldbus_message_iter_get_and_next(array, 's', &arg))
        args.emplace_back(arg);
    // Handlers may subscribe or unsubscribe while being called.
    auto handlers = subscriptions().handlers;
    for (auto &entry : handlers) {
        if (entry.second.first == kind && subscriptions().handlers.count(entry.first))
            entry.second.second(args);
    }
}

void connect() {
    Subscriptions &s = subscriptions();
    if (s.tried)
        return;
    s.tried = true;
    if (!getenv("DBUS_SYSTEM_BUS_ADDRESS")) {
        dlog_print(DLOG_WARN, kTag,
                   "no private system bus (DBUS_SYSTEM_BUS_ADDRESS is not set): events of the "
                   "simulated watch will not arrive");
        return;
    }
    eldbus_init();
    s.bus = eldbus_connection_get(ELDBUS_CONNECTION_TYPE_SYSTEM);
    if (!s.bus) {
        dlog_print(DLOG_ERROR, kTag,
                   "the private system bus cannot be reached: events of the simulated watch "
                   "will not arrive");
        eldbus_shutdown();
        return;
    }
    s.handler = eldbus_signal_handler_add(s.bus, kSimBusName, kSimPath, kSimInterface, "Event",
                                          eventCb, nullptr);
}

}  // namespace

int simEventSubscribe(const std::string &kind, SimEventHandler handler) {
    connect();
    Subscriptions &s = subscriptions();
    int id = s.nextId++;
    s.handlers[id] = {kind, std::move(handler)};
    return id;
}

void simEventUnsubscribe(int id) {
    subscriptions().handlers.erase(id);
}

void simEventsShutdown() {
    Subscriptions &s = subscriptions();
    if (s.bus) {
        if (s.handler)
            eldbus_signal_handler_del(s.handler);
        eldbus_connection_unref(s.bus);
        eldbus_shutdown();
    }
    s.bus = nullptr;
    s.handler = nullptr;
    s.tried = false;
}

}  // namespace platform
