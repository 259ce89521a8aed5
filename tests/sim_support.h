#ifndef QUILLSET_TESTS_SIM_SUPPORT_H
#define QUILLSET_TESTS_SIM_SUPPORT_H

#include <gtest/gtest.h>

#include <sys/types.h>

#include <map>
#include <string>
#include <vector>

// Helpers for the tests of the simulated watch and the platform stand-ins.
namespace simtest {

// A fresh directory under /tmp, removed with everything in it at the end.
class TempDir {
public:
    TempDir();
    ~TempDir();
    const std::string &path() const { return _path; }
    std::string operator/(const std::string &name) const { return _path + "/" + name; }

    TempDir(const TempDir &) = delete;
    TempDir &operator=(const TempDir &) = delete;

private:
    std::string _path;
};

struct CommandResult {
    int status = -1;  // exit status, or 128 + signal
    std::string out;
    std::string err;
};

// Runs a program and waits for it. The child never sees the test's bus or watch unless env
// gives them: DBUS_SYSTEM_BUS_ADDRESS and QUILLSET_STATE are removed first, then env applied.
CommandResult run(const std::vector<std::string> &argv,
                  const std::map<std::string, std::string> &env = {});
// Starts a program without waiting; stdout and stderr go to the given files.
pid_t start(const std::vector<std::string> &argv, const std::map<std::string, std::string> &env,
            const std::string &outFile, const std::string &errFile);
// quillset-sim ARGS..., from the build beside the tests.
CommandResult quillsetSim(std::vector<std::string> args,
                          const std::map<std::string, std::string> &env = {});
std::string program(const std::string &name);

std::string readText(const std::string &path);
void writeText(const std::string &path, const std::string &text);
bool contains(const std::string &text, const std::string &part);

}  // namespace simtest

#endif
