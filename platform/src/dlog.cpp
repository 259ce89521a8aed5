// The platform log: one line per message, "HH:MM:SS.mmm P/TAG(PID): message", on stderr and
// appended to <state>/platform.log.

#include <dlog.h>

#include <fcntl.h>
#include <sys/time.h>
#include <unistd.h>

#include <cstdio>
#include <ctime>
#include <string>

#include "PlatformState.h"

namespace {

char priorityLetter(log_priority prio) {
    static const char kLetters[] = "??VDIWEFS";
    return prio >= DLOG_UNKNOWN && prio <= DLOG_SILENT ? kLetters[prio] : '?';
}

int logFile() {
    static int fd = -2;
    static std::string openedFor;
    const std::string &dir = platform::stateDir();
    if (fd == -2 || openedFor != dir) {
        if (fd >= 0)
            close(fd);
        openedFor = dir;
        fd = dir.empty() ? -1
                         : open((dir + "/platform.log").c_str(),
                                O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644);
    }
    return fd;
}

}  // namespace

extern "C" {

int dlog_vprint(log_priority prio, const char *tag, const char *fmt, va_list ap) {
    if (!fmt)
        return -EINVAL;
    if (prio == DLOG_SILENT)
        return 0;
    char message[4096];
    vsnprintf(message, sizeof(message), fmt, ap);

    struct timeval now;
    gettimeofday(&now, nullptr);
    struct tm local;
    localtime_r(&now.tv_sec, &local);
    char line[4300];
    int n = snprintf(line, sizeof(line), "%02d:%02d:%02d.%03ld %c/%s(%d): %s\n", local.tm_hour,
                     local.tm_min, local.tm_sec, static_cast<long>(now.tv_usec / 1000),
                     priorityLetter(prio), tag ? tag : "", static_cast<int>(getpid()), message);
    if (n < 0)
        return -EIO;
    if (n >= static_cast<int>(sizeof(line))) {
        n = sizeof(line) - 1;
        line[n - 1] = '\n';
    }
    // One write per line keeps lines whole when several processes log at once.
    if (write(STDERR_FILENO, line, n) < 0) {
        // Nothing sensible to do when stderr is gone; the log file still gets the line.
    }
    int fd = logFile();
    if (fd >= 0 && write(fd, line, n) < 0)
        return -EIO;
    return n;
}

int dlog_print(log_priority prio, const char *tag, const char *fmt, ...) {
    va_list ap;
    va_start(ap, fmt);
    int n = dlog_vprint(prio, tag, fmt, ap);
    va_end(ap);
    return n;
}

}  // extern "C"
