#include "SettingsStore.h"

#include <unistd.h>

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "StatePaths.h"

namespace sim {

SettingValue SettingValue::ofBool(bool v) {
    SettingValue value;
    value.type = Bool;
    value.b = v;
    return value;
}

SettingValue SettingValue::ofInt(int v) {
    SettingValue value;
    value.type = Int;
    value.i = v;
    return value;
}

SettingValue SettingValue::ofDouble(double v) {
    SettingValue value;
    value.type = Double;
    value.d = v;
    return value;
}

SettingValue SettingValue::ofString(const std::string &v) {
    SettingValue value;
    value.type = String;
    value.s = v;
    return value;
}

const char *SettingValue::typeName(Type type) {
    switch (type) {
        case Bool:
            return "bool";
        case Int:
            return "int";
        case Double:
            return "double";
        case String:
            return "string";
        default:
            return "none";
    }
}

std::string SettingValue::text() const {
    char buffer[64];
    switch (type) {
        case Bool:
            return b ? "true" : "false";
        case Int:
            return std::to_string(i);
        case Double:
            snprintf(buffer, sizeof(buffer), "%.17g", d);
            return buffer;
        case String:
            return s;
        default:
            return "";
    }
}

bool SettingValue::parse(const std::string &type, const std::string &text, SettingValue *out,
                         std::string *error) {
    char *end = nullptr;
    errno = 0;
    if (type == "bool") {
        if (text == "true" || text == "1")
            *out = ofBool(true);
        else if (text == "false" || text == "0")
            *out = ofBool(false);
        else {
            *error = "a bool is true or false, not '" + text + "'";
            return false;
        }
        return true;
    }
    if (type == "int") {
        long v = strtol(text.c_str(), &end, 10);
        if (text.empty() || *end || errno == ERANGE || v < INT32_MIN || v > INT32_MAX) {
            *error = "not a 32-bit integer: '" + text + "'";
            return false;
        }
        *out = ofInt(static_cast<int>(v));
        return true;
    }
    if (type == "double") {
        double v = strtod(text.c_str(), &end);
        if (text.empty() || *end || !std::isfinite(v)) {
            *error = "not a number: '" + text + "'";
            return false;
        }
        *out = ofDouble(v);
        return true;
    }
    if (type == "string") {
        *out = ofString(text);
        return true;
    }
    *error = "unknown type '" + type + "' (bool, int, double or string)";
    return false;
}

SettingsStore::SettingsStore(std::string stateDir) : _root(std::move(stateDir) + "/settings") {}

bool SettingsStore::validKey(const std::string &key) {
    if (key.empty() || key.size() > 255 || key[0] == '/' || key.back() == '/')
        return false;
    // Keys are paths of plain names: no empty, "." or ".." parts that could leave the store.
    size_t start = 0;
    while (start <= key.size()) {
        size_t slash = key.find('/', start);
        std::string part =
            key.substr(start, slash == std::string::npos ? std::string::npos : slash - start);
        if (part.empty() || part == "." || part == ".." || part.find(".tmp.") != std::string::npos)
            return false;
        if (slash == std::string::npos)
            break;
        start = slash + 1;
    }
    for (char c : key)
        if (static_cast<unsigned char>(c) < 0x20)
            return false;
    return true;
}

std::string SettingsStore::pathOf(const std::string &key) const {
    return _root + "/" + key;
}

std::string SettingsStore::encode(const SettingValue &value) {
    return std::string(SettingValue::typeName(value.type)) + ":" +
           (value.type == SettingValue::Bool ? (value.b ? "1" : "0") : value.text());
}

bool SettingsStore::decode(const std::string &content, SettingValue *value, std::string *error) {
    size_t colon = content.find(':');
    if (colon == std::string::npos) {
        *error = "no type prefix";
        return false;
    }
    std::string type = content.substr(0, colon);
    std::string text = content.substr(colon + 1);
    if (type == "bool" && text != "0" && text != "1") {
        *error = "bool value '" + text + "' is neither 0 nor 1";
        return false;
    }
    if (!SettingValue::parse(type, text, value, error))
        return false;
    return true;
}

SettingsStore::Result SettingsStore::read(const std::string &key, SettingValue *value,
                                          std::string *error) const {
    if (!validKey(key)) {
        *error = "invalid key '" + key + "'";
        return BadKey;
    }
    std::string content;
    std::string reason;
    if (!readFile(pathOf(key), &content, &reason)) {
        *error = reason;
        return errno == ENOENT || errno == ENOTDIR ? Missing : IoError;
    }
    if (!decode(content, value, &reason)) {
        *error = pathOf(key) + ": corrupt value (" + reason + ")";
        return Corrupt;
    }
    return Ok;
}

SettingsStore::Result SettingsStore::write(const std::string &key, const SettingValue &value,
                                           std::string *error) const {
    if (!validKey(key)) {
        *error = "invalid key '" + key + "'";
        return BadKey;
    }
    std::string path = pathOf(key);
    if (!makeDirs(path.substr(0, path.rfind('/')), error))
        return IoError;
    return writeFileAtomic(path, encode(value), error) ? Ok : IoError;
}

SettingsStore::Result SettingsStore::remove(const std::string &key, std::string *error) const {
    if (!validKey(key)) {
        *error = "invalid key '" + key + "'";
        return BadKey;
    }
    if (unlink(pathOf(key).c_str()) != 0) {
        *error = "unlink(" + pathOf(key) + "): " + strerror(errno);
        return errno == ENOENT ? Missing : IoError;
    }
    return Ok;
}

}  // namespace sim
