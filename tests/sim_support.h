#ifndef QUILLSET_TESTS_SIM_SUPPORT_H
#define QUILLSET_TESTS_SIM_SUPPORT_H

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "StatePaths.h"

// What the tests of the simulated watch and the platform stand-ins share.
namespace simtest {

// A fresh directory under /tmp, removed with everything in it at the end.
class TempDir {
public:
    TempDir() : _path(mkdtemp(_template)) {}
    ~TempDir() {
        std::string error;
        if (!sim::removeTree(_path, &error))
            fprintf(stderr, "%s\n", error.c_str());
    }
    const std::string &path() const { return _path; }
    std::string operator/(const std::string &name) const { return _path + "/" + name; }
    TempDir(const TempDir &) = delete;

private:
    char _template[29] = "/tmp/quillset-simtest-XXXXXX";
    std::string _path;
};

inline std::string readText(const std::string &path) {
    std::stringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

inline void writeText(const std::string &path, const std::string &text) {
    std::ofstream(path, std::ios::binary | std::ios::trunc) << text;
}

inline bool contains(const std::string &text, const std::string &part) {
    return text.find(part) != std::string::npos;
}

// Starts quillset-sim ARGS... from the build beside the tests, with stdout and stderr going to
// the given files. It never sees the test's bus or watch unless env gives them.
inline pid_t startSim(const std::vector<std::string> &args,
                      const std::map<std::string, std::string> &env, const std::string &outFile,
                      const std::string &errFile) {
    pid_t pid = fork();
    if (pid != 0)
        return pid;
    unsetenv("DBUS_SYSTEM_BUS_ADDRESS");
    unsetenv("QUILLSET_STATE");
    for (const auto &entry : env)
        setenv(entry.first.c_str(), entry.second.c_str(), 1);
    int in = open("/dev/null", O_RDONLY), out = creat(outFile.c_str(), 0644),
        err = creat(errFile.c_str(), 0644);
    if (in < 0 || out < 0 || err < 0 || dup2(in, 0) < 0 || dup2(out, 1) < 0 || dup2(err, 2) < 0)
        _exit(126);
    std::string path = sim::executableDir() + "/quillset-sim";
    std::vector<char *> argv = {path.data()};
    for (const std::string &arg : args)
        argv.push_back(const_cast<char *>(arg.c_str()));
    argv.push_back(nullptr);
    execv(argv[0], argv.data());
    fprintf(stderr, "cannot run %s: %s\n", argv[0], strerror(errno));
    _exit(127);
}

struct CommandResult {
    int status = -1;  // exit status, or 128 + signal
    std::string out;
    std::string err;
};

// Runs quillset-sim ARGS... as startSim() does and waits for it.
inline CommandResult quillsetSim(const std::vector<std::string> &args,
                                 const std::map<std::string, std::string> &env = {}) {
    TempDir output;
    CommandResult result;
    int status = 0;
    pid_t pid = startSim(args, env, output / "out", output / "err");
    while (waitpid(pid, &status, 0) < 0)
        if (errno != EINTR)
            return result;
    result.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    result.out = readText(output / "out");
    result.err = readText(output / "err");
    return result;
}

}  // namespace simtest

#endif
