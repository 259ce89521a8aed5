// quillset-simd: the services daemon of the simulated watch, on its private system bus, and the
// only process that opens the watch's usage database.
//
// - com.nerova.quillset.sim: Event(kind, args) checks an event (a new launch request, a
//   policy change...) and hands it to the running application as the signal Event(kind, args);
//   List(what) lists the usage database ("usage" or "launches") as JSON lines.
// - com.nerova.quillset.sim, /apps: the application manager. Launch and Terminate carry out
//   (journal) the requests of the app_control stand-in; a profile fault refuses one.
// - com.nerova.logmgr: the log provider. Insert(uri, record) keeps a usage record; its Select
//   calls are recorded too.
// - org.tizen.system.deviced: the device daemon's GetNum (serial and barcode text), as the
//   profile's "deviced" section describes it.
//
// quillset-sim starts it with QUILLSET_READY_FD, a pipe on which it writes "ready" once both
// names are owned, so that nothing talks to the watch before it serves.
//
// `quillset-simd --list usage|launches` lists the database of a watch that is not running and
// ends: `quillset-sim usage` runs it when no daemon answers.

#include <Ecore.h>
#include <Eldbus.h>

#include <fcntl.h>
#include <sys/time.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "Profile.h"
#include "StatePaths.h"
#include "UsageDb.h"

