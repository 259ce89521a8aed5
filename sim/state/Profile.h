#ifndef QUILLSET_SIM_PROFILE_H
#define QUILLSET_SIM_PROFILE_H

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace sim {

// A device profile: the JSON description of one simulated watch.
class Profile {
public:
    // Loads and checks a profile. Errors name the file and the place (line and column for
    // malformed JSON, the key path and the expected type for a wrong value); unknown keys are
    // warnings.
    bool load(const std::string &path, std::string *error);
    bool parse(const std::string &text, const std::string &sourceName, std::string *error);

    const nlohmann::json &json() const { return _json; }
    const std::vector<std::string> &warnings() const { return _warnings; }
    std::string description() const;

    // Writes profile.json and the initial settings into an empty state directory.
    bool seed(const std::string &stateDir, std::string *error) const;

    // Finds a profile by name in dir (NAME.json) or takes NAME as a file path.
    static std::string resolve(const std::string &nameOrPath, const std::string &dir);

private:
    bool _validate(const std::string &source, std::string *error);

    nlohmann::json _json;
    std::vector<std::string> _warnings;
};

}  // namespace sim

#endif
