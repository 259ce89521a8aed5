#include "PlatformLog.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include "StatePaths.h"

namespace sim {

namespace {

const char kOrder[] = "VDIWEF";
// "HH:MM:SS.mmm " comes before the priority letter.
const size_t kLetterAt = 13;

int rank(char letter) {
    const char *at = strchr(kOrder, letter);
    return at && letter ? static_cast<int>(at - kOrder) : -1;
}

// The letter and tag of a log line; false for a line that is none (part of a message).
bool parseLine(const std::string &line, char *letter, std::string *tag) {
    if (line.size() < kLetterAt + 3 || line[2] != ':' || line[8] != '.' ||
        line[kLetterAt + 1] != '/' || rank(line[kLetterAt]) < 0)
        return false;
    size_t open = line.find('(', kLetterAt + 2);
    if (open == std::string::npos)
        return false;
    *letter = line[kLetterAt];
    *tag = line.substr(kLetterAt + 2, open - kLetterAt - 2);
    return true;
}

}  // namespace

char PlatformLog::priority(const std::string &text) {
    static const char *const kNames[] = {"verbose", "debug", "info", "warn", "error", "fatal"};
    std::string lower = text;
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](unsigned char c) { return static_cast<char>(tolower(c)); });
    for (int k = 0; k < 6; ++k)
        if (lower == kNames[k] || (lower.size() == 1 && toupper(lower[0]) == kOrder[k]))
            return kOrder[k];
    return 0;
}

bool PlatformLog::_accepts(const std::string &line) {
    char letter;
    std::string tag;
    if (!parseLine(line, &letter, &tag))
        return _lastAccepted;
    _lastAccepted = rank(letter) >= rank(_minimum) &&
                    (_tags.empty() || std::find(_tags.begin(), _tags.end(), tag) != _tags.end());
    return _lastAccepted;
}

int PlatformLog::show(const std::string &stateDir, bool follow) {
    const std::string path = stateDir + "/platform.log";
    int fd = -1;
    ino_t inode = 0;
    std::string partial;
    for (;;) {
        struct stat st;
        bool exists = stat(path.c_str(), &st) == 0;
        // A watch started again with --fresh begins a new buffer.
        if (fd >= 0 && (!exists || st.st_ino != inode)) {
            close(fd);
            fd = -1;
            partial.clear();
        }
        if (fd < 0 && exists) {
            fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
            if (fd < 0) {
                fprintf(stderr, "quillset-sim: %s\n", sysError("open", path, errno).c_str());
                return 1;
            }
            inode = st.st_ino;
        }
        char buffer[65536];
        ssize_t n = 0;
        while (fd >= 0 && (n = read(fd, buffer, sizeof(buffer))) > 0) {
            partial.append(buffer, static_cast<size_t>(n));
            size_t start = 0, end;
            while ((end = partial.find('\n', start)) != std::string::npos) {
                std::string line = partial.substr(start, end - start);
                if (_accepts(line))
                    printf("%s\n", line.c_str());
                start = end + 1;
            }
            partial.erase(0, start);
        }
        fflush(stdout);
        if (!follow || !isDirectory(stateDir))
            break;
        usleep(100000);
    }
    if (fd >= 0)
        close(fd);
    return 0;
}

}  // namespace sim
