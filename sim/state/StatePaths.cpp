#include "StatePaths.h"

#include <fcntl.h>
#include <ftw.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>

namespace sim {

const char *const kTempMarker = ".tmp.";

std::string sysError(const char *call, const std::string &arg, int err) {
    return std::string(call) + "(" + arg + "): " + strerror(err);
}

std::string stateDirFromEnv() {
    const char *dir = getenv("QUILLSET_STATE");
    return dir && *dir ? dir : "";
}

std::string executableDir() {
    char path[PATH_MAX];
    ssize_t n = readlink("/proc/self/exe", path, sizeof(path) - 1);
    if (n <= 0)
        return ".";
    path[n] = '\0';
    std::string dir(path);
    size_t slash = dir.rfind('/');
    return slash == 0 ? "/" : dir.substr(0, slash);
}

std::string dataDir() {
    const char *env = getenv("QUILLSET_DATA_DIR");
    if (env && *env)
        return env;
    std::string bin = executableDir();
    size_t slash = bin.rfind('/');
    return slash == std::string::npos || slash == 0 ? "/" : bin.substr(0, slash);
}

std::string profilesDir() {
    return dataDir() + "/profiles";
}

std::string absolutePath(const std::string &path) {
    if (path.empty() || path[0] == '/')
        return path;
    char cwd[PATH_MAX];
    if (!getcwd(cwd, sizeof(cwd)))
        return path;
    std::string relative = path;
    while (relative.compare(0, 2, "./") == 0)
        relative.erase(0, 2);
    return std::string(cwd) + "/" + relative;
}

bool isDirectory(const std::string &path) {
    struct stat st;
    return stat(path.c_str(), &st) == 0 && S_ISDIR(st.st_mode);
}

bool fileExists(const std::string &path) {
    struct stat st;
    return lstat(path.c_str(), &st) == 0;
}

bool makeDirs(const std::string &path, std::string *error) {
    if (path.empty()) {
        if (error)
            *error = sysError("mkdir", path, ENOENT);
        return false;
    }
    size_t pos = 0;
    while (pos != std::string::npos) {
        pos = path.find('/', pos + 1);
        std::string partial = path.substr(0, pos);
        if (partial.empty())
            continue;
        if (mkdir(partial.c_str(), 0755) == 0)
            continue;
        int err = errno;
        if (err == EEXIST && isDirectory(partial))
            continue;
        if (error)
            *error = sysError("mkdir", partial, err == EEXIST ? ENOTDIR : err);
        return false;
    }
    return true;
}

bool writeFileAtomic(const std::string &path, const std::string &content, std::string *error) {
    // Unique per process and per write, so concurrent writers never share a temporary file.
    static std::atomic<unsigned> counter{0};
    std::string tmp =
        path + kTempMarker + std::to_string(getpid()) + "." + std::to_string(counter.fetch_add(1));
    int fd = open(tmp.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
    if (fd < 0) {
        if (error)
            *error = sysError("open", tmp, errno);
        return false;
    }
    size_t written = 0;
    while (written < content.size()) {
        ssize_t n = write(fd, content.data() + written, content.size() - written);
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0) {
            int err = errno;
            close(fd);
            unlink(tmp.c_str());
            if (error)
                *error = sysError("write", tmp, err);
            return false;
        }
        written += static_cast<size_t>(n);
    }
    if (close(fd) != 0) {
        int err = errno;
        unlink(tmp.c_str());
        if (error)
            *error = sysError("close", tmp, err);
        return false;
    }
    if (rename(tmp.c_str(), path.c_str()) != 0) {
        int err = errno;
        unlink(tmp.c_str());
        if (error)
            *error = sysError("rename", path, err);
        return false;
    }
    return true;
}

bool readFile(const std::string &path, std::string *content, std::string *error, int *err) {
    auto failed = [&](const char *call, int code) {
        if (error)
            *error = sysError(call, path, code);
        if (err)
            *err = code;
        return false;
    };
    int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        return failed("open", errno);
    content->clear();
    char buffer[4096];
    for (;;) {
        ssize_t n = read(fd, buffer, sizeof(buffer));
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0) {
            int code = errno;
            close(fd);
            return failed("read", code);
        }
        if (n == 0)
            break;
        content->append(buffer, static_cast<size_t>(n));
    }
    close(fd);
    return true;
}

namespace {

thread_local std::string *t_removeError;

int removeEntry(const char *path, const struct stat *, int type, struct FTW *) {
    int rc = type == FTW_DP ? rmdir(path) : unlink(path);
    if (rc != 0 && errno != ENOENT) {
        if (t_removeError)
            *t_removeError = sysError(type == FTW_DP ? "rmdir" : "unlink", path, errno);
        return 1;
    }
    return 0;
}

}  // namespace

bool removeTree(const std::string &path, std::string *error) {
    if (!fileExists(path))
        return true;
    std::string reason;
    t_removeError = &reason;
    int rc = nftw(path.c_str(), removeEntry, 16, FTW_DEPTH | FTW_PHYS);
    t_removeError = nullptr;
    if (rc != 0) {
        if (error)
            *error = reason.empty() ? sysError("nftw", path, errno) : reason;
        return false;
    }
    return true;
}

}  // namespace sim
