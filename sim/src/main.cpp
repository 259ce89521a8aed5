// quillset-sim: brings up and controls a simulated watch.

#include <dbus/dbus.h>
#include <dirent.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <string>
#include <vector>

#include "Profile.h"
#include "SettingsStore.h"
#include "SimRun.h"
#include "StatePaths.h"
#include "UsageDb.h"

namespace {

const char *const kUsage =
    "usage: quillset-sim [--state DIR] COMMAND ...\n"
    "  run [--profile NAME|FILE] [--state DIR] [--fresh] -- CMD...\n"
    "                          start a watch, run CMD in it, stop the watch\n"
    "  get KEY                 print a setting (booleans as true/false)\n"
    "  set KEY TYPE VALUE      write a setting; TYPE is bool, int, double or string\n"
    "  event launch            a new launch request for the application\n"
    "  event language LANG     switch the language (en, de, de_DE, de_DE.UTF-8)\n"
    "  event policy usb-debugging STATUS\n"
    "                          device policy on debugging: 1 restricted, 0 allowed\n"
    "  profiles                list the device profiles\n"
    "  usage                   usage records and log-provider calls, as JSON lines\n"
    "  launches                launch and terminate requests, as JSON lines\n"
    "Every command but run and profiles finds the watch through --state DIR or\n"
    "$QUILLSET_STATE, which run exports to CMD.\n";

int usageError(const std::string &message) {
    std::cerr << "quillset-sim: " << message << "\n" << kUsage;
    return 2;
}

int fail(const std::string &message) {
    std::cerr << "quillset-sim: " << message << "\n";
    return 1;
}

bool stateDirOrFail(const std::string &option, std::string *state) {
    *state = option.empty() ? sim::stateDirFromEnv() : option;
    if (state->empty()) {
        std::cerr << "quillset-sim: no watch: give --state DIR or set QUILLSET_STATE (run sets "
                     "it for its command)\n";
        return false;
    }
    return true;
}

int cmdGet(const std::string &state, const std::vector<std::string> &args) {
    if (args.size() != 1)
        return usageError("get takes one KEY");
    sim::SettingsStore store(state);
    sim::SettingValue value;
    std::string error;
    switch (store.read(args[0], &value, &error)) {
        case sim::SettingsStore::Ok:
            std::cout << value.text() << "\n";
            return 0;
        case sim::SettingsStore::Missing:
            return fail("no setting " + args[0]);
        default:
            return fail(error);
    }
}

int cmdSet(const std::string &state, const std::vector<std::string> &args) {
    if (args.size() != 3)
        return usageError("set takes KEY TYPE VALUE");
    sim::SettingValue value;
    std::string error;
    if (!sim::SettingValue::parse(args[1], args[2], &value, &error))
        return fail(args[0] + ": " + error);
    if (sim::SettingsStore(state).write(args[0], value, &error) != sim::SettingsStore::Ok)
        return fail(error);
    return 0;
}

// Sends an event to the watch's services daemon, which hands it to the application.
int sendEvent(const std::string &state, const std::string &kind,
              const std::vector<std::string> &args) {
    DBusError error;
    dbus_error_init(&error);
    const char *env = getenv("DBUS_SYSTEM_BUS_ADDRESS");
    std::string address = env && *env ? env : "unix:path=" + state + "/bus/system.sock";
    DBusConnection *bus = dbus_connection_open_private(address.c_str(), &error);
    if (!bus || !dbus_bus_register(bus, &error)) {
        std::string message = "the watch's bus is not reachable at " + address + " (" +
                              (error.message ? error.message : "unknown error") +
                              "); is the watch running (quillset-sim run)?";
        dbus_error_free(&error);
        if (bus) {
            dbus_connection_close(bus);
            dbus_connection_unref(bus);
        }
        return fail(message);
    }
    DBusMessage *call = dbus_message_new_method_call(
        "com.nerova.quillset.sim", "/com/nerova/quillset/sim", "com.nerova.quillset.Sim", "Event");
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
    DBusMessage *reply = dbus_connection_send_with_reply_and_block(bus, call, 5000, &error);
    dbus_message_unref(call);
    int status = 0;
    if (!reply) {
        status = fail(std::string("event ") + kind + ": " +
                      (error.message ? error.message : "no answer from quillset-simd"));
        dbus_error_free(&error);
    } else {
        dbus_message_unref(reply);
    }
    dbus_connection_close(bus);
    dbus_connection_unref(bus);
    return status;
}

std::string normaliseLanguage(const std::string &lang) {
    std::string value = lang;
    if (value == "en")
        value = "en_US";
    else if (value.size() == 2)
        value += "_" + std::string(1, toupper(value[0])) + std::string(1, toupper(value[1]));
    if (value.find('.') == std::string::npos)
        value += ".UTF-8";
    return value;
}

int cmdEvent(const std::string &state, const std::vector<std::string> &args) {
    if (args.empty())
        return usageError("event needs a kind");
    const std::string &kind = args[0];
    std::vector<std::string> rest(args.begin() + 1, args.end());
    if (kind == "language") {
        if (rest.size() != 1 || rest[0].size() < 2)
            return usageError("event language takes LANG, such as de or de_DE");
        std::string error;
        if (sim::SettingsStore(state).write("db/menu_widget/language",
                                            sim::SettingValue::ofString(normaliseLanguage(rest[0])),
                                            &error) != sim::SettingsStore::Ok)
            return fail(error);
        return 0;
    }
    return sendEvent(state, kind, rest);
}

int cmdProfiles() {
    std::string dir = sim::dataDir() + "/profiles";
    DIR *d = opendir(dir.c_str());
    if (!d)
        return fail("no profiles in " + dir);
    std::vector<std::string> names;
    while (struct dirent *entry = readdir(d)) {
        std::string name = entry->d_name;
        if (name.size() > 5 && name.compare(name.size() - 5, 5, ".json") == 0)
            names.push_back(name.substr(0, name.size() - 5));
    }
    closedir(d);
    std::sort(names.begin(), names.end());
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

int cmdList(const std::string &state, bool journal) {
    sim::UsageDb db;
    std::string error;
    std::vector<nlohmann::json> rows;
    if (!db.open(state, &error) ||
        !(journal ? db.listJournal(&rows, &error) : db.listUsage(&rows, &error)))
        return fail(error);
    for (nlohmann::json &row : rows) {
        if (journal && row.contains("extra_data") && row["extra_data"].is_string()) {
            nlohmann::json extra =
                nlohmann::json::parse(row["extra_data"].get<std::string>(), nullptr, false);
            if (!extra.is_discarded())
                row["extra_data"] = extra;
        }
        std::cout << row.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace) << "\n";
    }
    return 0;
}

}  // namespace

