// quillset-simd: the services daemon of the simulated watch, on its private system bus.
//
// - com.nerova.quillset.sim: Event(kind, args) delivers an event (a new launch request, a
//   policy change...) to the running application as the signal Event(kind, args).
// - com.nerova.logmgr: the log provider; its Select calls are recorded in the usage database.

#include <Ecore.h>
#include <Eldbus.h>

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>
#include <vector>

#include "StatePaths.h"
#include "UsageDb.h"

namespace {

const char *const kSimName = "com.nerova.quillset.sim";
const char *const kSimPath = "/com/nerova/quillset/sim";
const char *const kSimInterface = "com.nerova.quillset.Sim";

const char *const kLogName = "com.nerova.logmgr";
const char *const kLogPath = "/com/nerova/logmgr/log/provider/report_app_status_survey";
const char *const kLogInterface = "com.nerova.logmgr.log.provider.use_app_feature_survey";

struct Daemon {
    Eldbus_Connection *bus = nullptr;
    Eldbus_Service_Interface *simInterface = nullptr;
    Eldbus_Service_Interface *logInterface = nullptr;
    sim::UsageDb usage;
    FILE *log = nullptr;
    int namesPending = 2;
};

Daemon g_daemon;

void say(const char *fmt, ...) __attribute__((format(printf, 1, 2)));
void say(const char *fmt, ...) {
    if (!g_daemon.log)
        return;
    time_t now = time(nullptr);
    char stamp[32];
    strftime(stamp, sizeof(stamp), "%H:%M:%S", localtime(&now));
    fprintf(g_daemon.log, "%s ", stamp);
    va_list ap;
    va_start(ap, fmt);
    vfprintf(g_daemon.log, fmt, ap);
    va_end(ap);
    fputc('\n', g_daemon.log);
    fflush(g_daemon.log);
}

// Checks an event's arguments; an empty result means it is valid.
std::string checkEvent(const std::string &kind, const std::vector<std::string> &args) {
    if (kind == "launch" || kind == "home")
        return args.empty() ? "" : kind + " takes no arguments";
    if (kind == "policy") {
        if (args.size() != 2 || args[0] != "usb-debugging")
            return "policy takes: usb-debugging STATUS";
        char *end = nullptr;
        strtol(args[1].c_str(), &end, 10);
        return args[1].empty() || *end ? "policy status must be a number" : "";
    }
    return "unknown event '" + kind + "' (launch, policy)";
}

Eldbus_Message *eventCb(const Eldbus_Service_Interface *iface, const Eldbus_Message *msg) {
    const char *kind = nullptr;
    Eldbus_Message_Iter *array = nullptr;
    if (!eldbus_message_arguments_get(msg, "sas", &kind, &array))
        return eldbus_message_error_new(msg, "org.freedesktop.DBus.Error.InvalidArgs",
                                        "expected (s kind, as args)");
    std::vector<std::string> args;
    const char *arg = nullptr;
    while (eldbus_message_iter_get_and_next(array, 's', &arg))
        args.emplace_back(arg);
    std::string problem = checkEvent(kind, args);
    if (!problem.empty()) {
        say("refused event %s: %s", kind, problem.c_str());
        return eldbus_message_error_new(msg, "com.nerova.quillset.Sim.Error.BadEvent",
                                        problem.c_str());
    }

    Eldbus_Message *signal = eldbus_service_signal_new(iface, 0);
    Eldbus_Message_Iter *iter = eldbus_message_iter_get(signal);
    eldbus_message_iter_basic_append(iter, 's', kind);
    Eldbus_Message_Iter *out = eldbus_message_iter_container_new(iter, 'a', "s");
    for (const std::string &a : args)
        eldbus_message_iter_basic_append(out, 's', a.c_str());
    eldbus_message_iter_container_close(iter, out);
    eldbus_service_signal_send(iface, signal);
    say("event %s (%zu arguments)", kind, args.size());
    return eldbus_message_method_return_new(msg);
}

Eldbus_Message *selectCb(const Eldbus_Service_Interface *, const Eldbus_Message *msg) {
    std::string error;
    if (!g_daemon.usage.addCall(kLogName, kLogPath, kLogInterface, "Select", &error))
        say("Select not recorded: %s", error.c_str());
    else
        say("Select recorded");
    return eldbus_message_method_return_new(msg);
}

const Eldbus_Method kSimMethods[] = {
    {"Event", ELDBUS_ARGS({"s", "kind"}, {"as", "args"}), nullptr, eventCb, 0},
    {nullptr, nullptr, nullptr, nullptr, 0}};
const Eldbus_Signal kSimSignals[] = {{"Event", ELDBUS_ARGS({"s", "kind"}, {"as", "args"}), 0},
                                     {nullptr, nullptr, 0}};
const Eldbus_Service_Interface_Desc kSimDesc = {kSimInterface, kSimMethods, kSimSignals,
                                                nullptr,       nullptr,     nullptr};

const Eldbus_Method kLogMethods[] = {{"Select", nullptr, nullptr, selectCb, 0},
                                     {nullptr, nullptr, nullptr, nullptr, 0}};
const Eldbus_Service_Interface_Desc kLogDesc = {kLogInterface, kLogMethods, nullptr,
                                                nullptr,       nullptr,     nullptr};

void readyIfNamed() {
    if (--g_daemon.namesPending > 0)
        return;
    // Tell quillset-sim that the watch's services are up.
    const char *fd = getenv("QUILLSET_READY_FD");
    if (fd) {
        int n = atoi(fd);
        if (write(n, "ready\n", 6) != 6)
            say("could not report readiness");
        close(n);
    }
    say("serving");
}

void nameCb(void *data, const Eldbus_Message *msg, Eldbus_Pending *) {
    const char *name = static_cast<const char *>(data);
    const char *errorName = nullptr, *errorText = nullptr;
    if (eldbus_message_error_get(msg, &errorName, &errorText)) {
        fprintf(stderr, "quillset-simd: cannot own %s: %s\n", name, errorText);
        ecore_main_loop_quit();
        return;
    }
    unsigned int reply = 0;
    if (!eldbus_message_arguments_get(msg, "u", &reply) ||
        reply != ELDBUS_NAME_REQUEST_REPLY_PRIMARY_OWNER) {
        fprintf(stderr, "quillset-simd: %s is already owned on this bus\n", name);
        ecore_main_loop_quit();
        return;
    }
    readyIfNamed();
}

}  // namespace

