#include "DrivenWatch.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>

#include "SimulatedWatch.h"

namespace {

// Reads one line from fd within timeout seconds; false on time-out or end of file.
bool readLine(int fd, double timeout, std::string *line) {
    line->clear();
    for (;;) {
        struct pollfd p = {fd, POLLIN, 0};
        if (poll(&p, 1, static_cast<int>(timeout * 1000)) <= 0)
            return false;
        char c;
        if (read(fd, &c, 1) != 1)
            return false;
        if (c == '\n')
            return true;
        *line += c;
    }
}

}  // namespace

DrivenWatch::DrivenWatch(const std::string &profile, const std::string &state) {
    int in[2], out[2];
    if (pipe2(in, O_CLOEXEC) != 0 || pipe2(out, O_CLOEXEC) != 0)
        abort();
    // The watch finds no bus or state of the test's own.
    unsetenv("DBUS_SYSTEM_BUS_ADDRESS");
    unsetenv("QUILLSET_STATE");
    std::string sim = SimulatedWatch::binDir() + "/quillset-sim";
    int null = open("/dev/null", O_WRONLY | O_CLOEXEC);
    _pid = fork();
    if (_pid == 0) {
        dup2(in[0], STDIN_FILENO);
        dup2(out[1], STDOUT_FILENO);
        dup2(null, STDERR_FILENO);
        execl(sim.c_str(), sim.c_str(), "run", "--profile", profile.c_str(), "--state",
              state.c_str(), "--", "quillset-drive", nullptr);
        _exit(127);
    }
    close(null);
    close(in[0]);
    close(out[1]);
    _in = in[1];
    _out = out[0];
}

DrivenWatch::~DrivenWatch() {
    finish();
    close(_out);
}

bool DrivenWatch::send(const std::string &commands) {
    return _in >= 0 &&
           write(_in, commands.data(), commands.size()) == static_cast<ssize_t>(commands.size());
}

nlohmann::json DrivenWatch::nextDump(double timeout) {
    std::string line;
    while (readLine(_out, timeout, &line))
        if (!line.empty() && line[0] == '{')
            return nlohmann::json::parse(line, nullptr, false);
    return nullptr;
}

int DrivenWatch::finish() {
    if (_in >= 0)
        close(_in);
    _in = -1;
    if (_pid <= 0)
        return -1;
    int status = 0;
    waitpid(_pid, &status, 0);
    _pid = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}
