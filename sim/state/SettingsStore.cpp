#include "SettingsStore.h"

#include <unistd.h>

#include <cerrno>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "StatePaths.h"

namespace sim {

namespace {

// Strict decimal: an optional minus sign and digits, nothing around them.
bool parseInt(const std::string &text, int *out) {
    size_t start = !text.empty() && text[0] == '-' ? 1 : 0;
    if (text.size() == start || text.size() > 12)
        return false;
    for (size_t k = start; k < text.size(); ++k)
        if (text[k] < '0' || text[k] > '9')
            return false;
    long long v = strtoll(text.c_str(), nullptr, 10);
    if (v < INT32_MIN || v > INT32_MAX)
        return false;
    *out = static_cast<int>(v);
    return true;
}

bool parseDouble(const std::string &text, double *out) {
    // strtod also takes leading blanks, hex and "inf"; a value file holds none of those.
    if (text.empty() || isspace(static_cast<unsigned char>(text[0])) ||
        text.find_first_of("xXpP") != std::string::npos)
        return false;
    char *end = nullptr;
    errno = 0;
    double v = strtod(text.c_str(), &end);
    // strtod stops at a NUL byte: a file zero-filled after a crash is not the number before it.
    if (end == text.c_str() || end != text.c_str() + text.size() || !std::isfinite(v) ||
        (errno == ERANGE && v != 0))
        return false;
    *out = v;
    return true;
}

}  // namespace

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
    switch (type) {
        case Bool:
            return b ? "true" : "false";
        case Int:
            return std::to_string(i);
        case Double: {
            char buffer[64];
            // Whole numbers read best without an exponent; others in their shortest exact form.
            if (std::fabs(d) < 1e15 && d == std::floor(d)) {
                snprintf(buffer, sizeof(buffer), "%.0f", d);
                return buffer;
            }
            for (int precision = 1; precision <= 17; ++precision) {
                snprintf(buffer, sizeof(buffer), "%.*g", precision, d);
                if (strtod(buffer, nullptr) == d)
                    break;
            }
            return buffer;
        }
        case String:
            return s;
        default:
            return "";
    }
}

bool SettingValue::parse(const std::string &type, const std::string &text, SettingValue *out,
                         std::string *error) {
    if (type == "bool") {
        if (text == "true" || text == "1") {
            *out = ofBool(true);
        } else if (text == "false" || text == "0") {
            *out = ofBool(false);
        } else {
            *error = "a bool is true or false (or 1 or 0), not '" + text + "'";
            return false;
        }
        return true;
    }
    if (type == "int") {
        int v;
        if (!parseInt(text, &v)) {
            *error = "an int is a 32-bit decimal integer, not '" + text + "'";
            return false;
        }
        *out = ofInt(v);
        return true;
    }
    if (type == "double") {
        double v;
        if (!parseDouble(text, &v)) {
            *error = "a double is a finite decimal number, not '" + text + "'";
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

bool SettingValue::operator==(const SettingValue &other) const {
    if (type != other.type)
        return false;
    switch (type) {
        case Bool:
            return b == other.b;
        case Int:
            return i == other.i;
        case Double:
            return d == other.d;
        case String:
            return s == other.s;
        default:
            return true;
    }
}

SettingsStore::SettingsStore(const std::string &stateDir) : _root(stateDir + "/settings") {}

bool SettingsStore::validKey(const std::string &key) {
    if (key.empty() || key.size() > 255 || key[0] == '/' || key.back() == '/')
        return false;
    for (char c : key)
        if (static_cast<unsigned char>(c) < 0x20 || c == 0x7f)
            return false;
    size_t start = 0;
    for (;;) {
        size_t slash = key.find('/', start);
        std::string part = key.substr(start, slash == std::string::npos ? slash : slash - start);
        if (part.empty() || part == "." || part == ".." ||
            part.find(kTempMarker) != std::string::npos)
            return false;
        if (slash == std::string::npos)
            return true;
        start = slash + 1;
    }
}

std::string SettingsStore::pathOf(const std::string &key) const {
    return _root + "/" + key;
}

std::string SettingsStore::keyOf(const std::string &path) const {
    if (path.size() <= _root.size() + 1 || path.compare(0, _root.size(), _root) != 0 ||
        path[_root.size()] != '/')
        return "";
    std::string key = path.substr(_root.size() + 1);
    return validKey(key) ? key : "";
}

std::string SettingsStore::encode(const SettingValue &value) {
    std::string text;
    switch (value.type) {
        case SettingValue::Bool:
            text = value.b ? "1" : "0";
            break;
        case SettingValue::Double: {
            char buffer[64];
            snprintf(buffer, sizeof(buffer), "%.17g", value.d);
            text = buffer;
            break;
        }
        default:
            text = value.text();
    }
    return std::string(SettingValue::typeName(value.type)) + ":" + text;
}

bool SettingsStore::decode(const std::string &content, SettingValue *value, std::string *error) {
    size_t colon = content.find(':');
    if (colon == std::string::npos) {
        *error = content.empty() ? "empty file" : "no '<type>:' prefix";
        return false;
    }
    std::string type = content.substr(0, colon);
    std::string text = content.substr(colon + 1);
    // A hand-edited file usually ends with a newline; it is not part of a number.
    if (type != "string" && !text.empty() && text.back() == '\n')
        text.pop_back();
    SettingValue decoded;
    if (type == "bool") {
        if (text != "0" && text != "1") {
            *error = "bool value '" + text + "' is neither 0 nor 1";
            return false;
        }
        decoded = SettingValue::ofBool(text == "1");
    } else if (type == "int" || type == "double" || type == "string") {
        if (!SettingValue::parse(type, text, &decoded, error))
            return false;
    } else {
        *error = "unknown type '" + type + "'";
        return false;
    }
    *value = decoded;
    return true;
}

SettingsStore::Result SettingsStore::read(const std::string &key, SettingValue *value,
                                          std::string *error) const {
    if (!validKey(key)) {
        *error = "invalid key '" + key + "'";
        return BadKey;
    }
    std::string content;
    int err = 0;
    if (!readFile(pathOf(key), &content, error, &err)) {
        // A directory is a group of keys, not a value.
        return err == ENOENT || err == ENOTDIR || err == EISDIR ? Missing : IoError;
    }
    std::string reason;
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
    if (value.type == SettingValue::None) {
        *error = key + ": a value needs a type";
        return BadKey;
    }
    std::string path = pathOf(key);
    if (isDirectory(path)) {
        *error = key + ": is a group of keys (" + path + " is a directory)";
        return IoError;
    }
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
        int err = errno;
        *error = sysError("unlink", pathOf(key), err);
        return err == ENOENT || err == ENOTDIR ? Missing : IoError;
    }
    return Ok;
}

}  // namespace sim
