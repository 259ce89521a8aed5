#include "Profile.h"

#include <sys/stat.h>

#include <functional>
#include <map>

#include "SettingsStore.h"
#include "StatePaths.h"

namespace sim {

using Json = nlohmann::json;

namespace {

struct Checker {
    std::string source;
    std::vector<std::string> *warnings;
    std::string error;

    bool fail(const std::string &path, const std::string &expected, const Json &value) {
        error = source + ": " + path + ": expected " + expected + ", found " +
                std::string(value.type_name()) + " " + value.dump();
        return false;
    }
    void warn(const std::string &path, const std::string &what) {
        warnings->push_back(source + ": " + path + ": " + what);
    }

    bool object(const Json &value, const std::string &path) {
        return value.is_object() || fail(path, "an object", value);
    }
    bool scalarMap(const Json &value, const std::string &path) {
        if (!object(value, path))
            return false;
        for (auto &entry : value.items()) {
            const Json &v = entry.value();
            if (!v.is_boolean() && !v.is_number() && !v.is_string())
                return fail(path + "." + entry.key(), "a boolean, number or string", v);
        }
        return true;
    }
    bool fields(const Json &value, const std::string &path,
                const std::map<std::string, std::function<bool(const Json &)>> &known) {
        if (!object(value, path))
            return false;
        for (auto &entry : value.items()) {
            auto it = known.find(entry.key());
            if (it == known.end()) {
                warn(path + "." + entry.key(), "unknown key (ignored)");
                continue;
            }
            if (!it->second(entry.value()))
                return false;
        }
        return true;
    }
    std::function<bool(const Json &)> isBool(const std::string &path) {
        return [this, path](const Json &v) { return v.is_boolean() || fail(path, "a boolean", v); };
    }
    std::function<bool(const Json &)> isInt(const std::string &path) {
        return [this, path](const Json &v) {
            return v.is_number_integer() || fail(path, "an integer", v);
        };
    }
    std::function<bool(const Json &)> isCount(const std::string &path) {
        return [this, path](const Json &v) {
            return (v.is_number_integer() && v.get<long long>() >= 0) ||
                   fail(path, "a non-negative integer", v);
        };
    }
    std::function<bool(const Json &)> isString(const std::string &path) {
        return [this, path](const Json &v) { return v.is_string() || fail(path, "a string", v); };
    }
};

// Sections that later parts of the watch read; their contents are checked where they are used.
const char *const kOpenSections[] = {"telephony", "sim", "esim",     "bluetooth", "wifi",
                                     "deviced",   "csc", "packages", "latency",   "battery"};

std::string lineColumn(const std::string &text, size_t byte) {
    size_t line = 1, column = 1;
    for (size_t i = 0; i < byte && i < text.size(); ++i) {
        if (text[i] == '\n') {
            ++line;
            column = 1;
        } else {
            ++column;
        }
    }
    return "line " + std::to_string(line) + ", column " + std::to_string(column);
}

}  // namespace

bool Profile::load(const std::string &path, std::string *error) {
    std::string text;
    if (!readFile(path, &text, error))
        return false;
    return parse(text, path, error);
}

bool Profile::parse(const std::string &text, const std::string &sourceName, std::string *error) {
    _warnings.clear();
    try {
        _json = Json::parse(text);
    } catch (const Json::parse_error &e) {
        // e.byte is one past the offending character.
        size_t at = e.byte > 0 ? e.byte - 1 : 0;
        std::string what = e.what();
        size_t colon = what.rfind(": ");
        *error = sourceName + ": " + lineColumn(text, at) + ": malformed JSON (" +
                 (colon == std::string::npos ? what : what.substr(colon + 2)) + ")";
        return false;
    }
    return _validate(sourceName, error);
}

bool Profile::_validate(const std::string &source, std::string *error) {
    Checker c{source, &_warnings, ""};
    if (!c.object(_json, "(top level)")) {
        *error = c.error;
        return false;
    }
    std::map<std::string, std::function<bool(const Json &)>> known = {
        {"description", c.isString("description")},
        {"system_info",
         [&c](const Json &v) {
             return c.fields(
                 v, "system_info",
                 {{"platform",
                   [&c](const Json &p) { return c.scalarMap(p, "system_info.platform"); }},
                  {"vendor",
                   [&c](const Json &p) { return c.scalarMap(p, "system_info.vendor"); }}});
         }},
        {"settings",
         [&c](const Json &v) {
             if (!c.scalarMap(v, "settings"))
                 return false;
             for (auto &entry : v.items())
                 if (!SettingsStore::validKey(entry.key()))
                     return c.fail("settings." + entry.key(), "a settings key path", entry.key());
             return true;
         }},
        {"storage",
         [&c](const Json &v) {
             return c.fields(v, "storage",
                             {{"block_size", c.isCount("storage.block_size")},
                              {"total_blocks", c.isCount("storage.total_blocks")},
                              {"available_blocks", c.isCount("storage.available_blocks")}});
         }},
        {"policy",
         [&c](const Json &v) {
             return c.fields(v, "policy",
                             {{"service", c.isBool("policy.service")},
                              {"allow_usb_debugging", c.isInt("policy.allow_usb_debugging")},
                              {"change_allowed", c.isBool("policy.change_allowed")}});
         }},
        {"preferences", [&c](const Json &v) { return c.scalarMap(v, "preferences"); }},
        {"media",
         [&c](const Json &v) {
             if (!c.object(v, "media"))
                 return false;
             for (auto &entry : v.items())
                 if (!c.scalarMap(entry.value(), "media." + entry.key()))
                     return false;
             return true;
         }},
        {"faults",
         [&c](const Json &v) {
             if (!v.is_array())
                 return c.fail("faults", "an array", v);
             for (size_t i = 0; i < v.size(); ++i) {
                 std::string path = "faults[" + std::to_string(i) + "]";
                 if (!c.fields(v[i], path,
                               {{"call", c.isString(path + ".call")},
                                {"key", c.isString(path + ".key")},
                                {"code", c.isInt(path + ".code")}}))
                     return false;
                 if (!v[i].contains("call"))
                     return c.fail(path + ".call", "a string (the failing call)", Json());
                 if (!v[i].contains("code"))
                     return c.fail(path + ".code", "an integer (the error code)", Json());
             }
             return true;
         }},
    };
    for (const char *section : kOpenSections)
        known[section] = [&c, section](const Json &v) { return c.object(v, section); };
    if (!c.fields(_json, "(top level)", known)) {
        *error = c.error;
        return false;
    }
    return true;
}

std::string Profile::description() const {
    auto it = _json.find("description");
    return it != _json.end() && it->is_string() ? it->get<std::string>() : "";
}

bool Profile::seed(const std::string &stateDir, std::string *error) const {
    if (!makeDirs(stateDir, error))
        return false;
    SettingsStore store(stateDir);
    auto settings = _json.find("settings");
    if (settings != _json.end()) {
        for (auto &entry : settings->items()) {
            const Json &v = entry.value();
            SettingValue value;
            if (v.is_boolean())
                value = SettingValue::ofBool(v.get<bool>());
            else if (v.is_number_integer())
                value = SettingValue::ofInt(v.get<int>());
            else if (v.is_number())
                value = SettingValue::ofDouble(v.get<double>());
            else
                value = SettingValue::ofString(v.get<std::string>());
            std::string reason;
            if (store.write(entry.key(), value, &reason) != SettingsStore::Ok) {
                *error = "settings." + entry.key() + ": " + reason;
                return false;
            }
        }
    }
    // Written last: its presence marks a seeded state directory.
    return writeFileAtomic(stateDir + "/profile.json", _json.dump(2) + "\n", error);
}

std::string Profile::resolve(const std::string &nameOrPath, const std::string &dir) {
    struct stat st;
    if (nameOrPath.find('/') != std::string::npos ||
        (nameOrPath.size() > 5 && nameOrPath.compare(nameOrPath.size() - 5, 5, ".json") == 0))
        return nameOrPath;
    std::string candidate = dir + "/" + nameOrPath + ".json";
    return stat(candidate.c_str(), &st) == 0 ? candidate : "";
}

}  // namespace sim
