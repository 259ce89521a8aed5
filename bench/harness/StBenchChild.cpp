#include "StBenchChild.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <ctime>
#include <sstream>

extern char **environ;

namespace {
const int kEventFd = 3;
const int kCommandFd = 4;
}  // namespace

StBenchChild::StBenchChild() : _pid(-1), _events(-1), _commands(-1), _startTime(0) {}

StBenchChild::~StBenchChild() {
    _kill();
    if (_events >= 0)
        close(_events);
    if (_commands >= 0)
        close(_commands);
}

int64_t StBenchChild::now() {
    timespec ts;
    clock_gettime(CLOCK_MONOTONIC, &ts);
    return static_cast<int64_t>(ts.tv_sec) * 1000000000 + ts.tv_nsec;
}

bool StBenchChild::start(const std::vector<std::string> &argv, const std::vector<std::string> &env,
                         std::string *error) {
    int events[2], commands[2];
    if (pipe2(events, O_CLOEXEC) != 0 || pipe2(commands, O_CLOEXEC) != 0) {
        *error = std::string("pipe2: ") + strerror(errno);
        return false;
    }
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, events[1], kEventFd);
    posix_spawn_file_actions_adddup2(&actions, commands[0], kCommandFd);
    // The programs' own log lines stay in the watch's platform.log, out of the table's way.
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);

    std::vector<std::string> envStrings;
    for (char **e = environ; *e; ++e)
        envStrings.push_back(*e);
    for (const std::string &added : env) {
        std::string name = added.substr(0, added.find('=') + 1);
        for (auto it = envStrings.begin(); it != envStrings.end();)
            it = it->compare(0, name.size(), name) == 0 ? envStrings.erase(it) : it + 1;
        envStrings.push_back(added);
    }
    envStrings.push_back("QUILLSET_BENCH_OUT_FD=" + std::to_string(kEventFd));
    envStrings.push_back("QUILLSET_BENCH_IN_FD=" + std::to_string(kCommandFd));
    std::vector<char *> envp, args;
    for (std::string &s : envStrings)
        envp.push_back(&s[0]);
    envp.push_back(nullptr);
    std::vector<std::string> argStrings(argv);
    for (std::string &s : argStrings)
        args.push_back(&s[0]);
    args.push_back(nullptr);

    _startTime = now();
    int rc = posix_spawnp(&_pid, args[0], &actions, nullptr, args.data(), envp.data());
    posix_spawn_file_actions_destroy(&actions);
    close(events[1]);
    close(commands[0]);
    _events = events[0];
    _commands = commands[1];
    if (rc != 0) {
        _pid = -1;
        *error = "cannot start " + argv[0] + ": " + strerror(rc);
        return false;
    }
    return true;
}

void StBenchChild::send(const std::string &command) {
    std::string line = command + "\n";
    if (_commands >= 0 && write(_commands, line.data(), line.size()) < 0) {
        close(_commands);
        _commands = -1;
    }
}

bool StBenchChild::waitFor(const std::vector<std::string> &words, std::vector<std::string> *fields,
                           std::string *error, int timeoutMs) {
    int64_t deadline = now() + static_cast<int64_t>(timeoutMs) * 1000000;
    for (;;) {
        size_t newline;
        while ((newline = _buffer.find('\n')) != std::string::npos) {
            std::string line = _buffer.substr(0, newline);
            _buffer.erase(0, newline + 1);
            std::istringstream in(line);
            std::vector<std::string> parts;
            std::string part;
            while (in >> part)
                parts.push_back(part);
            if (parts.empty())
                continue;
            if (parts[0] == "error") {
                *error = "probe: " + line.substr(6);
                return false;
            }
            for (const std::string &word : words) {
                if (parts[0] == word) {
                    if (fields)
                        *fields = parts;
                    return true;
                }
            }
        }
        int64_t left = (deadline - now()) / 1000000;
        if (left <= 0) {
            *error =
                "no '" + words[0] + "' from the program in " + std::to_string(timeoutMs) + " ms";
            return false;
        }
        pollfd pfd{_events, POLLIN, 0};
        int ready = poll(&pfd, 1, static_cast<int>(left));
        if (ready < 0 && errno == EINTR)
            continue;
        if (ready <= 0)
            continue;
        char chunk[4096];
        ssize_t n = read(_events, chunk, sizeof(chunk));
        if (n <= 0) {
            *error = "the program ended before '" + words[0] + "'";
            return false;
        }
        _buffer.append(chunk, static_cast<size_t>(n));
    }
}

bool StBenchChild::finish(long *maxRssKb, std::string *error) {
    if (_pid < 0) {
        *error = "no program";
        return false;
    }
    int status = 0;
    rusage usage{};
    pid_t done;
    do {
        done = wait4(_pid, &status, 0, &usage);
    } while (done < 0 && errno == EINTR);
    _pid = -1;
    if (done < 0) {
        *error = std::string("wait4: ") + strerror(errno);
        return false;
    }
    if (maxRssKb)
        *maxRssKb = usage.ru_maxrss;
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) {
        *error = "the program ended with status " + std::to_string(status);
        return false;
    }
    return true;
}

void StBenchChild::_kill() {
    if (_pid <= 0)
        return;
    kill(_pid, SIGKILL);
    int status;
    waitpid(_pid, &status, 0);
    _pid = -1;
}
