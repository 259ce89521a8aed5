#include "SimRun.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "Profile.h"
#include "StatePaths.h"

namespace sim {

namespace {

volatile sig_atomic_t g_stopRequested = 0;

void onStopSignal(int) {
    g_stopRequested = 1;
}

void fail(const std::string &message) {
    fprintf(stderr, "quillset-sim: %s\n", message.c_str());
}

std::string ownDir() {
    char path[4096];
    ssize_t n = readlink("/proc/self/exe", path, sizeof(path) - 1);
    if (n <= 0)
        return ".";
    path[n] = '\0';
    std::string dir(path);
    return dir.substr(0, dir.rfind('/'));
}

bool removeTree(const std::string &path) {
    std::string cmd = "rm -rf '" + path + "'";
    return system(cmd.c_str()) == 0;
}

// Reads one line from fd within timeout seconds.
bool readLine(int fd, double timeout, std::string *line) {
    line->clear();
    int waitedMs = 0;
    while (waitedMs < timeout * 1000) {
        struct pollfd p = {fd, POLLIN, 0};
        int ready = poll(&p, 1, 50);
        waitedMs += 50;
        if (ready < 0 && errno == EINTR)
            continue;
        if (ready <= 0)
            continue;
        char c;
        ssize_t n = read(fd, &c, 1);
        if (n <= 0)
            return false;
        if (c == '\n')
            return true;
        *line += c;
    }
    return false;
}

pid_t spawn(const std::vector<std::string> &args, int keepFd) {
    pid_t pid = fork();
    if (pid != 0)
        return pid;
    signal(SIGINT, SIG_DFL);
    signal(SIGTERM, SIG_DFL);
    std::vector<char *> argv;
    for (const std::string &arg : args)
        argv.push_back(const_cast<char *>(arg.c_str()));
    argv.push_back(nullptr);
    if (keepFd >= 0)
        fcntl(keepFd, F_SETFD, 0);
    execvp(argv[0], argv.data());
    fprintf(stderr, "quillset-sim: cannot run %s: %s\n", argv[0], strerror(errno));
    _exit(127);
}

int waitFor(pid_t pid) {
    int status = 0;
    while (waitpid(pid, &status, 0) < 0) {
        if (errno != EINTR)
            return 127;
    }
    if (WIFEXITED(status))
        return WEXITSTATUS(status);
    return 128 + WTERMSIG(status);
}

void stop(pid_t pid) {
    if (pid <= 0)
        return;
    kill(pid, SIGTERM);
    for (int i = 0; i < 40; ++i) {
        if (waitpid(pid, nullptr, WNOHANG) == pid)
            return;
        usleep(50000);
    }
    kill(pid, SIGKILL);
    waitpid(pid, nullptr, 0);
}

const char *const kBusConfig =
    "<!DOCTYPE busconfig PUBLIC \"-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN\"\n"
    " \"http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd\">\n"
    "<busconfig>\n"
    "  <type>system</type>\n"
    "  <listen>unix:path=%s</listen>\n"
    "  <auth>EXTERNAL</auth>\n"
    "  <policy context=\"default\">\n"
    "    <allow user=\"*\"/>\n"
    "    <allow own=\"*\"/>\n"
    "    <allow send_type=\"method_call\"/>\n"
    "    <allow send_type=\"signal\"/>\n"
    "    <allow send_type=\"method_return\"/>\n"
    "    <allow send_type=\"error\"/>\n"
    "    <allow receive_type=\"method_call\"/>\n"
    "    <allow receive_type=\"signal\"/>\n"
    "    <allow receive_type=\"method_return\"/>\n"
    "    <allow receive_type=\"error\"/>\n"
    "  </policy>\n"
    "</busconfig>\n";

}  // namespace

int runWatch(const RunOptions &options) {
    if (options.command.empty()) {
        fail("run needs a command after --");
        return 2;
    }
    std::string profileDir = dataDir() + "/profiles";
    std::string profilePath = Profile::resolve(options.profile, profileDir);
    if (profilePath.empty()) {
        fail("no profile '" + options.profile + "' in " + profileDir +
             " (quillset-sim profiles lists them)");
        return 2;
    }
    Profile profile;
    std::string error;
    if (!profile.load(profilePath, &error)) {
        fail(error);
        fail("the watch was not started");
        return 2;
    }
    for (const std::string &warning : profile.warnings())
        fprintf(stderr, "quillset-sim: warning: %s\n", warning.c_str());

    std::string state = options.stateDir.empty() ? stateDirFromEnv() : options.stateDir;
    bool temporary = state.empty();
    if (temporary) {
        char tmpl[] = "/tmp/quillset-watch-XXXXXX";
        if (!mkdtemp(tmpl)) {
            fail(std::string("mkdtemp: ") + strerror(errno));
            return 1;
        }
        state = tmpl;
    }
    if (state[0] != '/') {
        char cwd[4096];
        if (getcwd(cwd, sizeof(cwd)))
            state = std::string(cwd) + "/" + state;
    }
    struct stat st;
    bool seeded = stat((state + "/profile.json").c_str(), &st) == 0;
    if (options.fresh && seeded) {
        for (const char *part : {"settings", "profile.json", "usage.db", "usage.db-wal",
                                 "usage.db-shm", "platform.log", "simd.log"})
            removeTree(state + "/" + part);
        seeded = false;
    }
    if (!seeded && !profile.seed(state, &error)) {
        fail(error);
        return 1;
    }
    if (!makeDirs(state + "/bus", &error)) {
        fail(error);
        return 1;
    }
    std::string socket = state + "/bus/system.sock";
    char config[4096];
    snprintf(config, sizeof(config), kBusConfig, socket.c_str());
    unlink(socket.c_str());
    if (!writeFileAtomic(state + "/bus/system.conf", config, &error)) {
        fail(error);
        return 1;
    }

    struct sigaction action = {};
    action.sa_handler = onStopSignal;
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);

