#ifndef QUILLSET_PLATFORM_DAEMON_LINK_H
#define QUILLSET_PLATFORM_DAEMON_LINK_H

#include <dbus/dbus.h>

#include <functional>
#include <string>

// The stand-ins' line to the services daemon (quillset-simd). On the watch the log provider
// keeps the usage records and the application manager carries out launch and terminate
// requests, each in a process of its own; the application only hands them a message. Here
// both are the daemon, reached over the watch's private system bus.
//
// Every call goes over one private connection, so that the daemon receives them in the order
// they were made. Answers to calls that are not waited for are read on the Ecore main loop.
namespace platform {

// What became of a call that got no answer: the D-Bus error's name and text. The name is
// kNoBus when the bus itself could not be reached.
struct DaemonError {
    std::string name;
    std::string text;
    std::string describe() const;
};

extern const char *const kNoBus;

using DaemonAnswerHandler = std::function<void(DBusMessage *reply, const DaemonError &error)>;

// Sends the call (taking it over) and returns at once. done runs later on the main loop with
// the reply (null when there is none, error then says why); with an error too when the daemon
// has not answered within timeoutMs. False, with *error, when the call could not be sent: done
// never runs then.
bool daemonSend(DBusMessage *call, int timeoutMs, DaemonAnswerHandler done, DaemonError *error);

// Sends the call (taking it over) and waits for the answer at most timeoutMs. The reply (the
// caller unrefs it), or null with *error.
DBusMessage *daemonCall(DBusMessage *call, int timeoutMs, DaemonError *error);

// Answers still awaited by daemonSend's calls.
int daemonAnswersAwaited();

// At the end of the main loop: waits at most `seconds` for the answers still awaited (their
// handlers run), tells the handlers of the others that none came, and closes the connection.
// The next call opens a new one.
void daemonLinkShutdown(double seconds);

}  // namespace platform

#endif