namespace {

const char *const kSimName = "com.nerova.quillset.sim";
const char *const kSimPath = "/com/nerova/quillset/sim";
const char *const kSimInterface = "com.nerova.quillset.Sim";
const char *const kErrorUnknownEvent = "com.nerova.quillset.Sim.Error.UnknownEvent";
const char *const kErrorInvalidArgs = "com.nerova.quillset.Sim.Error.InvalidArgs";

const char *const kHomePath = "/Org/Tizen/Coreapps/home/raise";
const char *const kHomeInterface = "org.tizen.coreapps.home.raise";

const char *const kLogName = "com.nerova.logmgr";
const char *const kLogPath = "/com/nerova/logmgr/log/provider/report_app_status_survey";
const char *const kLogInterface = "com.nerova.logmgr.log.provider.use_app_feature_survey";
const char *const kProviderPath = "/com/nerova/logmgr/provider";
const char *const kProviderInterface = "com.nerova.logmgr.Provider";
const char *const kErrorNotStored = "com.nerova.logmgr.Error.NotStored";

const char *const kAppsPath = "/com/nerova/quillset/sim/apps";
const char *const kAppsInterface = "com.nerova.quillset.Apps";

// The platform's app_control codes the application manager answers with.
const int kAppControlInvalidParameter = -22;

struct Daemon {
    Eldbus_Connection *bus = nullptr;
    Eldbus_Service_Interface *simInterface = nullptr;
    Eldbus_Service_Interface *logInterface = nullptr;
    Eldbus_Service_Interface *homeInterface = nullptr;
    Eldbus_Service_Interface *providerInterface = nullptr;
    Eldbus_Service_Interface *appsInterface = nullptr;
    sim::UsageDb usage;
    FILE *log = nullptr;
    int namesPending = 2;
    int status = 0;
};

Daemon g_daemon;

void say(const char *fmt, ...) __attribute__((format(printf, 1, 2)));
void say(const char *fmt, ...) {
    FILE *out = g_daemon.log ? g_daemon.log : stderr;
    struct timeval now;
    gettimeofday(&now, nullptr);
    struct tm local;
    localtime_r(&now.tv_sec, &local);
    fprintf(out, "%02d:%02d:%02d.%03ld ", local.tm_hour, local.tm_min, local.tm_sec,
            static_cast<long>(now.tv_usec / 1000));
    va_list ap;
    va_start(ap, fmt);
    vfprintf(out, fmt, ap);
    va_end(ap);
    fputc('\n', out);
    fflush(out);
}

void quit(int status) {
    g_daemon.status = status;
    ecore_main_loop_quit();
}

bool isNumber(const std::string &text) {
    char *end = nullptr;
    strtol(text.c_str(), &end, 10);
    return !text.empty() && !*end;
}

// Checks an event; returns the D-Bus error name and sets problem when it is refused.
const char *checkEvent(const std::string &kind, const std::vector<std::string> &args,
                       std::string *problem) {
    if (kind == "launch" || kind == "home") {
        if (args.empty())
            return nullptr;
        *problem = "event '" + kind + "' takes no arguments, got " + std::to_string(args.size());
        return kErrorInvalidArgs;
    }
    if (kind == "policy") {
        if (args.size() == 2 && args[0] == "usb-debugging" && isNumber(args[1]))
            return nullptr;
        *problem = "event 'policy' takes: usb-debugging STATUS (a number)";
        return kErrorInvalidArgs;
    }
    if (kind == "sim-refresh") {
        // Optionally the SIM's new phone number.
        if (args.size() <= 1)
            return nullptr;
        *problem = "event 'sim-refresh' takes at most a phone number";
        return kErrorInvalidArgs;
    }
    if (kind == "esim") {
        // TYPE, DATA and optionally the new profile list as JSON.
        if ((args.size() == 2 || args.size() == 3) && isNumber(args[0]))
            return nullptr;
        *problem = "event 'esim' takes: TYPE (a number) DATA [PROFILES-JSON]";
        return kErrorInvalidArgs;
    }
    *problem = "unknown event kind '" + kind + "' (known: launch, home, policy, sim-refresh, esim)";
    return kErrorUnknownEvent;
}

Eldbus_Message *eventCb(const Eldbus_Service_Interface *iface, const Eldbus_Message *msg) {
    const char *kind = nullptr;
    Eldbus_Message_Iter *array = nullptr;
    if (!eldbus_message_arguments_get(msg, "sas", &kind, &array)) {
        say("refused a malformed Event call from %s", eldbus_message_sender_get(msg));
        return eldbus_message_error_new(msg, kErrorInvalidArgs, "expected (s kind, as args)");
    }
    std::vector<std::string> args;
    const char *arg = nullptr;
    while (eldbus_message_iter_get_and_next(array, 's', &arg))
        args.emplace_back(arg);
    std::string problem;
    if (const char *errorName = checkEvent(kind, args, &problem)) {
        say("refused event from %s: %s", eldbus_message_sender_get(msg), problem.c_str());
        return eldbus_message_error_new(msg, errorName, problem.c_str());
    }

    Eldbus_Message *signal = eldbus_service_signal_new(iface, 0);
    Eldbus_Message_Iter *iter = eldbus_message_iter_get(signal);
    eldbus_message_iter_basic_append(iter, 's', kind);
    Eldbus_Message_Iter *out = eldbus_message_iter_container_new(iter, 'a', "s");
    std::string joined;
    for (const std::string &a : args) {
        eldbus_message_iter_basic_append(out, 's', a.c_str());
        joined += " " + a;
    }
    eldbus_message_iter_container_close(iter, out);
    if (!eldbus_service_signal_send(iface, signal)) {
        say("event %s%s could not be emitted", kind, joined.c_str());
        return eldbus_message_error_new(msg, "org.freedesktop.DBus.Error.Failed",
                                        "the event could not be emitted");
    }
    // The home key is announced the platform's own way as well.
    if (!strcmp(kind, "home") && g_daemon.homeInterface)
        eldbus_service_signal_emit(g_daemon.homeInterface, 0);
    say("event %s%s from %s", kind, joined.c_str(), eldbus_message_sender_get(msg));
    return eldbus_message_method_return_new(msg);
}

Eldbus_Message *selectCb(const Eldbus_Service_Interface *, const Eldbus_Message *msg) {
    std::string error;
    if (!g_daemon.usage.isOpen() ||
        !g_daemon.usage.addCall(kLogName, kLogPath, kLogInterface, "Select", &error))
        say("Select from %s not recorded: %s", eldbus_message_sender_get(msg),
            g_daemon.usage.isOpen() ? error.c_str() : "no usage database");
    else
        say("Select from %s recorded", eldbus_message_sender_get(msg));
    return eldbus_message_method_return_new(msg);
}

// The profile, read again for every call that depends on it (tests change it while the watch
// runs); an empty object when it cannot be read.
nlohmann::json currentProfile() {
    std::string text, error;
    if (!sim::readFile(sim::stateDirFromEnv() + "/profile.json", &text, &error)) {
        say("profile: %s", error.c_str());
        return nlohmann::json::object();
    }
    nlohmann::json profile = nlohmann::json::parse(text, nullptr, false);
    return profile.is_object() ? profile : nlohmann::json::object();
}

// The pairs of an a{ss} argument, in their order.
bool readPairs(Eldbus_Message_Iter *array,
               std::vector<std::pair<std::string, std::string>> *pairs) {
    Eldbus_Message_Iter *entry = nullptr;
    while (eldbus_message_iter_get_and_next(array, 'e', &entry)) {
        const char *key = nullptr, *value = nullptr;
        if (!eldbus_message_iter_arguments_get(entry, "ss", &key, &value))
            return false;
        pairs->emplace_back(key, value);
    }
    return true;
}

// ---- The log provider: Insert(s uri, a{ss} record) ------------------------------------------

Eldbus_Message *insertCb(const Eldbus_Service_Interface *, const Eldbus_Message *msg) {
    const char *uri = nullptr;
    Eldbus_Message_Iter *array = nullptr;
    std::vector<std::pair<std::string, std::string>> record;
    if (!eldbus_message_arguments_get(msg, "sa{ss}", &uri, &array) || !readPairs(array, &record)) {
        say("refused a malformed Insert from %s", eldbus_message_sender_get(msg));
        return eldbus_message_error_new(msg, kErrorInvalidArgs, "expected (s uri, a{ss} record)");
    }
    auto field = [&record](const char *key) -> const std::string * {
        for (const auto &pair : record)
            if (pair.first == key)
                return &pair.second;
        return nullptr;
    };
    const std::string *appId = field("app_id"), *feature = field("feature"),
                      *extra = field("extra"), *value = field("value");
    std::string error;
    if (!g_daemon.usage.isOpen() ||
        !g_daemon.usage.addRecord(uri, appId ? *appId : "", feature ? *feature : "",
                                  extra ? extra->c_str() : nullptr,
                                  value ? value->c_str() : nullptr, &error)) {
        if (!g_daemon.usage.isOpen())
            error = "no usage database";
        say("record %s from %s not stored: %s", feature ? feature->c_str() : "(none)",
            eldbus_message_sender_get(msg), error.c_str());
        return eldbus_message_error_new(msg, kErrorNotStored, error.c_str());
    }
    say("record %s from %s", feature ? feature->c_str() : "(none)", eldbus_message_sender_get(msg));
    return eldbus_message_method_return_new(msg);
}

const Eldbus_Method kProviderMethods[] = {
    {"Insert", ELDBUS_ARGS({"s", "uri"}, {"a{ss}", "record"}), nullptr, insertCb, 0},
    {nullptr, nullptr, nullptr, nullptr, 0}};
const Eldbus_Service_Interface_Desc kProviderDesc = {
    kProviderInterface, kProviderMethods, nullptr, nullptr, nullptr, nullptr};

// ---- The application manager: Launch and Terminate ----------------------------------------
// Launch(s app_id, s operation, a{ss} extra_data, i launch_mode) -> (i result, x launch_id)
// Terminate(x launch_id, s app_id, s operation, a{ss} extra_data, i launch_mode) -> (i result)
// The result is the platform's app_control code; launch_id the journal id of the launch.

// Journals one request and answers with its result.
Eldbus_Message *carryOut(const Eldbus_Message *msg, const char *request, long long launchId,
                         Eldbus_Message_Iter *args) {
    const char *appId = nullptr, *operation = nullptr;
    Eldbus_Message_Iter *array = nullptr;
    int mode = 0;
    std::vector<std::pair<std::string, std::string>> extra;
    if (!eldbus_message_iter_arguments_get(args, "ssa{ss}i", &appId, &operation, &array, &mode) ||
        !readPairs(array, &extra)) {
        say("refused a malformed %s request from %s", request, eldbus_message_sender_get(msg));
        return eldbus_message_error_new(msg, kErrorInvalidArgs,
                                        "expected (s app_id, s operation, a{ss} extra, i mode)");
    }
    bool launch = !strcmp(request, "launch");
    int result = 0;
    sim::Profile::fault(
        currentProfile(),
        launch ? "app_control_send_launch_request" : "app_control_send_terminate_request", appId,
        &result);
    if (!launch && result == 0 && !launchId)
        result = kAppControlInvalidParameter;  // nothing was launched with it
    nlohmann::json extraData = nlohmann::json::object();
    for (const auto &pair : extra)
        extraData[pair.first] = pair.second;
    std::string error;
    long long id =
        g_daemon.usage.isOpen()
            ? g_daemon.usage.addJournal(
                  request, appId, operation,
                  extraData.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace), mode,
                  result, launchId, &error)
            : 0;
    if (!id)
        say("%s request for %s from %s not journalled: %s", request, appId,
            eldbus_message_sender_get(msg),
            g_daemon.usage.isOpen() ? error.c_str() : "no usage database");
    else
        say("%s request for %s from %s: %d", request, appId, eldbus_message_sender_get(msg),
            result);
    Eldbus_Message *reply = eldbus_message_method_return_new(msg);
    if (launch)
        eldbus_message_arguments_append(reply, "ix", result,
                                        static_cast<int64_t>(result == 0 ? id : 0));
    else
        eldbus_message_arguments_append(reply, "i", result);
    return reply;
}

