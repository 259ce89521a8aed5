#ifndef QUILLSET_PLATFORM_SIM_EVENTS_H
#define QUILLSET_PLATFORM_SIM_EVENTS_H

#include <functional>
#include <string>
#include <vector>

namespace platform {

// Events of the simulated watch (a new launch request, a policy change, a SIM refresh...)
// arrive from the services daemon as one signal on the private bus. Stand-ins subscribe here
// by kind; handlers run on the main loop.
using SimEventHandler = std::function<void(const std::vector<std::string> &args)>;

// Returns an id for simEventUnsubscribe. Connects to the bus on first use.
int simEventSubscribe(const std::string &kind, SimEventHandler handler);
void simEventUnsubscribe(int id);
// Drops the bus connection (at the end of the main loop).
void simEventsShutdown();

}  // namespace platform

#endif
