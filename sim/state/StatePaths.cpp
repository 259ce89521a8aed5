#include "StatePaths.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>

namespace sim {

namespace {
std::string callError(const char *call, const std::string &path) {
    return std::string(call) + "(" + path + "): " + strerror(errno);
}
}  // namespace

std::string stateDirFromEnv() {
    const char *dir = getenv("QUILLSET_STATE");
    return dir && *dir ? dir : "";
}

std::string dataDir() {
    const char *env = getenv("QUILLSET_DATA_DIR");
    if (env && *env)
        return env;
    char path[PATH_MAX];
    ssize_t n = readlink("/proc/self/exe", path, sizeof(path) - 1);
    if (n <= 0)
        return ".";
    path[n] = '\0';
    std::string dir(path);
    dir = dir.substr(0, dir.rfind('/'));  // bin/
    return dir.substr(0, dir.rfind('/'));
}

bool makeDirs(const std::string &path, std::string *error) {
    std::string partial;
    size_t pos = 0;
    while (pos != std::string::npos) {
        pos = path.find('/', pos + 1);
        partial = path.substr(0, pos);
        if (partial.empty())
            continue;
        if (mkdir(partial.c_str(), 0755) != 0 && errno != EEXIST) {
            if (error)
                *error = callError("mkdir", partial);
            return false;
        }
    }
    return true;
}

bool writeFileAtomic(const std::string &path, const std::string &content, std::string *error) {
    std::string tmp = path + ".tmp." + std::to_string(getpid());
    int fd = open(tmp.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (fd < 0) {
        if (error)
            *error = callError("open", tmp);
        return false;
    }
    size_t written = 0;
    while (written < content.size()) {
        ssize_t n = write(fd, content.data() + written, content.size() - written);
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0) {
            if (error)
                *error = callError("write", tmp);
            close(fd);
            unlink(tmp.c_str());
            return false;
        }
        written += n;
    }
    if (close(fd) != 0) {
        if (error)
            *error = callError("close", tmp);
        unlink(tmp.c_str());
        return false;
    }
    if (rename(tmp.c_str(), path.c_str()) != 0) {
        if (error)
            *error = callError("rename", path);
        unlink(tmp.c_str());
        return false;
    }
    return true;
}

bool readFile(const std::string &path, std::string *content, std::string *error) {
    int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) {
        if (error)
            *error = callError("open", path);
        return false;
    }
    content->clear();
    char buffer[4096];
    for (;;) {
        ssize_t n = read(fd, buffer, sizeof(buffer));
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0) {
            if (error)
                *error = callError("read", path);
            close(fd);
            return false;
        }
        if (n == 0)
            break;
        content->append(buffer, n);
    }
    close(fd);
    return true;
}

}  // namespace sim