int main(int argc, char *argv[]) {
    std::vector<std::string> args(argv + 1, argv + argc);
    std::string state;
    // --state may come before or after the command name.
    for (size_t i = 0; i < args.size(); ++i) {
        if (args[i] == "--")
            break;
        if (args[i] == "--state") {
            if (i + 1 >= args.size())
                return usageError("--state needs a directory");
            state = args[i + 1];
            args.erase(args.begin() + i, args.begin() + i + 2);
            --i;
        }
    }
    if (args.empty() || args[0] == "--help" || args[0] == "-h") {
        std::cout << kUsage;
        return args.empty() ? 2 : 0;
    }
    std::string command = args[0];
    std::vector<std::string> rest(args.begin() + 1, args.end());

    if (command == "run") {
        sim::RunOptions options;
        options.stateDir = state;
        size_t i = 0;
        for (; i < rest.size() && rest[i] != "--"; ++i) {
            if (rest[i] == "--profile" && i + 1 < rest.size())
                options.profile = rest[++i];
            else if (rest[i] == "--fresh")
                options.fresh = true;
            else
                return usageError("run: unknown option " + rest[i]);
        }
        if (i < rest.size())
            options.command.assign(rest.begin() + i + 1, rest.end());
        return sim::runWatch(options);
    }
    if (command == "profiles")
        return cmdProfiles();

    if (!stateDirOrFail(state, &state))
        return 2;
    if (command == "get")
        return cmdGet(state, rest);
    if (command == "set")
        return cmdSet(state, rest);
    if (command == "event")
        return cmdEvent(state, rest);
    if (command == "usage")
        return cmdList(state, false);
    if (command == "launches")
        return cmdList(state, true);
    return usageError("unknown command " + command);
}