Eldbus_Message *launchCb(const Eldbus_Service_Interface *, const Eldbus_Message *msg) {
    return carryOut(msg, "launch", 0, eldbus_message_iter_get(msg));
}

Eldbus_Message *terminateCb(const Eldbus_Service_Interface *, const Eldbus_Message *msg) {
    Eldbus_Message_Iter *args = eldbus_message_iter_get(msg);
    int64_t launchId = 0;
    if (!eldbus_message_iter_get_and_next(args, 'x', &launchId)) {
        say("refused a malformed terminate request from %s", eldbus_message_sender_get(msg));
        return eldbus_message_error_new(msg, kErrorInvalidArgs, "expected (x launch_id, ...)");
    }
    return carryOut(msg, "terminate", launchId, args);
}

const Eldbus_Method kAppsMethods[] = {
    {"Launch",
     ELDBUS_ARGS({"s", "app_id"}, {"s", "operation"}, {"a{ss}", "extra_data"},
                 {"i", "launch_mode"}),
     ELDBUS_ARGS({"i", "result"}, {"x", "launch_id"}), launchCb, 0},
    {"Terminate",
     ELDBUS_ARGS({"x", "launch_id"}, {"s", "app_id"}, {"s", "operation"}, {"a{ss}", "extra_data"},
                 {"i", "launch_mode"}),
     ELDBUS_ARGS({"i", "result"}), terminateCb, 0},
    {nullptr, nullptr, nullptr, nullptr, 0}};
