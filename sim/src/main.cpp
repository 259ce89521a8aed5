// quillset-sim: brings up and controls a simulated watch.

#include <dbus/dbus.h>
#include <unistd.h>

#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <map>
#include <string>
#include <vector>

#include "Profile.h"
#include "SettingsStore.h"
#include "SimRun.h"
#include "StatePaths.h"

namespace {

const char *const kUsage =
    "usage: quillset-sim [--state DIR] COMMAND ...\n"
    "  run [--profile NAME|FILE] [--state DIR] [--fresh] [--a11y] -- CMD...\n"
    "                          start a watch, run CMD in it, stop the watch; --a11y turns\n"
    "                          the accessibility bus on for a desktop screen reader\n"
    "  get KEY                 print a setting (booleans as true/false)\n"
    "  set KEY TYPE VALUE      write a setting; TYPE is bool, int, double or string\n"
    "  unset KEY               delete a setting, as a reset of the watch would\n"
    "  event launch            a new launch request for the application\n"
    "  event language LANG     switch the language (en, de, de_DE, de_DE.UTF-8)\n"
    "  event policy usb-debugging STATUS\n"
    "                          device policy on debugging: 1 restricted, 0 allowed\n"
    "  event sim-refresh [--msisdn NUMBER]\n"
    "                          the SIM was refreshed (optionally with a new number)\n"
    "  event esim TYPE DATA [--profiles FILE]\n"
    "                          an eSIM event; FILE holds the new profile list (JSON)\n"
    "  event home              the home key was pressed\n"
    "  profiles                list the device profiles\n"
    "  check PROFILE...        check profiles (names or files): errors, then warnings\n"
    "  usage                   usage records and log-provider calls, as JSON lines\n"
    "  launches                launch and terminate requests, as JSON lines\n"
    "Every command but run and profiles finds the watch through --state DIR or\n"
    "$QUILLSET_STATE, which run exports to CMD.\n";

const char *const kSimName = "com.nerova.quillset.sim";
const char *const kSimPath = "/com/nerova/quillset/sim";
const char *const kSimInterface = "com.nerova.quillset.Sim";

int usageError(const std::string &message) {
    std::cerr << "quillset-sim: " << message << "\n" << kUsage;
    return 2;
}

int fail(const std::string &message) {
    std::cerr << "quillset-sim: " << message << "\n";
    return 1;
}

struct Watch {
    std::string state;
    bool explicitState = false;  // from --state rather than the environment
};

int cmdGet(const Watch &watch, const std::vector<std::string> &args) {
    if (args.size() != 1)
        return usageError("get takes one KEY");
    sim::SettingValue value;
    std::string error;
    switch (sim::SettingsStore(watch.state).read(args[0], &value, &error)) {
        case sim::SettingsStore::Ok:
            std::cout << value.text() << "\n";
            return 0;
        case sim::SettingsStore::Missing:
            return fail("no setting " + args[0] + " on this watch (" + watch.state + ")");
        default:
            return fail(error);
    }
}

int cmdSet(const Watch &watch, const std::vector<std::string> &args) {
    if (args.size() != 3)
        return usageError("set takes KEY TYPE VALUE");
    if (!sim::SettingsStore::validKey(args[0]))
        return fail("invalid key '" + args[0] + "' (a relative path such as db/setting/x)");
    sim::SettingValue value;
    std::string error;
    if (!sim::SettingValue::parse(args[1], args[2], &value, &error))
        return fail(args[0] + ": " + error + "; nothing was written");
    if (sim::SettingsStore(watch.state).write(args[0], value, &error) != sim::SettingsStore::Ok)
        return fail(error);
    return 0;
}

int cmdUnset(const Watch &watch, const std::vector<std::string> &args) {
    if (args.size() != 1)
        return usageError("unset takes one KEY");
    if (!sim::SettingsStore::validKey(args[0]))
        return fail("invalid key '" + args[0] + "' (a relative path such as db/setting/x)");
    std::string error;
    switch (sim::SettingsStore(watch.state).remove(args[0], &error)) {
        case sim::SettingsStore::Ok:
            return 0;
        case sim::SettingsStore::Missing:
            return fail("no setting " + args[0] + " on this watch (" + watch.state + ")");
        default:
            return fail(error);
    }
}

// The watch's bus: the one given with --state, else the one this process runs on.
std::string busAddress(const Watch &watch) {
    const char *env = getenv("DBUS_SYSTEM_BUS_ADDRESS");
    if (!watch.explicitState && env && *env)
        return env;
    return "unix:path=" + watch.state + "/bus/system.sock";
}

// The watch's bus, registered; null with *message when it cannot be reached.
DBusConnection *connectBus(const Watch &watch, std::string *message) {
    std::string address = busAddress(watch);
    DBusError error;
    dbus_error_init(&error);
    DBusConnection *bus = dbus_connection_open_private(address.c_str(), &error);
    if (bus && !dbus_bus_register(bus, &error)) {
        dbus_connection_close(bus);
        dbus_connection_unref(bus);
        bus = nullptr;
    }
    if (!bus) {
        *message = "the watch's bus is not reachable at " + address + " (" +
                   (error.message ? error.message : "unknown error") +
                   "); is the watch running (quillset-sim run)?";
        dbus_error_free(&error);
    }
    return bus;
}

void disconnect(DBusConnection *bus) {
    dbus_connection_close(bus);
    dbus_connection_unref(bus);
}

// Calls the services daemon and waits for its answer; null with *error set when there is
// none (error.name DBUS_ERROR_SERVICE_UNKNOWN: the daemon is not on the bus).
DBusMessage *callDaemon(DBusConnection *bus, DBusMessage *call, DBusError *error) {
    DBusMessage *reply = dbus_connection_send_with_reply_and_block(bus, call, 5000, error);
    dbus_message_unref(call);
    return reply;
}

// Sends an event to the watch's services daemon, which hands it to the application.
int sendEvent(const Watch &watch, const std::string &kind, const std::vector<std::string> &args) {
    std::string message;
    DBusConnection *bus = connectBus(watch, &message);
    if (!bus)
        return fail(message);
    DBusMessage *call = dbus_message_new_method_call(kSimName, kSimPath, kSimInterface, "Event");
    DBusMessageIter iter, array;
    dbus_message_iter_init_append(call, &iter);
    const char *kindText = kind.c_str();
    dbus_message_iter_append_basic(&iter, DBUS_TYPE_STRING, &kindText);
    dbus_message_iter_open_container(&iter, DBUS_TYPE_ARRAY, "s", &array);
    for (const std::string &arg : args) {
        const char *text = arg.c_str();
        dbus_message_iter_append_basic(&array, DBUS_TYPE_STRING, &text);
    }
    dbus_message_iter_close_container(&iter, &array);
    DBusError error;
    dbus_error_init(&error);
    DBusMessage *reply = callDaemon(bus, call, &error);
    int status = 0;
    if (!reply) {
        std::string reason = error.message ? error.message : "no answer";
        if (error.name && strcmp(error.name, DBUS_ERROR_SERVICE_UNKNOWN) == 0)
            reason = "the services daemon (quillset-simd) is not on the bus";
        status = fail("event " + kind + ": " + reason);
        dbus_error_free(&error);
    } else {
        dbus_message_unref(reply);
    }
    disconnect(bus);
    return status;
}

// "de" -> "de_DE.UTF-8"; "" when lang does not look like a language.
std::string languageSetting(const std::string &lang) {
    // Languages whose usual country code is not the language code.
    static const std::map<std::string, std::string> kCountries = {
        {"en", "US"}, {"ja", "JP"}, {"ko", "KR"}, {"zh", "CN"}, {"sv", "SE"},
        {"da", "DK"}, {"el", "GR"}, {"cs", "CZ"}, {"uk", "UA"}, {"he", "IL"},
        {"hi", "IN"}, {"nb", "NO"}, {"sl", "SI"}, {"et", "EE"}, {"ar", "AE"},
        {"fa", "IR"}, {"ga", "IE"}, {"ca", "ES"}, {"vi", "VN"}};
    std::string base = lang;
    size_t dot = base.find('.');
    if (dot != std::string::npos) {
        std::string charset = base.substr(dot + 1);
        if (charset != "UTF-8" && charset != "utf8")
            return "";
        base = base.substr(0, dot);
    }
    size_t underscore = base.find('_');
    std::string language = base.substr(0, underscore);
    std::string country = underscore == std::string::npos ? "" : base.substr(underscore + 1);
    if (language.size() < 2 || language.size() > 3)
        return "";
    for (char c : language)
        if (!islower(static_cast<unsigned char>(c)))
            return "";
    if (underscore == std::string::npos) {
        auto known = kCountries.find(language);
        country = known != kCountries.end() ? known->second : language;
        for (char &c : country)
            c = static_cast<char>(toupper(static_cast<unsigned char>(c)));
    }
    if (country.size() != 2 || !isupper(static_cast<unsigned char>(country[0])) ||
        !isupper(static_cast<unsigned char>(country[1])))
        return "";
    return language + "_" + country + ".UTF-8";
}

int cmdEvent(const Watch &watch, const std::vector<std::string> &args) {
    if (args.empty())
        return usageError("event needs a kind (launch, language, policy, sim-refresh, esim, home)");
    const std::string &kind = args[0];
    std::vector<std::string> rest(args.begin() + 1, args.end());
    if (kind == "language") {
        // The application watches the language setting itself.
        if (rest.size() != 1)
            return usageError("event language takes LANG, such as de, de_DE or de_DE.UTF-8");
        std::string value = languageSetting(rest[0]);
        if (value.empty())
            return fail("'" + rest[0] + "' is not a language such as de, de_DE or de_DE.UTF-8");
        std::string error;
        if (sim::SettingsStore(watch.state)
                .write("db/menu_widget/language", sim::SettingValue::ofString(value), &error) !=
            sim::SettingsStore::Ok)
            return fail(error);
        return 0;
    }
    if (kind == "sim-refresh") {
        // [--msisdn NUMBER]
        if (rest.empty())
            return sendEvent(watch, kind, {});
        if (rest.size() == 2 && rest[0] == "--msisdn")
            return sendEvent(watch, kind, {rest[1]});
        return usageError("event sim-refresh takes [--msisdn NUMBER]");
    }
    if (kind == "esim") {
        // TYPE DATA [--profiles FILE]: the file's profile list travels as JSON.
        if (rest.size() == 2)
            return sendEvent(watch, kind, rest);
        if (rest.size() == 4 && rest[2] == "--profiles") {
            std::string text, error;
            if (!sim::readFile(rest[3], &text, &error))
                return fail(error);
            nlohmann::json profiles = nlohmann::json::parse(text, nullptr, false);
            if (profiles.is_discarded() || !profiles.is_array())
                return fail(rest[3] + ": not a JSON array of eSIM profiles");
            return sendEvent(watch, kind, {rest[0], rest[1], profiles.dump()});
        }
        return usageError("event esim takes TYPE DATA [--profiles FILE]");
    }
    return sendEvent(watch, kind, rest);
}

int cmdProfiles() {
    std::string dir = sim::profilesDir();
    std::vector<std::string> names = sim::Profile::names(dir);
    if (names.empty())
        return fail("no profiles in " + dir);
    for (const std::string &name : names) {
        sim::Profile profile;
        std::string error;
        if (profile.load(dir + "/" + name + ".json", &error))
            printf("%-16s %s\n", name.c_str(), profile.description().c_str());
        else
            printf("%-16s (invalid: %s)\n", name.c_str(), error.c_str());
    }
    return 0;
}

// Usage records or launches as JSON lines. The services daemon is the only process that opens
// the usage database: a running watch's daemon is asked over the bus; a stopped watch's
// database is listed by the daemon's program on its own (quillset-simd --list).
int cmdList(const Watch &watch, const std::string &what) {
    std::string message;
    if (DBusConnection *bus = connectBus(watch, &message)) {
        DBusMessage *call = dbus_message_new_method_call(kSimName, kSimPath, kSimInterface, "List");
        const char *whatText = what.c_str();
        dbus_message_append_args(call, DBUS_TYPE_STRING, &whatText, DBUS_TYPE_INVALID);
        DBusError error;
        dbus_error_init(&error);
        DBusMessage *reply = callDaemon(bus, call, &error);
        disconnect(bus);
        if (reply) {
            char **rows = nullptr;
            int count = 0;
            bool ok = dbus_message_get_args(reply, &error, DBUS_TYPE_ARRAY, DBUS_TYPE_STRING, &rows,
                                            &count, DBUS_TYPE_INVALID);
            for (int i = 0; ok && i < count; ++i)
                std::cout << rows[i] << "\n";
            dbus_free_string_array(rows);
            dbus_message_unref(reply);
            if (ok)
                return 0;
        }
        bool running = !error.name || strcmp(error.name, DBUS_ERROR_SERVICE_UNKNOWN) != 0;
        message = std::string(what + ": ") + (error.message ? error.message : "no answer");
        dbus_error_free(&error);
        if (running)
            return fail(message);
    }
    std::string daemon = sim::executableDir() + "/quillset-simd";
    setenv("QUILLSET_STATE", watch.state.c_str(), 1);
    std::cout.flush();
    execl(daemon.c_str(), daemon.c_str(), "--list", what.c_str(), static_cast<char *>(nullptr));
    return fail(sim::sysError("exec", daemon, errno));
}

// Takes "--NAME VALUE" or "--NAME=VALUE" at args[*i]; false when args[*i] is another word.
bool takeOption(const std::vector<std::string> &args, size_t *i, const std::string &name,
                std::string *value, std::string *error) {
    const std::string &arg = args[*i];
    if (arg.compare(0, name.size() + 1, name + "=") == 0) {
        *value = arg.substr(name.size() + 1);
    } else if (arg == name) {
        if (*i + 1 >= args.size() || args[*i + 1] == "--") {
            *error = name + " needs a value";
            return true;
        }
        *value = args[++*i];
    } else {
        return false;
    }
    if (value->empty())
        *error = name + " needs a value";
    return true;
}

int cmdRun(const std::string &state, const std::vector<std::string> &args) {
    sim::RunOptions options;
    options.stateDir = state;
    size_t i = 0;
    for (; i < args.size() && args[i] != "--"; ++i) {
        std::string error;
        if (takeOption(args, &i, "--profile", &options.profile, &error)) {
            if (!error.empty())
                return usageError("run: " + error);
            options.profileGiven = true;
        } else if (args[i] == "--fresh") {
            options.fresh = true;
        } else if (args[i] == "--a11y") {
            options.accessibility = true;
        } else {
            return usageError("run: unknown option '" + args[i] + "' (the command goes after --)");
        }
    }
    if (i < args.size())
        options.command.assign(args.begin() + i + 1, args.end());
    if (options.command.empty())
        return usageError("run needs a command after --");
    return sim::runWatch(options);
}

// One line a profile: "ok", "ok with N warnings" or the error; then its warnings indented.
int cmdCheck(const std::vector<std::string> &names) {
    if (names.empty())
        return usageError("check takes one or more profiles (names or files)");
    int status = 0;
    for (const std::string &name : names) {
        std::string path = sim::Profile::resolve(name, sim::profilesDir());
        sim::Profile profile;
        std::string error;
        if (path.empty()) {
            printf("%s: no such profile\n", name.c_str());
            status = 1;
        } else if (!profile.load(path, &error)) {
            printf("%s\n", error.c_str());
            status = 1;
        } else if (profile.warnings().empty()) {
            printf("%s: ok\n", path.c_str());
        } else {
            printf("%s: ok with %zu warnings\n", path.c_str(), profile.warnings().size());
        }
        for (const std::string &warning : profile.warnings())
            printf("  warning: %s\n", warning.c_str());
    }
    return status;
}

}  // namespace

