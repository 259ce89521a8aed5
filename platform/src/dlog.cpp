// The platform log: one line per message, "HH:MM:SS.mmm P/TAG(PID): message", appended to the
// watch's log buffer <state>/platform.log, which `quillset-sim log` reads, as the platform's log
// reader reads its own. Messages are kept as given, colour codes included. The terminal gets a
// copy only when QUILLSET_LOG_ECHO is set (to anything but 0), or when there is no watch and so
// no buffer to keep the line.

#include <dlog.h>

#include <fcntl.h>
#include <sys/time.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>

#include "PlatformState.h"

namespace {

char priorityLetter(log_priority prio) {
    switch (prio) {
        case DLOG_VERBOSE:
            return 'V';
        case DLOG_DEBUG:
            return 'D';
        case DLOG_WARN:
            return 'W';
        case DLOG_ERROR:
            return 'E';
        case DLOG_FATAL:
            return 'F';
        default:
            return 'I';
    }
}

// The log file of the current state directory, opened once per directory.
int logFile() {
    static int fd = -1;
    static std::string openedFor;
    const std::string &dir = platform::stateDir();
    if (dir != openedFor) {
        if (fd >= 0)
            close(fd);
        openedFor = dir;
        fd = dir.empty() ? -1
                         : open((dir + "/platform.log").c_str(),
                                O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644);
    }
    return fd;
}

bool echoWanted() {
    const char *echo = getenv("QUILLSET_LOG_ECHO");
    return echo && *echo && strcmp(echo, "0") != 0;
}

bool writeAll(int fd, const std::string &text) {
    size_t done = 0;
    while (done < text.size()) {
        ssize_t n = write(fd, text.data() + done, text.size() - done);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            return false;
        done += static_cast<size_t>(n);
    }
    return true;
}

}  // namespace

extern "C" {

int dlog_vprint(log_priority prio, const char *tag, const char *fmt, va_list ap) {
    if (!fmt)
        return -EINVAL;
    if (prio == DLOG_SILENT)
        return 0;
    va_list copy;
    va_copy(copy, ap);
    int length = vsnprintf(nullptr, 0, fmt, copy);
    va_end(copy);
    if (length < 0)
        return -EINVAL;
    std::string message(static_cast<size_t>(length) + 1, '\0');
    vsnprintf(&message[0], message.size(), fmt, ap);
    message.resize(static_cast<size_t>(length));
    // The line ends here whatever the message ends with.
    while (!message.empty() && message.back() == '\n')
        message.pop_back();

    struct timeval now;
    gettimeofday(&now, nullptr);
    struct tm local;
    localtime_r(&now.tv_sec, &local);
    char prefix[96];
    snprintf(prefix, sizeof(prefix), "%02d:%02d:%02d.%03ld %c/", local.tm_hour, local.tm_min,
             local.tm_sec, static_cast<long>(now.tv_usec / 1000), priorityLetter(prio));
    std::string line = std::string(prefix) + (tag ? tag : "") + "(" + std::to_string(getpid()) +
                       "): " + message + "\n";

    // One write per line keeps lines whole when several processes log at once. Nothing can be
    // done about a closed stderr.
    int fd = logFile();
    if (fd < 0 || echoWanted())
        writeAll(STDERR_FILENO, line);
    if (fd < 0 || !writeAll(fd, line))
        return -EIO;
    return static_cast<int>(line.size());
}

int dlog_print(log_priority prio, const char *tag, const char *fmt, ...) {
    va_list ap;
    va_start(ap, fmt);
    int n = dlog_vprint(prio, tag, fmt, ap);
    va_end(ap);
    return n;
}

}  // extern "C"