const Eldbus_Service_Interface_Desc kAppsDesc = {kAppsInterface, kAppsMethods, nullptr,
                                                 nullptr,        nullptr,      nullptr};

// ---- Listing the usage database --------------------------------------------------------------

// The rows of "usage" or "launches" as JSON lines, oldest first.
bool listRows(sim::UsageDb &db, const std::string &what, std::vector<std::string> *lines,
              std::string *error) {
    std::vector<nlohmann::json> rows;
    if (what != "usage" && what != "launches") {
        *error = "no list '" + what + "' (usage, launches)";
        return false;
    }
    if (!(what == "launches" ? db.listJournal(&rows, error) : db.listUsage(&rows, error)))
        return false;
    for (const nlohmann::json &row : rows)
        lines->push_back(row.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace));
    return true;
}

Eldbus_Message *listCb(const Eldbus_Service_Interface *, const Eldbus_Message *msg) {
    const char *what = nullptr;
    if (!eldbus_message_arguments_get(msg, "s", &what))
        return eldbus_message_error_new(msg, kErrorInvalidArgs, "expected (s what)");
    std::vector<std::string> lines;
    std::string error = "no usage database";
    if (!g_daemon.usage.isOpen() || !listRows(g_daemon.usage, what, &lines, &error))
        return eldbus_message_error_new(msg, "org.freedesktop.DBus.Error.Failed", error.c_str());
    Eldbus_Message *reply = eldbus_message_method_return_new(msg);
    Eldbus_Message_Iter *array =
        eldbus_message_iter_container_new(eldbus_message_iter_get(reply), 'a', "s");
    for (const std::string &line : lines)
        eldbus_message_iter_basic_append(array, 's', line.c_str());
    eldbus_message_iter_container_close(eldbus_message_iter_get(reply), array);
    return reply;
}

