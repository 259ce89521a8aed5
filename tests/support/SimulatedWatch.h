#ifndef QUILLSET_TESTS_SIMULATED_WATCH_H
#define QUILLSET_TESTS_SIMULATED_WATCH_H

#include <nlohmann/json.hpp>

#include <functional>
#include <string>
#include <vector>

// A simulated watch for end-to-end tests: its own state directory, brought up by quillset-sim
// for each driver script, and inspected afterwards with quillset-sim's own commands.
class SimulatedWatch {
public:
    // profile is a shipped profile name or a JSON text (written to a file of the watch).
    explicit SimulatedWatch(const std::string &profile);
    ~SimulatedWatch();

    struct Result {
        int status = -1;
        std::vector<nlohmann::json> dumps;
        std::string errors;  // the driver's and the platform's stderr
    };

    // Runs the driver with the script on the watch (a fresh start of the application);
    // driverEnv ("NAME=value ...") is added to the driver's environment inside the watch.
    Result drive(const std::string &script, const std::string &driverEnv = "");
    // Runs quillset-sim with args against this watch; returns its stdout.
    std::string sim(const std::string &args, int *status = nullptr);
    std::vector<nlohmann::json> usage();
    std::vector<nlohmann::json> launches();
    std::string platformLog();
    const std::string &stateDir() const { return _state; }
    // Seeds the state directory from the profile, as the watch's first start would, so that a
    // test can change it before the application runs; a failure fails the calling test.
    void seed();

    static std::string binDir();

private:
    std::string _profile;
    std::string _state;
};

// The whole file, or "" when it cannot be read.
std::string readFile(const std::string &path);
// A shipped device profile, changed by edit, as JSON text for a watch of its own.
std::string profileWith(const std::string &name, const std::function<void(nlohmann::json &)> &edit);

// Texts of a dump's rows, "elm.text" only, in list order.
std::vector<std::string> rowLabels(const nlohmann::json &dump);
// The row whose label is text, or null.
nlohmann::json rowWithLabel(const nlohmann::json &dump, const std::string &label);
// The value text of the row whose label is text, or "(no row LABEL)".
std::string rowValue(const nlohmann::json &dump, const std::string &label);

#endif
