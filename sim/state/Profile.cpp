#include "Profile.h"

#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <map>

#include "SettingsStore.h"
#include "StatePaths.h"

namespace sim {

using Json = nlohmann::json;

namespace {

// The eSIM service's list counts its profiles in a byte.
const size_t kEsimProfilesMax = 255;

// Far more than any watch needs; a bigger file is not a profile.
const long long kMaxProfileBytes = 4 * 1024 * 1024;
const int kMaxNesting = 64;

// Where the text's arrays and objects first nest deeper than limit, or npos.
size_t deeperThan(const std::string &text, int limit) {
    int depth = 0;
    bool inString = false;
    for (size_t i = 0; i < text.size(); ++i) {
        char c = text[i];
        if (inString) {
            if (c == '\\')
                ++i;
            else if (c == '"')
                inString = false;
        } else if (c == '"') {
            inString = true;
        } else if (c == '[' || c == '{') {
            if (++depth > limit)
                return i;
        } else if (c == ']' || c == '}') {
            --depth;
        }
    }
    return std::string::npos;
}

// Checks a profile's JSON against what the watch's parts read, keeping the first error and
// every warning. Paths read like the JSON: storage.block_size, settings["db/x/y"], faults[0].
class Checker {
public:
    using Rule = std::function<bool(const Json &, const std::string &path)>;

    Checker(std::string source, std::vector<std::string> *warnings)
        : _source(std::move(source)), _warnings(warnings) {}

    const std::string &error() const { return _error; }

    static std::string child(const std::string &path, const std::string &key) {
        bool plain = !key.empty() && std::all_of(key.begin(), key.end(), [](char c) {
            return isalnum(static_cast<unsigned char>(c)) || c == '_';
        });
        if (plain)
            return path.empty() ? key : path + "." + key;
        return (path.empty() ? "" : path) + "[" + Json(key).dump() + "]";
    }

    // The first error is the one reported; checking goes on for the warnings after it.
    bool failWith(const std::string &path, const std::string &what) {
        if (_error.empty())
            _error = _source + ": " + (path.empty() ? "(top level)" : path) + ": " + what;
        return false;
    }

    bool fail(const std::string &path, const std::string &expected, const Json &value) {
        return failWith(path, "expected " + expected + ", found " + describe(value));
    }

    bool failMissing(const std::string &path, const std::string &expected) {
        return failWith(path, "missing (expected " + expected + ")");
    }

    void warn(const std::string &path, const std::string &what) {
        _warnings->push_back(_source + ": " + path + ": " + what);
    }

    // An object whose known keys follow their rules; other keys are warned about, those after
    // a wrong value too.
    bool fields(const Json &value, const std::string &path,
                const std::map<std::string, Rule> &known) {
        if (!value.is_object())
            return fail(path, "an object", value);
        bool ok = true;
        for (auto &entry : value.items()) {
            std::string at = child(path, entry.key());
            auto rule = known.find(entry.key());
            if (rule == known.end())
                warn(at, "unknown key (ignored)");
            else if (!rule->second(entry.value(), at))
                ok = false;
        }
        return ok;
    }

    // An object of any keys whose values all follow one rule.
    Rule mapOf(Rule each) {
        return [this, each](const Json &v, const std::string &path) {
            if (!v.is_object())
                return fail(path, "an object", v);
            for (auto &entry : v.items())
                if (!each(entry.value(), child(path, entry.key())))
                    return false;
            return true;
        };
    }

    Rule arrayOf(Rule each, size_t maxSize = SIZE_MAX) {
        return [this, each, maxSize](const Json &v, const std::string &path) {
            if (!v.is_array())
                return fail(path, "an array", v);
            if (v.size() > maxSize)
                return failWith(path, "expected at most " + std::to_string(maxSize) +
                                          " entries, found " + std::to_string(v.size()));
            for (size_t k = 0; k < v.size(); ++k)
                if (!each(v[k], path + "[" + std::to_string(k) + "]"))
                    return false;
            return true;
        };
    }

    Rule anyObject() {
        return [this](const Json &v, const std::string &path) {
            return v.is_object() || fail(path, "an object", v);
        };
    }

    Rule boolean() {
        return [this](const Json &v, const std::string &path) {
            return v.is_boolean() || fail(path, "a boolean (true or false)", v);
        };
    }

    Rule string(bool allowEmpty = true) {
        return [this, allowEmpty](const Json &v, const std::string &path) {
            if (!v.is_string() || (!allowEmpty && v.get<std::string>().empty()))
                return fail(path, allowEmpty ? "a string" : "a non-empty string", v);
            return true;
        };
    }