const Eldbus_Method kSimMethods[] = {
    {"Event", ELDBUS_ARGS({"s", "kind"}, {"as", "args"}), nullptr, eventCb, 0},
    {"List", ELDBUS_ARGS({"s", "what"}), ELDBUS_ARGS({"as", "rows"}), listCb, 0},
    {nullptr, nullptr, nullptr, nullptr, 0}};
const Eldbus_Signal kSimSignals[] = {{"Event", ELDBUS_ARGS({"s", "kind"}, {"as", "args"}), 0},
                                     {nullptr, nullptr, 0}};
const Eldbus_Service_Interface_Desc kSimDesc = {kSimInterface, kSimMethods, kSimSignals,
                                                nullptr,       nullptr,     nullptr};

const Eldbus_Signal kHomeSignals[] = {{"homeraise", nullptr, 0}, {nullptr, nullptr, 0}};
const Eldbus_Service_Interface_Desc kHomeDesc = {kHomeInterface, nullptr, kHomeSignals,
                                                 nullptr,        nullptr, nullptr};

const Eldbus_Method kLogMethods[] = {{"Select", nullptr, nullptr, selectCb, 0},
                                     {nullptr, nullptr, nullptr, nullptr, 0}};
const Eldbus_Service_Interface_Desc kLogDesc = {kLogInterface, kLogMethods, nullptr,
                                                nullptr,       nullptr,     nullptr};

// ---- Device daemon: GetNum on the board object ---------------------------------------------
// "deviced": {"present": true, "serial": "SN1,BAR1", "reply_delay_ms": 0, "wrong_types": false}
// An absent daemon does not own its name, so callers fail at once; a late one answers after the
// delay.

const char *const kDevicedName = "org.tizen.system.deviced";
const char *const kDevicedBoardPath = "/Org/Tizen/System/DeviceD/Board";
const char *const kDevicedBoardInterface = "org.tizen.system.deviced.Board";

Eldbus_Service_Interface *g_devicedBoard = nullptr;

// The profile's "deviced" section, read again for every call.
nlohmann::json devicedProfile() {
    nlohmann::json profile = currentProfile();
    if (!profile.contains("deviced") || !profile["deviced"].is_object())
        return nlohmann::json::object();
    return profile["deviced"];
}

Eina_Bool devicedLateReplyCb(void *data) {
    auto *reply = static_cast<Eldbus_Message *>(data);
    eldbus_connection_send(g_daemon.bus, reply, nullptr, nullptr, -1);
    say("GetNum answered late");
    return ECORE_CALLBACK_CANCEL;
}

