#ifndef QUILLSET_TESTS_SIM_SUPPORT_H
#define QUILLSET_TESTS_SIM_SUPPORT_H

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include <nlohmann/json.hpp>

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

// What `quillset-sim usage` or `launches` lists for the watch in state, one object a row.
inline std::vector<nlohmann::json> simRows(const std::string &state, const std::string &what) {
    CommandResult r = quillsetSim({"--state", state, what});
    EXPECT_EQ(r.status, 0) << r.err;
    std::vector<nlohmann::json> out;
    std::istringstream lines(r.out);
    for (std::string line; std::getline(lines, line);)
        out.push_back(nlohmann::json::parse(line));
    return out;
}

// Whether the process has ended (a zombie that its parent has not reaped yet counts).
inline bool processGone(pid_t pid) {
    std::string stat = readText("/proc/" + std::to_string(pid) + "/stat");
    size_t paren = stat.rfind(')');
    return paren == std::string::npos || stat.compare(paren + 1, 3, " Z ") == 0;
}

// A watch's bus and services daemon, kept up by `quillset-sim run -- sleep` around tests that
// call the stand-ins in their own process. This process's DBUS_SYSTEM_BUS_ADDRESS leads to it
// while it runs. The daemon can be stopped, paused and started again.
class RunningWatch {
public:
    ~RunningWatch() { stop(); }

    // Brings the watch up on state, whose profile.json must exist (nothing is seeded then).
    bool start(const std::string &state) {
        _state = state;
        _run = startSim({"run", "--state", state, "--", "sleep", "3600"}, {}, _logs / "out",
                        _logs / "err");
        for (int i = 0; i < 1000 && !contains(readText(_logs / "err"), "watch running"); ++i) {
            if (processGone(_run))
                break;
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        if (!contains(readText(_logs / "err"), "watch running")) {
            ADD_FAILURE() << "the watch did not start: " << readText(_logs / "err");
            return false;
        }
        setenv("DBUS_SYSTEM_BUS_ADDRESS", ("unix:path=" + state + "/bus/system.sock").c_str(), 1);
        return true;
    }

    // Tears the watch down (the daemon this object started again too).
    void stop() {
        for (pid_t *pid : {&_run, &_daemon}) {
            if (*pid <= 0)
                continue;
            kill(*pid, SIGCONT);
            kill(*pid, SIGTERM);
            waitpid(*pid, nullptr, 0);
            *pid = -1;
        }
    }

    // The running daemon's process: the last one simd.log says started.
    pid_t daemonPid() const {
        std::string log = readText(_state + "/simd.log");
        size_t at = log.rfind("starting (pid ");
        return at == std::string::npos ? -1 : atoi(log.c_str() + at + 14);
    }

    // Ends the daemon; its names leave the bus with it.
    bool stopDaemon() {
        pid_t pid = daemonPid();
        if (pid <= 0 || kill(pid, SIGTERM) != 0)
            return false;
        for (int i = 0; i < 500 && !processGone(pid); ++i)
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        if (pid == _daemon) {
            waitpid(_daemon, nullptr, 0);
            _daemon = -1;
        }
        return processGone(pid);
    }

    // Starts another daemon on the watch's bus and waits until it serves.
    bool startDaemon() {
        int fds[2];
        if (pipe(fds) != 0)
            return false;
        _daemon = fork();
        if (_daemon == 0) {
            close(fds[0]);
            setenv("QUILLSET_STATE", _state.c_str(), 1);
            setenv("QUILLSET_READY_FD", std::to_string(fds[1]).c_str(), 1);
            std::string path = sim::executableDir() + "/quillset-simd";
            execl(path.c_str(), path.c_str(), static_cast<char *>(nullptr));
            _exit(127);
        }
        close(fds[1]);
        char ready[6] = {};
        bool ok = _daemon > 0 && read(fds[0], ready, 5) == 5 && std::string(ready) == "ready";
        close(fds[0]);
        return ok;
    }

    const std::string &state() const { return _state; }

private:
    TempDir _logs;
    std::string _state;
    pid_t _run = -1;
    pid_t _daemon = -1;  // a daemon started again by this object
};

}  // namespace simtest

#endif