int main(int argc, char *argv[]) {
    std::vector<std::string> args(argv + 1, argv + argc);
    Watch watch;
    // --state may come before or after the command name (but not inside run's command).
    size_t i = 0;
    while (i < args.size() && args[i] != "--") {
        size_t last = i;
        std::string error;
        if (!takeOption(args, &last, "--state", &watch.state, &error)) {
            ++i;
            continue;
        }
        if (!error.empty())
            return usageError(error);
        watch.explicitState = true;
        args.erase(args.begin() + i, args.begin() + last + 1);
    }
    if (args.empty())
        return usageError("no command");
    if (args[0] == "--help" || args[0] == "-h" || args[0] == "help") {
        std::cout << kUsage;
        return 0;
    }
    std::string command = args[0];
    std::vector<std::string> rest(args.begin() + 1, args.end());

    if (command == "run")
        return cmdRun(watch.state, rest);
    if (command == "profiles")
        return rest.empty() ? cmdProfiles() : usageError("profiles takes no arguments");
    if (command == "check")
        return cmdCheck(rest);

    static const char *const kStateCommands[] = {"get",   "set",   "unset",
                                                 "event", "usage", "launches"};
    bool known = false;
    for (const char *name : kStateCommands)
        known = known || command == name;
    if (!known)
        return usageError("unknown command '" + command + "'");

    if (watch.state.empty())
        watch.state = sim::stateDirFromEnv();
    if (watch.state.empty())
        return fail(
            "which watch? Give --state DIR or set QUILLSET_STATE (`quillset-sim run` "
            "sets it for its command)");
    if (!sim::isDirectory(watch.state))
        return fail("no watch at " + watch.state +
                    " (not a directory); `quillset-sim run "
                    "--state " +
                    watch.state + " -- ...` makes one");
    if (command == "get")
        return cmdGet(watch, rest);
    if (command == "set")
        return cmdSet(watch, rest);
    if (command == "unset")
        return cmdUnset(watch, rest);
    if (command == "event")
        return cmdEvent(watch, rest);
    if ((command == "usage" || command == "launches") && !rest.empty())
        return usageError(command + " takes no arguments");
    return cmdList(watch, command);
}
