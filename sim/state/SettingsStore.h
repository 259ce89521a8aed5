#ifndef QUILLSET_SIM_SETTINGS_STORE_H
#define QUILLSET_SIM_SETTINGS_STORE_H

#include <string>

namespace sim {

// One typed settings value.
struct SettingValue {
    enum Type { None, Bool, Int, Double, String };
    Type type = None;
    bool b = false;
    int i = 0;
    double d = 0;
    std::string s;

    static SettingValue ofBool(bool v);
    static SettingValue ofInt(int v);
    static SettingValue ofDouble(double v);
    static SettingValue ofString(const std::string &v);

    // "bool", "int", "double", "string" ("none" for None).
    static const char *typeName(Type type);
    // For people: "true", "42", "1.5" (shortest form that reads back the same) or the string.
    std::string text() const;
    // Parses a value of the named type ("bool", "int", "double", "string") as a person types
    // it: bool is true/false/1/0, int a 32-bit decimal, double a finite number.
    static bool parse(const std::string &type, const std::string &text, SettingValue *out,
                      std::string *error);

    bool operator==(const SettingValue &other) const;
    bool operator!=(const SettingValue &other) const { return !(*this == other); }
};

// The settings store of the simulated watch: one file per key under <state>/settings/, the
// key's slashes being directories, holding "<type>:<value>" (bool 0/1, int decimal, double
// %.17g, string raw bytes to the end of the file). Writes are atomic; a file that does not
// parse is a failed read with the reason, never a crash.
class SettingsStore {
public:
    explicit SettingsStore(const std::string &stateDir);

    enum Result { Ok, Missing, Corrupt, IoError, BadKey };

    // value is left alone unless the result is Ok; error receives the reason otherwise.
    Result read(const std::string &key, SettingValue *value, std::string *error) const;
    Result write(const std::string &key, const SettingValue &value, std::string *error) const;
    Result remove(const std::string &key, std::string *error) const;

    // The file that holds a key (whether or not it exists).
    std::string pathOf(const std::string &key) const;
    // The key a file of the store holds, or "" for a path outside the store or a temporary file.
    std::string keyOf(const std::string &path) const;
    const std::string &root() const { return _root; }

    // Keys are relative paths of plain names: no empty, "." or ".." parts, no control
    // characters, nothing that looks like a temporary file.
    static bool validKey(const std::string &key);
    static bool decode(const std::string &content, SettingValue *value, std::string *error);
    static std::string encode(const SettingValue &value);

private:
    std::string _root;
};

}  // namespace sim

#endif
