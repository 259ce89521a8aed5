#include "SimRun.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "Profile.h"
#include "StatePaths.h"

namespace sim {

namespace {

const char *const kBusConfig =
    "<!DOCTYPE busconfig PUBLIC \"-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN\"\n"
    " \"http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd\">\n"
    "<!-- The simulated watch's private system bus. Only the user who started the watch may\n"
    "     connect (the bus's default with no user rule); its processes may own, send and\n"
    "     receive anything. -->\n"
    "<busconfig>\n"
    "  <type>system</type>\n"
    "  <listen>unix:path=%s</listen>\n"
    "  <auth>EXTERNAL</auth>\n"
    "  <policy context=\"default\">\n"
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

const char *const kAtSpiBusLauncher = "/usr/libexec/at-spi-bus-launcher";

// Parts of a state directory that --fresh clears; anything else in it is left alone.
const char *const kStateEntries[] = {"settings",     "profile.json", "usage.db",
                                     "usage.db-wal", "usage.db-shm", "usage.db-journal",
                                     "platform.log", "simd.log",     "data"};

volatile sig_atomic_t g_stopSignal = 0;
// Whether the stop signal was sent by a process (kill) rather than by the terminal, which
// sends it to the command as well.
volatile sig_atomic_t g_stopFromProcess = 0;

void onStopSignal(int signal, siginfo_t *info, void *) {
    g_stopSignal = signal;
    g_stopFromProcess = info && info->si_code <= 0;
}

void say(const std::string &message) {
    fprintf(stderr, "quillset-sim: %s\n", message.c_str());
}

double now() {
    struct timespec ts;
    clock_gettime(CLOCK_MONOTONIC, &ts);
    return ts.tv_sec + ts.tv_nsec / 1e9;
}

// Reads one line from fd; false at end of file, on time-out or when a stop is requested.
bool readLine(int fd, double timeout, std::string *line) {
    line->clear();
    double deadline = now() + timeout;
    while (!g_stopSignal) {
        int remaining = static_cast<int>((deadline - now()) * 1000);
        if (remaining <= 0)
            return false;
        struct pollfd p = {fd, POLLIN, 0};
        int ready = poll(&p, 1, remaining);
        if (ready < 0 && errno == EINTR)
            continue;
        if (ready <= 0)
            return false;
        char c;
        ssize_t n = read(fd, &c, 1);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            return false;
        if (c == '\n')
            return true;
        *line += c;
    }
    return false;
}

struct SpawnOptions {
    bool daemon = false;     // own process group, ends with quillset-sim
    int keepFd = -1;         // inherited across exec
    std::string outputFile;  // stdout and stderr go here when set
};

pid_t spawn(const std::vector<std::string> &args, const SpawnOptions &options) {
    // Stop signals wait until the child has dropped our handlers: one forwarded to it in
    // between would otherwise be swallowed and the command would never stop.
    sigset_t stopSignals, previous;
    sigemptyset(&stopSignals);
    for (int signal : {SIGINT, SIGTERM, SIGHUP})
        sigaddset(&stopSignals, signal);
    sigprocmask(SIG_BLOCK, &stopSignals, &previous);
    pid_t parent = getpid();
    pid_t pid = fork();
    if (pid != 0) {
        int err = errno;
        sigprocmask(SIG_SETMASK, &previous, nullptr);
        if (pid < 0)
            say(sysError("fork", args[0], err));
        return pid;
    }
    if (options.daemon) {
        // Out of the terminal's process group, so that Ctrl-C reaches the command alone and
        // the watch stays up while the command shuts down.
        setpgid(0, 0);
        prctl(PR_SET_PDEATHSIG, SIGTERM);
        if (getppid() != parent)
            _exit(1);
    }
    struct sigaction action = {};
    action.sa_handler = SIG_DFL;
    for (int signal : {SIGINT, SIGTERM, SIGHUP})
        sigaction(signal, &action, nullptr);
    sigprocmask(SIG_SETMASK, &previous, nullptr);
    if (options.keepFd >= 0)
        fcntl(options.keepFd, F_SETFD, 0);
    if (!options.outputFile.empty()) {
        int fd = open(options.outputFile.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644);
        if (fd >= 0) {
            dup2(fd, STDOUT_FILENO);
            dup2(fd, STDERR_FILENO);
        }
    }
    std::vector<char *> argv;
    for (const std::string &arg : args)
        argv.push_back(const_cast<char *>(arg.c_str()));
    argv.push_back(nullptr);
    execvp(argv[0], argv.data());
    fprintf(stderr, "quillset-sim: cannot run %s: %s\n", argv[0], strerror(errno));
    _exit(127);
}

int exitStatus(int status) {
    if (WIFEXITED(status))
        return WEXITSTATUS(status);
    if (WIFSIGNALED(status))
        return 128 + WTERMSIG(status);
    return 1;
}

// Waits for the command, passing on a stop request that the command did not get itself.
// Polls rather than blocks, so that a request arriving just before a wait is not missed.
int waitForCommand(pid_t child) {
    bool forwarded = false;
    double killAt = 0;
    for (;;) {
        int status = 0;
        pid_t done = waitpid(child, &status, WNOHANG);
        if (done == child)
            return exitStatus(status);
        if (done < 0 && errno != EINTR)
            return 127;
        if (g_stopSignal && !forwarded) {
            forwarded = true;
            killAt = now() + 5.0;
            if (g_stopFromProcess)
                kill(child, g_stopSignal);
        }
        if (forwarded && now() > killAt) {
            say("the command did not stop; killing it");
            kill(child, SIGKILL);
            waitpid(child, &status, 0);
            return exitStatus(status);
        }
        usleep(10000);
    }
}

void stop(pid_t *pid) {
    if (*pid <= 0)
        return;
    kill(*pid, SIGTERM);
    for (int k = 0; k < 100; ++k) {
        pid_t done = waitpid(*pid, nullptr, WNOHANG);
        if (done == *pid || (done < 0 && errno == ECHILD)) {
            *pid = -1;
            return;
        }
        usleep(20000);
    }
    kill(*pid, SIGKILL);
    waitpid(*pid, nullptr, 0);
    *pid = -1;
}

// The running watch; its destructor tears everything down, whatever happened before.
struct Watch {
    std::string state;
    bool temporary = false;
    pid_t bus = -1;
    pid_t daemon = -1;
    pid_t sessionBus = -1;
    pid_t accessibilityBus = -1;

