#include "SimulatedWatch.h"

#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>

#include <gtest/gtest.h>

#include "Profile.h"
#include "StatePaths.h"

namespace {

std::string quote(const std::string &text) {
    std::string quoted = "'";
    for (char c : text)
        quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return quoted + "'";
}

std::vector<nlohmann::json> jsonLines(const std::string &text) {
    std::vector<nlohmann::json> rows;
    std::istringstream in(text);
    std::string line;
    while (std::getline(in, line)) {
        if (line.empty() || line[0] != '{')
            continue;
        nlohmann::json row = nlohmann::json::parse(line, nullptr, false);
        if (!row.is_discarded())
            rows.push_back(row);
    }
    return rows;
}

}  // namespace

std::string readFile(const std::string &path) {
    std::ifstream in(path, std::ios::binary);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

std::string profileWith(const std::string &name,
                        const std::function<void(nlohmann::json &)> &edit) {
    nlohmann::json profile = nlohmann::json::parse(
        readFile(SimulatedWatch::binDir() + "/../profiles/" + name + ".json"));
    edit(profile);
    return profile.dump();
}

std::string SimulatedWatch::binDir() {
    return sim::dataDir() + "/bin";
}

SimulatedWatch::SimulatedWatch(const std::string &profile) {
    char tmpl[] = "/tmp/quillset-e2e-XXXXXX";
    if (!mkdtemp(tmpl))
        abort();
    _state = tmpl;
    if (!profile.empty() && profile[0] == '{') {
        _profile = _state + "-profile.json";
        std::ofstream(_profile) << profile;
    } else {
        _profile = profile;
    }
}

SimulatedWatch::~SimulatedWatch() {
    std::string cmd = "rm -rf " + quote(_state) + " " + quote(_state + "-profile.json");
    if (system(cmd.c_str()) != 0)
        fprintf(stderr, "could not remove %s\n", _state.c_str());
}

SimulatedWatch::Result SimulatedWatch::drive(const std::string &script,
                                             const std::string &driverEnv) {
    std::string scriptPath = _state + "-script.txt";
    std::ofstream(scriptPath) << script;
    std::string out = _state + "-out.txt", err = _state + "-err.txt";
    // The watch keeps no bus in the environment of the test itself.
    std::string cmd = "env -u DBUS_SYSTEM_BUS_ADDRESS -u QUILLSET_STATE " +
                      quote(binDir() + "/quillset-sim") + " run --profile " + quote(_profile) +
                      " --state " + quote(_state) + " -- env " + driverEnv + " quillset-drive <" +
                      quote(scriptPath) + " >" + quote(out) + " 2>" + quote(err);
    Result result;
    int status = system(cmd.c_str());
    result.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    result.dumps = jsonLines(readFile(out));
    result.errors = readFile(err);
    unlink(scriptPath.c_str());
    unlink(out.c_str());
    unlink(err.c_str());
    return result;
}

std::string SimulatedWatch::sim(const std::string &args, int *status) {
    std::string out = _state + "-sim.txt";
    std::string cmd = "env -u DBUS_SYSTEM_BUS_ADDRESS -u QUILLSET_STATE " +
                      quote(binDir() + "/quillset-sim") + " --state " + quote(_state) + " " + args +
                      " >" + quote(out) + " 2>&1";
    int rc = system(cmd.c_str());
    if (status)
        *status = WIFEXITED(rc) ? WEXITSTATUS(rc) : -1;
    std::string text = readFile(out);
    unlink(out.c_str());
    return text;
}

std::vector<nlohmann::json> SimulatedWatch::usage() {
    return jsonLines(sim("usage"));
}

std::vector<nlohmann::json> SimulatedWatch::launches() {
    return jsonLines(sim("launches"));
}

void SimulatedWatch::seed() {
    sim::Profile profile;
    std::string error;
    ASSERT_TRUE(profile.load(sim::Profile::resolve(_profile, sim::profilesDir()), &error)) << error;
    ASSERT_TRUE(profile.seed(_state, &error)) << error;
}

std::string SimulatedWatch::platformLog() {
    return readFile(_state + "/platform.log");
}

std::vector<std::string> rowLabels(const nlohmann::json &dump) {
    std::vector<std::string> labels;
    for (const auto &item : dump["items"])
        labels.push_back(item["texts"].value("elm.text", ""));
    return labels;
}

nlohmann::json rowWithLabel(const nlohmann::json &dump, const std::string &label) {
    for (const auto &item : dump["items"])
        if (item["texts"].value("elm.text", "") == label)
            return item;
    return nullptr;
}

std::string rowValue(const nlohmann::json &dump, const std::string &label) {
    nlohmann::json row = rowWithLabel(dump, label);
    return row.is_null() ? "(no row " + label + ")" : row["texts"].value("elm.text.1", "");
}