Eldbus_Message *devicedGetNumCb(const Eldbus_Service_Interface *, const Eldbus_Message *msg) {
    nlohmann::json deviced = devicedProfile();
    std::string serial = deviced.contains("serial") && deviced["serial"].is_string()
                             ? deviced["serial"].get<std::string>()
                             : "";
    Eldbus_Message *reply = eldbus_message_method_return_new(msg);
    // A daemon of another version may answer with its arguments the other way round.
    if (deviced.value("wrong_types", false))
        eldbus_message_arguments_append(reply, "is", 0, serial.c_str());
    else
        eldbus_message_arguments_append(reply, "si", serial.c_str(), 0);
    long delayMs =
        deviced.contains("reply_delay_ms") && deviced["reply_delay_ms"].is_number_integer()
            ? deviced["reply_delay_ms"].get<long>()
            : 0;
    if (delayMs > 0) {
        say("GetNum from %s: answering in %ld ms", eldbus_message_sender_get(msg), delayMs);
        ecore_timer_add(delayMs / 1000.0, devicedLateReplyCb, reply);
        return nullptr;
    }
    say("GetNum from %s: '%s'", eldbus_message_sender_get(msg), serial.c_str());
    return reply;
}

const Eldbus_Method kDevicedBoardMethods[] = {
    {"GetNum", nullptr, ELDBUS_ARGS({"s", "num"}, {"i", "result"}), devicedGetNumCb, 0},
    {nullptr, nullptr, nullptr, nullptr, 0}};
const Eldbus_Service_Interface_Desc kDevicedBoardDesc = {
    kDevicedBoardInterface, kDevicedBoardMethods, nullptr, nullptr, nullptr, nullptr};

void nameCb(void *data, const Eldbus_Message *msg, Eldbus_Pending *);

// Serves the board object unless the profile leaves the device daemon out.
void devicedStart() {
    nlohmann::json deviced = devicedProfile();
    if (deviced.contains("present") && deviced["present"].is_boolean() &&
        !deviced["present"].get<bool>()) {
        say("device daemon left out by the profile");
        return;
    }
    g_devicedBoard =
        eldbus_service_interface_register(g_daemon.bus, kDevicedBoardPath, &kDevicedBoardDesc);
    ++g_daemon.namesPending;
    eldbus_name_request(g_daemon.bus, kDevicedName, ELDBUS_NAME_REQUEST_FLAG_DO_NOT_QUEUE, nameCb,
                        const_cast<char *>(kDevicedName));
}

void devicedStop() {
    if (g_devicedBoard)
        eldbus_service_interface_unregister(g_devicedBoard);
    g_devicedBoard = nullptr;
}

// ---- end of the device daemon -------------------------------------------------------------

void reportReady() {
    say("serving %s and %s", kSimName, kLogName);
    const char *fd = getenv("QUILLSET_READY_FD");
    if (!fd)
        return;
    int n = atoi(fd);
    if (write(n, "ready\n", 6) != 6)
        say("%s", sim::sysError("write", "QUILLSET_READY_FD", errno).c_str());
    close(n);
}

void nameCb(void *data, const Eldbus_Message *msg, Eldbus_Pending *) {
    const char *name = static_cast<const char *>(data);
    const char *errorName = nullptr, *errorText = nullptr;
    if (eldbus_message_error_get(msg, &errorName, &errorText)) {
        say("cannot own %s: %s", name, errorText ? errorText : errorName);
        fprintf(stderr, "quillset-simd: cannot own %s: %s\n", name, errorText ? errorText : "");
        quit(1);
        return;
    }
    unsigned int reply = 0;
    if (!eldbus_message_arguments_get(msg, "u", &reply) ||
        reply != ELDBUS_NAME_REQUEST_REPLY_PRIMARY_OWNER) {
        say("%s is already owned on this bus", name);
        fprintf(stderr, "quillset-simd: %s is already owned on this bus\n", name);
        quit(1);
        return;
    }
    if (--g_daemon.namesPending == 0)
        reportReady();
}

Eina_Bool exitSignalCb(void *, int, void *) {
    say("stop requested");
    quit(0);
    return ECORE_CALLBACK_DONE;
}

void disconnectedCb(void *, Eldbus_Connection *, void *) {
    say("the bus went away");
    quit(0);
}