int main() {
    std::string state = sim::stateDirFromEnv();
    if (state.empty()) {
        fprintf(stderr,
                "quillset-simd: QUILLSET_STATE is not set (start it with quillset-sim run)\n");
        return 2;
    }
    g_daemon.log = fopen((state + "/simd.log").c_str(), "a");
    std::string error;
    if (!g_daemon.usage.open(state, &error))
        fprintf(stderr, "quillset-simd: %s (calls will not be recorded)\n", error.c_str());

    ecore_init();
    eldbus_init();
    g_daemon.bus = eldbus_connection_get(ELDBUS_CONNECTION_TYPE_SYSTEM);
    if (!g_daemon.bus) {
        fprintf(stderr, "quillset-simd: cannot reach the private system bus\n");
        return 1;
    }
    g_daemon.simInterface = eldbus_service_interface_register(g_daemon.bus, kSimPath, &kSimDesc);
    g_daemon.logInterface = eldbus_service_interface_register(g_daemon.bus, kLogPath, &kLogDesc);
    eldbus_name_request(g_daemon.bus, kSimName, ELDBUS_NAME_REQUEST_FLAG_DO_NOT_QUEUE, nameCb,
                        const_cast<char *>(kSimName));
    eldbus_name_request(g_daemon.bus, kLogName, ELDBUS_NAME_REQUEST_FLAG_DO_NOT_QUEUE, nameCb,
                        const_cast<char *>(kLogName));

    ecore_main_loop_begin();

    say("stopping");
    eldbus_service_interface_unregister(g_daemon.simInterface);
    eldbus_service_interface_unregister(g_daemon.logInterface);
    eldbus_connection_unref(g_daemon.bus);
    eldbus_shutdown();
    ecore_shutdown();
    if (g_daemon.log)
        fclose(g_daemon.log);
    return 0;
}
