#ifndef QUILLSET_SIM_PROFILE_H
#define QUILLSET_SIM_PROFILE_H

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace sim {

// A device profile: the JSON description of one simulated watch (system information, initial
// settings, storage, device policy, faults...). See sim/profiles/default.json.
class Profile {
public:
    // Loads and checks a profile. Errors name the file and the place: line and column for
    // malformed JSON, the key path and the expected type for a wrong value. Unknown keys are
    // not errors; they are listed in warnings().
    bool load(const std::string &path, std::string *error);
    bool parse(const std::string &text, const std::string &sourceName, std::string *error);

    const nlohmann::json &json() const { return _json; }
    const std::vector<std::string> &warnings() const { return _warnings; }
    std::string description() const;

    // Writes the initial settings and profile.json into a state directory (created if
    // missing). profile.json is written last: its presence marks a seeded directory.
    bool seed(const std::string &stateDir, std::string *error) const;

    // A profile given by name is <dir>/NAME.json ("" when there is none); anything with a
    // slash or ending in ".json" is a file path.
    static std::string resolve(const std::string &nameOrPath, const std::string &dir);
    // The names of the profiles in dir, sorted.
    static std::vector<std::string> names(const std::string &dir);

    // True when the profile's "faults" make call (for any key, or for this key) fail; code
    // receives the error code to answer with (-1 when the entry gives none).
    static bool fault(const nlohmann::json &profile, const char *call, const char *key, int *code);

private:
    nlohmann::json _json = nlohmann::json::object();
    std::vector<std::string> _warnings;
};

}  // namespace sim

#endif