    Rule integer(long long min = INT32_MIN, long long max = INT32_MAX) {
        return [this, min, max](const Json &v, const std::string &path) {
            bool ok = false;
            // The parser keeps non-negative integers unsigned, which may not fit a long long.
            if (v.is_number_unsigned()) {
                unsigned long long u = v.get<unsigned long long>();
                ok = u <= static_cast<unsigned long long>(max) &&
                     (min <= 0 || u >= static_cast<unsigned long long>(min));
            } else if (v.is_number_integer()) {
                ok = v.get<long long>() >= min && v.get<long long>() <= max;
            }
            if (ok)
                return true;
            std::string expected;
            if (min == INT32_MIN && max == INT32_MAX)
                expected = "a 32-bit integer";
            else if (max == INT64_MAX)
                expected = min == 0 ? "a non-negative integer" : "a positive integer";
            else
                expected = "an integer from " + std::to_string(min) + " to " + std::to_string(max);
            return fail(path, expected, v);
        };
    }

    Rule scalar() {
        return [this](const Json &v, const std::string &path) {
            return v.is_boolean() || v.is_number() || v.is_string() ||
                   fail(path, "a boolean, number or string", v);
        };
    }

    // Setting types come from the JSON type; an int setting is 32 bits.
    Rule setting() {
        return [this](const Json &v, const std::string &path) {
            if (v.is_number_integer())
                return integer()(v, path);
            return v.is_boolean() || v.is_number_float() || v.is_string() ||
                   fail(path, "a boolean, integer, number with a fraction or string", v);
        };
    }

private:
    static std::string describe(const Json &value) {
        std::string text = value.dump();
        if (text.size() > 40)
            text = text.substr(0, 37) + "...";
        return std::string(value.type_name()) + " " + text;
    }