// --list WHAT: the usage database of a watch whose daemon is not running, on stdout.
int listStopped(const std::string &state, const std::string &what) {
    std::vector<std::string> lines;
    std::string error;
    sim::UsageDb db;
    // A watch that never ran has no database, and nothing to list.
    if (sim::fileExists(state + "/usage.db") &&
        (!db.openExisting(state, &error) || !listRows(db, what, &lines, &error))) {
        fprintf(stderr, "quillset-simd: %s\n", error.c_str());
        return 1;
    }
    for (const std::string &line : lines)
        printf("%s\n", line.c_str());
    return fflush(stdout) == 0 ? 0 : 1;
}

}  // namespace

int main(int argc, char *argv[]) {
    std::string state = sim::stateDirFromEnv();
    if (state.empty()) {
        fprintf(stderr,
                "quillset-simd: QUILLSET_STATE is not set (it is started by quillset-sim run)\n");
        return 2;
    }
    if (argc == 3 && !strcmp(argv[1], "--list"))
        return listStopped(state, argv[2]);
    if (argc != 1) {
        fprintf(stderr, "usage: quillset-simd [--list usage|launches]\n");
        return 2;
    }
    std::string logPath = state + "/simd.log";
    // Created owner-writable only: fopen would leave the mode to the umask.
    int logFd = open(logPath.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644);
    g_daemon.log = logFd >= 0 ? fdopen(logFd, "a") : nullptr;
    if (!g_daemon.log)
        fprintf(stderr, "quillset-simd: %s\n", sim::sysError("open", logPath, errno).c_str());
    say("starting (pid %d)", static_cast<int>(getpid()));
    std::string error;
    if (!g_daemon.usage.open(state, &error))
        say("usage database: %s (records, launches and calls will not be kept)", error.c_str());

    ecore_init();
    eldbus_init();
    ecore_event_handler_add(ECORE_EVENT_SIGNAL_EXIT, exitSignalCb, nullptr);
    g_daemon.bus = eldbus_connection_get(ELDBUS_CONNECTION_TYPE_SYSTEM);
    if (!g_daemon.bus) {
        const char *address = getenv("DBUS_SYSTEM_BUS_ADDRESS");
        say("cannot reach the private system bus at %s", address ? address : "(unset)");
        fprintf(stderr, "quillset-simd: cannot reach the private system bus\n");
        eldbus_shutdown();
        ecore_shutdown();
        return 1;
    }
    eldbus_connection_event_callback_add(g_daemon.bus, ELDBUS_CONNECTION_EVENT_DISCONNECTED,
                                         disconnectedCb, nullptr);
    g_daemon.simInterface = eldbus_service_interface_register(g_daemon.bus, kSimPath, &kSimDesc);
    g_daemon.logInterface = eldbus_service_interface_register(g_daemon.bus, kLogPath, &kLogDesc);
    g_daemon.homeInterface = eldbus_service_interface_register(g_daemon.bus, kHomePath, &kHomeDesc);
    g_daemon.providerInterface =
        eldbus_service_interface_register(g_daemon.bus, kProviderPath, &kProviderDesc);
    g_daemon.appsInterface = eldbus_service_interface_register(g_daemon.bus, kAppsPath, &kAppsDesc);
    eldbus_name_request(g_daemon.bus, kSimName, ELDBUS_NAME_REQUEST_FLAG_DO_NOT_QUEUE, nameCb,
                        const_cast<char *>(kSimName));
    eldbus_name_request(g_daemon.bus, kLogName, ELDBUS_NAME_REQUEST_FLAG_DO_NOT_QUEUE, nameCb,
                        const_cast<char *>(kLogName));
    devicedStart();

    ecore_main_loop_begin();

    say("stopping");
    eldbus_service_interface_unregister(g_daemon.simInterface);
    eldbus_service_interface_unregister(g_daemon.logInterface);
    eldbus_service_interface_unregister(g_daemon.homeInterface);
    eldbus_service_interface_unregister(g_daemon.providerInterface);
    eldbus_service_interface_unregister(g_daemon.appsInterface);
    devicedStop();
    eldbus_connection_unref(g_daemon.bus);
    eldbus_shutdown();
    ecore_shutdown();
    g_daemon.usage.close();
    if (g_daemon.log)
        fclose(g_daemon.log);
    return g_daemon.status;
}