    ~Watch() {
        bool ownsBus = bus > 0;
        stop(&accessibilityBus);
        stop(&sessionBus);
        stop(&daemon);
        stop(&bus);
        if (state.empty())
            return;
        if (ownsBus)
            unlink((state + "/bus/system.sock").c_str());
        std::string error;
        if (temporary && !removeTree(state, &error))
            say(error);
    }
};

// Seeds the state directory from the profile when it is new or --fresh; false with *problem
// set when the profile or the directory will not do.
bool prepareState(const RunOptions &options, Watch *watch, std::string *problem) {
    std::string &state = watch->state;
    bool seeded = fileExists(state + "/profile.json");
    if (seeded && !options.fresh) {
        if (options.profileGiven)
            say("warning: " + state + " keeps the profile it was seeded with; --fresh starts " +
                "it again from " + options.profile);
        return true;
    }
    std::string path = Profile::resolve(options.profile, profilesDir());
    if (path.empty()) {
        *problem = "no profile '" + options.profile + "' in " + profilesDir() +
                   " (`quillset-sim profiles` lists them)";
        return false;
    }
    Profile profile;
    if (!profile.load(path, problem))
        return false;
    for (const std::string &warning : profile.warnings())
        say("warning: " + warning);
    if (seeded) {
        for (const char *entry : kStateEntries)
            if (!removeTree(state + "/" + entry, problem))
                return false;
    }
    return profile.seed(state, problem);
}

// Whether a bus already answers on the socket (another run of the same watch).
bool busAnswers(const std::string &socketPath) {
    struct sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    if (socketPath.size() >= sizeof(address.sun_path))
        return false;
    memcpy(address.sun_path, socketPath.c_str(), socketPath.size() + 1);
    int fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (fd < 0)
        return false;
    bool answers = connect(fd, reinterpret_cast<struct sockaddr *>(&address), sizeof(address)) == 0;
    close(fd);
    return answers;
}

// Starts a dbus-daemon of the given kind in the background, its output into log, and reads the
// address it prints once it listens. *pid is set whenever it was started, so that it is ended
// with the watch even when it never answered.
bool startBusDaemon(const std::string &kind, const std::string &log, pid_t *pid,
                    std::string *address) {
    int fds[2];
    if (pipe2(fds, O_CLOEXEC) != 0) {
        say(sysError("pipe2", "bus address", errno));
        return false;
    }
    SpawnOptions options;
    options.daemon = true;
    options.keepFd = fds[1];
    options.outputFile = log;
    *pid = spawn({"dbus-daemon", kind, "--nofork", "--nopidfile", "--nosyslog",
                  "--print-address=" + std::to_string(fds[1])},
                 options);
    close(fds[1]);
    bool ok = *pid > 0 && readLine(fds[0], 5.0, address) && !address->empty();
    close(fds[0]);
    return ok;
}

bool startBus(Watch *watch) {
    std::string busDir = watch->state + "/bus";
    std::string error;
    if (!makeDirs(busDir, &error)) {
        say(error);
        return false;
    }
    // The socket is not for other users to reach, whatever the umask made of it.
    if (chmod(busDir.c_str(), 0700) != 0) {
        say(sysError("chmod", busDir, errno));
        return false;
    }
    std::string socket = busDir + "/system.sock";
    std::vector<char> config(strlen(kBusConfig) + socket.size() + 1);
    snprintf(config.data(), config.size(), kBusConfig, socket.c_str());
    unlink(socket.c_str());
    if (!writeFileAtomic(busDir + "/system.conf", config.data(), &error)) {
        say(error);
        return false;
    }
    std::string address, log = busDir + "/dbus-daemon.log";
    if (!startBusDaemon("--config-file=" + busDir + "/system.conf", log, &watch->bus, &address)) {
        if (!g_stopSignal)
            say("the private system bus (dbus-daemon) did not start; see " + log);
        return false;
    }
    setenv("DBUS_SYSTEM_BUS_ADDRESS", address.c_str(), 1);
    return true;
}

bool startDaemon(Watch *watch) {
    int fds[2];
    if (pipe2(fds, O_CLOEXEC) != 0) {
        say(sysError("pipe2", "readiness", errno));
        return false;
    }
    SpawnOptions options;
    options.daemon = true;
    options.keepFd = fds[1];
    setenv("QUILLSET_READY_FD", std::to_string(fds[1]).c_str(), 1);
    watch->daemon = spawn({executableDir() + "/quillset-simd"}, options);
    unsetenv("QUILLSET_READY_FD");
    close(fds[1]);
    std::string line;
    bool ok = watch->daemon > 0 && readLine(fds[0], 10.0, &line) && line == "ready";
    close(fds[0]);
    if (!ok && !g_stopSignal)
        say("the services daemon (quillset-simd) did not start; see " + watch->state + "/simd.log");
    return ok;
}

// Runs a short command to its end, its output into a log; true when it succeeds.
bool runToEnd(const std::vector<std::string> &args, const std::string &log) {
    SpawnOptions options;
    options.outputFile = log;
    pid_t pid = spawn(args, options);
    int status = 0;
    while (pid > 0 && waitpid(pid, &status, 0) < 0 && errno == EINTR) {
    }
    return pid > 0 && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

// What a desktop screen reader needs: a session bus (a private one when the command has
// none), the accessibility bus launched on it, the screen reader marked as on (without it
// Elementary's bridge registers nothing) and Elementary's bridge turned on.
bool startAccessibility(Watch *watch) {
    const char *session = getenv("DBUS_SESSION_BUS_ADDRESS");
    if (!session || !*session) {
        std::string address, log = watch->state + "/bus/session-bus.log";
        if (!startBusDaemon("--session", log, &watch->sessionBus, &address)) {
            say("the session bus (dbus-daemon --session) did not start; see " + log);
            return false;
        }
        setenv("DBUS_SESSION_BUS_ADDRESS", address.c_str(), 1);
        SpawnOptions launcher;
        launcher.daemon = true;
        launcher.outputFile = watch->state + "/bus/at-spi.log";
        watch->accessibilityBus = spawn({kAtSpiBusLauncher, "--launch-immediately"}, launcher);
        if (watch->accessibilityBus <= 0)
            return false;
    }
    // The launcher answers on the session bus once it is up (or is started by it on a desktop).
    bool enabled = false;
    for (int attempt = 0; attempt < 50 && !enabled && !g_stopSignal; ++attempt) {
        enabled = true;
        for (const char *property : {"IsEnabled", "ScreenReaderEnabled"})
            enabled = enabled &&
                      runToEnd({"dbus-send", "--session", "--print-reply=literal",
                                "--dest=org.a11y.Bus", "/org/a11y/bus",
                                "org.freedesktop.DBus.Properties.Set", "string:org.a11y.Status",
                                std::string("string:") + property, "variant:boolean:true"},
                               watch->state + "/bus/at-spi.log");
        if (!enabled)
            usleep(100000);
    }
    if (!enabled) {
        say(std::string("the accessibility bus did not answer (is at-spi2-core installed? ") +
            kAtSpiBusLauncher + "); see " + watch->state + "/bus/at-spi.log");
        return false;
    }
    setenv("ELM_ATSPI_MODE", "1", 1);
    return true;
}

}  // namespace

int runWatch(const RunOptions &options) {
    if (options.command.empty()) {
        say("run needs a command after --");
        return 2;
    }
    g_stopSignal = 0;
    struct sigaction action = {};
    action.sa_sigaction = onStopSignal;
    action.sa_flags = SA_SIGINFO;  // no SA_RESTART: waits return to look at the request
    for (int signal : {SIGINT, SIGTERM, SIGHUP})
        sigaction(signal, &action, nullptr);

    Watch watch;
    watch.state = options.stateDir.empty() ? stateDirFromEnv() : options.stateDir;
    if (watch.state.empty()) {
        char tmpl[] = "/tmp/quillset-watch-XXXXXX";
        if (!mkdtemp(tmpl)) {
            say(sysError("mkdtemp", tmpl, errno));
            return 1;
        }
        watch.state = tmpl;
        watch.temporary = true;
    }
    watch.state = absolutePath(watch.state);
    std::string error;
    if (!makeDirs(watch.state, &error)) {
        say(error + "; the watch was not started");
        return 1;
    }
    if (busAnswers(watch.state + "/bus/system.sock")) {
        say("this watch is already running (its bus answers in " + watch.state +
            "/bus); talk to it with `quillset-sim --state " + watch.state +
            " ...`; the watch was not started");
        return 2;
    }
    if (!prepareState(options, &watch, &error)) {
        say(error + "; the watch was not started");
        return 2;
    }

    // Everything the watch starts finds it through these.
    setenv("QUILLSET_STATE", watch.state.c_str(), 1);
    setenv("ECORE_NO_SYSTEM_MODULES", "1", 1);
    // EFL's cache daemon cannot reuse its port in some sandboxes and says so on every start.
    setenv("EINA_LOG_LEVELS", "ecore_con:0", 0);
    // The command may be one of the watch's own programs (quillset-drive, quillset-sim).
    const char *path = getenv("PATH");
    std::string searchPath = executableDir() + ":" + (path && *path ? path : "/usr/bin:/bin");
    setenv("PATH", searchPath.c_str(), 1);

    if (!startBus(&watch) || !startDaemon(&watch) ||
        (options.accessibility && !startAccessibility(&watch))) {
        if (g_stopSignal)
            return 128 + g_stopSignal;
        say("the watch was not started");
        return 1;
    }
    say("watch running; QUILLSET_STATE=" + watch.state);

    if (g_stopSignal)
        return 128 + g_stopSignal;
    pid_t child = spawn(options.command, SpawnOptions());
    return child < 0 ? 127 : waitForCommand(child);
}

}  // namespace sim