    std::string _source;
    std::vector<std::string> *_warnings;
    std::string _error;
};

// Sections read by parts of the watch that check their own contents.
const char *const kOpenSections[] = {"battery", "ringtone"};

bool validate(const Json &json, const std::string &source, std::vector<std::string> *warnings,
              std::string *error) {
    Checker c(source, warnings);
    const long long kCountMax = INT64_MAX;
    std::map<std::string, Checker::Rule> known = {
        {"description", c.string()},
        {"system_info",
         [&c](const Json &v, const std::string &path) {
             return c.fields(v, path,
                             {{"platform", c.mapOf(c.scalar())}, {"vendor", c.mapOf(c.scalar())}});
         }},
        {"settings",
         [&c](const Json &v, const std::string &path) {
             if (!c.mapOf(c.setting())(v, path))
                 return false;
             for (auto &entry : v.items())
                 if (!SettingsStore::validKey(entry.key()))
                     return c.fail(Checker::child(path, entry.key()),
                                   "a settings key (a relative path such as db/setting/x)",
                                   Json(entry.key()));
             return true;
         }},
        {"storage",
         [&c, kCountMax](const Json &v, const std::string &path) {
             if (!c.fields(v, path,
                           {{"block_size", c.integer(1, kCountMax)},
                            {"total_blocks", c.integer(0, kCountMax)},
                            {"available_blocks", c.integer(0, kCountMax)},
                            {"free_blocks", c.integer(0, kCountMax)},
                            {"fragment_size", c.integer(1, kCountMax)}}))
                 return false;
             if (v.contains("total_blocks") && v.contains("available_blocks") &&
                 v["available_blocks"].get<long long>() > v["total_blocks"].get<long long>())
                 return c.fail(path + ".available_blocks",
                               "at most total_blocks (" + v["total_blocks"].dump() + ")",
                               v["available_blocks"]);
             return true;
         }},
        {"policy",
         [&c](const Json &v, const std::string &path) {
             return c.fields(v, path,
                             {{"service", c.boolean()},
                              {"allow_usb_debugging", c.integer()},
                              {"change_allowed", c.boolean()}});
         }},
        // Installed packages by id: {"com.x.y": {"version": "1.0", "label": "Y"}}.
        {"packages", c.mapOf([&c](const Json &v, const std::string &path) {
             return c.fields(v, path, {{"version", c.string()}, {"label", c.string()}});
         })},
        // The modem: identifiers, versions and the VoLTE property.
        {"telephony",
         [&c](const Json &v, const std::string &path) {
             return c.fields(v, path,
                             {{"modem", c.boolean()},
                              {"misc_version", c.boolean()},
                              {"misc_sn", c.boolean()},
                              {"sw_version", c.string()},
                              {"hw_version", c.string()},
                              {"prl_version", c.string()},
                              {"eri_version", c.string()},
                              {"esn", c.string()},
                              {"meid", c.string()},
                              {"imei", c.string()},
                              {"imei_sv", c.string()},
                              {"volte_enable", c.integer()}});
         }},
        // The SIM: its number ("" none, null a reply without data) and ICCID.
        {"sim",
         [&c](const Json &v, const std::string &path) {
             return c.fields(v, path,
                             {{"msisdn",
                               [&c](const Json &n, const std::string &at) {
                                   return n.is_null() || n.is_string() ||
                                          c.fail(at, "a string or null", n);
                               }},
                              {"iccid", c.string()},
                              // The count the MSISDN list announces, when it lies.
                              {"msisdn_count", c.integer()}});
         }},
        {"esim",
         [&c](const Json &v, const std::string &path) {
             return c.fields(v, path,
                             {{"eid", c.string()},
                              {"profiles", c.arrayOf(
                                               [&c](const Json &e, const std::string &at) {
                                                   return c.fields(e, at,
                                                                   {{"name", c.string()},
                                                                    {"kind", c.integer()},
                                                                    {"state", c.integer()}});
                                               },
                                               kEsimProfilesMax)},
                              {"profile_list_result", c.integer()},
                              {"eid_result", c.integer()}});
         }},
        {"bluetooth",
         [&c](const Json &v, const std::string &path) {
             return c.fields(v, path, {{"address", c.string()}});
         }},
        {"wifi",
         [&c](const Json &v, const std::string &path) {
             return c.fields(v, path, {{"mac_address", c.string()}});
         }},
        // The device daemon: absent, or answering GetNum with the serial text, maybe late.
        {"deviced",
         [&c, kCountMax](const Json &v, const std::string &path) {
             return c.fields(v, path,
                             {{"present", c.boolean()},
                              {"serial", c.string()},
                              {"reply_delay_ms", c.integer(0, kCountMax)},
                              {"wrong_types", c.boolean()}});
         }},
        // Carrier configuration: boolean features by number, the approval version.
        {"csc",
         [&c](const Json &v, const std::string &path) {
             if (!c.fields(v, path,
                           {{"features", c.mapOf(c.boolean())}, {"approval_version", c.string()}}))
                 return false;
             if (v.contains("features"))
                 for (auto &entry : v["features"].items())
                     if (entry.key().empty() ||
                         entry.key().find_first_not_of("0123456789") != std::string::npos)
                         return c.fail(Checker::child(path + ".features", entry.key()),
                                       "a feature number as key", Json(entry.key()));
             return true;
         }},
        // Delays of asynchronous replies, in milliseconds.
        {"latency", c.mapOf(c.integer(0, kCountMax))},
        {"preferences", c.mapOf(c.scalar())},
        {"media", c.mapOf(c.mapOf(c.scalar()))},
        {"faults", c.arrayOf([&c](const Json &v, const std::string &path) {
             if (!c.fields(v, path,
                           {{"call", c.string(false)}, {"key", c.string()}, {"code", c.integer()}}))
                 return false;
             if (!v.contains("call"))
                 return c.failMissing(path + ".call", "the failing call's C function name");
             if (!v.contains("code"))
                 return c.failMissing(path + ".code", "the error code it returns");
             return true;
         })},
    };
    for (const char *section : kOpenSections)
        known[section] = c.anyObject();
    if (!c.fields(json, "", known)) {
        *error = c.error();
        return false;
    }
    // An empty file or one of another kind is more likely a mistake than a watch with nothing.
    for (auto &entry : json.items())
        if (entry.key() != "description" && known.count(entry.key()))
            return true;
    *error = source +
             ": (top level): describes no part of a watch (expected at least one "
             "section, such as system_info or settings)";
    return false;
}

// Line and column (both from 1) of a byte offset.
std::string lineColumn(const std::string &text, size_t byte) {
    size_t line = 1, column = 1;
    for (size_t k = 0; k < byte && k < text.size(); ++k) {
        if (text[k] == '\n') {
            ++line;
            column = 1;
        } else {
            ++column;
        }
    }
    return "line " + std::to_string(line) + ", column " + std::to_string(column);
}

// The parser's own explanation, without its exception id and position.
std::string parseReason(const std::string &what) {
    size_t column = what.find(", column ");
    if (column == std::string::npos) {
        size_t id = what.find("] ");
        return id == std::string::npos ? what : what.substr(id + 2);
    }
    size_t colon = what.find(": ", column);
    return colon == std::string::npos ? what : what.substr(colon + 2);
}

// Reads a text as JSON without keeping it, to learn where and why it is not JSON the parser
// takes. Unlike the parser's exceptions, this hears of every failure with its position,
// numbers too large for a double included.
class JsonProbe : public nlohmann::json_sax<Json> {
public:
    bool null() override { return true; }
    bool boolean(bool) override { return true; }
    bool number_integer(number_integer_t) override { return true; }
    bool number_unsigned(number_unsigned_t) override { return true; }
    bool number_float(number_float_t, const string_t &) override { return true; }
    bool string(string_t &) override { return true; }
    bool binary(binary_t &) override { return true; }
    bool start_object(std::size_t) override { return true; }
    bool key(string_t &) override { return true; }
    bool end_object() override { return true; }
    bool start_array(std::size_t) override { return true; }
    bool end_array() override { return true; }
    bool parse_error(std::size_t position, const std::string &token,
                     const nlohmann::detail::exception &error) override {
        // A syntax error is reported just past the character that broke the parse; a value
        // out of range just past the whole value.
        bool range = dynamic_cast<const Json::out_of_range *>(&error) != nullptr;
        size_t back = range ? token.size() : 1;
        _at = position >= back ? position - back : 0;
        _reason = parseReason(error.what());
        _failed = true;
        return false;
    }

