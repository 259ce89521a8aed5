#ifndef QUILLSET_SIM_SETTINGS_STORE_H
#define QUILLSET_SIM_SETTINGS_STORE_H

#include <string>

namespace sim {

// One typed value.
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

    static const char *typeName(Type type);
    // "true", "42", "1.5" or the string itself.
    std::string text() const;
    // Parses a value of the named type ("bool", "int", "double", "string") from text.
    static bool parse(const std::string &type, const std::string &text, SettingValue *out,
                      std::string *error);
};

// The settings store of the simulated watch: one file per key under <state>/settings/, holding
// "<type>:<value>". Writes are atomic; a file that does not parse is a failed read.
class SettingsStore {
public:
    explicit SettingsStore(std::string stateDir);

    enum Result { Ok, Missing, Corrupt, IoError, BadKey };

    Result read(const std::string &key, SettingValue *value, std::string *error) const;
    Result write(const std::string &key, const SettingValue &value, std::string *error) const;
    Result remove(const std::string &key, std::string *error) const;

    // The file that holds a key (whether or not it exists).
    std::string pathOf(const std::string &key) const;
    std::string root() const { return _root; }
    static bool validKey(const std::string &key);
    static bool decode(const std::string &content, SettingValue *value, std::string *error);
    static std::string encode(const SettingValue &value);

private:
    std::string _root;
};

}  // namespace sim

#endif