    // The private system bus.
    int busPipe[2];
    if (pipe2(busPipe, O_CLOEXEC) != 0) {
        fail(std::string("pipe: ") + strerror(errno));
        return 1;
    }
    pid_t bus = spawn({"dbus-daemon", "--config-file=" + state + "/bus/system.conf", "--nofork",
                       "--nopidfile", "--print-address=" + std::to_string(busPipe[1])},
                      busPipe[1]);
    close(busPipe[1]);
    std::string address;
    if (bus < 0 || !readLine(busPipe[0], 5.0, &address) || address.empty()) {
        close(busPipe[0]);
        fail("the private system bus (dbus-daemon) did not start");
        stop(bus);
        return 1;
    }
    close(busPipe[0]);

    std::string dir = ownDir();
    setenv("DBUS_SYSTEM_BUS_ADDRESS", address.c_str(), 1);
    setenv("QUILLSET_STATE", state.c_str(), 1);
    setenv("ECORE_NO_SYSTEM_MODULES", "1", 1);
    // EFL's cache daemon cannot reuse its port in some sandboxes and says so on every start.
    setenv("EINA_LOG_LEVELS", "ecore_con:0", 0);
    std::string path = dir + ":" + (getenv("PATH") ? getenv("PATH") : "/usr/bin:/bin");
    setenv("PATH", path.c_str(), 1);

    // The services daemon; the command starts once it serves.
    int readyPipe[2];
    if (pipe2(readyPipe, O_CLOEXEC) != 0) {
        fail(std::string("pipe: ") + strerror(errno));
        stop(bus);
        return 1;
    }
    setenv("QUILLSET_READY_FD", std::to_string(readyPipe[1]).c_str(), 1);
    pid_t daemon = spawn({dir + "/quillset-simd"}, readyPipe[1]);
    unsetenv("QUILLSET_READY_FD");
    close(readyPipe[1]);
    std::string ready;
    if (daemon < 0 || !readLine(readyPipe[0], 10.0, &ready) || ready != "ready") {
        close(readyPipe[0]);
        fail("the services daemon (quillset-simd) did not start; see " + state + "/simd.log");
        stop(daemon);
        stop(bus);
        return 1;
    }
    close(readyPipe[0]);

    fprintf(stderr, "quillset-sim: watch '%s' running; QUILLSET_STATE=%s\n",
            options.profile.c_str(), state.c_str());
    int status = 127;
    if (!g_stopRequested) {
        pid_t child = spawn(options.command, -1);
        status = child < 0 ? 127 : waitFor(child);
    }

    stop(daemon);
    stop(bus);
    unlink(socket.c_str());
    if (temporary)
        removeTree(state);
    return status;
}

}  // namespace sim