    bool failed() const { return _failed; }
    size_t at() const { return _at; }
    const std::string &reason() const { return _reason; }

private:
    bool _failed = false;
    size_t _at = 0;
    std::string _reason;
};

}  // namespace

bool Profile::load(const std::string &path, std::string *error) {
    // A device, a pipe or a huge file is not a profile; reading one would never end or take
    // all memory.
    struct stat st;
    if (stat(path.c_str(), &st) == 0 && !S_ISREG(st.st_mode)) {
        *error = path + ": not a regular file";
        return false;
    }
    if (stat(path.c_str(), &st) == 0 && st.st_size > kMaxProfileBytes) {
        *error = path + ": " + std::to_string(st.st_size) + " bytes; a profile holds at most " +
                 std::to_string(kMaxProfileBytes);
        return false;
    }
    std::string text;
    if (!readFile(path, &text, error))
        return false;
    return parse(text, path, error);
}

bool Profile::parse(const std::string &text, const std::string &sourceName, std::string *error) {
    _warnings.clear();
    // The JSON library parses and frees nested values recursively: a hostile file nested deep
    // enough would overflow the stack. A watch's description needs a handful of levels.
    size_t tooDeep = deeperThan(text, kMaxNesting);
    if (tooDeep != std::string::npos) {
        *error = sourceName + ": " + lineColumn(text, tooDeep) + ": nested more than " +
                 std::to_string(kMaxNesting) + " levels deep";
        return false;
    }
    JsonProbe probe;
    Json::sax_parse(text, &probe);
    if (probe.failed()) {
        *error = sourceName + ": " + lineColumn(text, probe.at()) + ": malformed JSON (" +
                 probe.reason() + ")";
        return false;
    }
    Json parsed;
    try {
        parsed = Json::parse(text);
    } catch (const Json::exception &e) {
        *error = sourceName + ": malformed JSON (" + parseReason(e.what()) + ")";
        return false;
    }
    std::vector<std::string> warnings;
    bool valid = validate(parsed, sourceName, &warnings, error);
    _warnings = std::move(warnings);
    if (valid)
        _json = std::move(parsed);
    return valid;
}

std::string Profile::description() const {
    auto it = _json.find("description");
    return it != _json.end() && it->is_string() ? it->get<std::string>() : "";
}

bool Profile::seed(const std::string &stateDir, std::string *error) const {
    SettingsStore store(stateDir);
    if (!makeDirs(store.root(), error))
        return false;
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
                *error = "seeding settings[\"" + entry.key() + "\"]: " + reason;
                return false;
            }
        }
    }
    return writeFileAtomic(stateDir + "/profile.json", _json.dump(2) + "\n", error);
}

std::string Profile::resolve(const std::string &nameOrPath, const std::string &dir) {
    if (nameOrPath.empty())
        return "";
    if (nameOrPath.find('/') != std::string::npos ||
        (nameOrPath.size() > 5 && nameOrPath.compare(nameOrPath.size() - 5, 5, ".json") == 0))
        return nameOrPath;
    std::string candidate = dir + "/" + nameOrPath + ".json";
    return fileExists(candidate) ? candidate : "";
}

std::vector<std::string> Profile::names(const std::string &dir) {
    std::vector<std::string> names;
    DIR *d = opendir(dir.c_str());
    if (!d)
        return names;
    while (struct dirent *entry = readdir(d)) {
        std::string name = entry->d_name;
        if (name.size() > 5 && name[0] != '.' && name.compare(name.size() - 5, 5, ".json") == 0)
            names.push_back(name.substr(0, name.size() - 5));
    }
    closedir(d);
    std::sort(names.begin(), names.end());
    return names;
}

bool Profile::fault(const nlohmann::json &profile, const char *call, const char *key, int *code) {
    auto faults = profile.find("faults");
    if (!profile.is_object() || faults == profile.end() || !faults->is_array() || !call)
        return false;
    for (const auto &entry : *faults) {
        if (!entry.is_object() || entry.value("call", "") != call)
            continue;
        if (entry.contains("key") && (!key || entry.value("key", "") != key))
            continue;
        if (code)
            *code = entry.value("code", -1);
        return true;
    }
    return false;
}

}  // namespace sim
