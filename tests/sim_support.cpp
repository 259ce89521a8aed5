#include "sim_support.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>

#include "StatePaths.h"

namespace simtest {

TempDir::TempDir() {
    char tmpl[] = "/tmp/quillset-simtest-XXXXXX";
    if (!mkdtemp(tmpl))
        abort();
    _path = tmpl;
}

TempDir::~TempDir() {
    std::string error;
    if (!sim::removeTree(_path, &error))
        fprintf(stderr, "%s\n", error.c_str());
}

pid_t start(const std::vector<std::string> &argv, const std::map<std::string, std::string> &env,
            const std::string &outFile, const std::string &errFile) {
    pid_t pid = fork();
    if (pid != 0)
        return pid;
    unsetenv("DBUS_SYSTEM_BUS_ADDRESS");
    unsetenv("QUILLSET_STATE");
    for (const auto &entry : env)
        setenv(entry.first.c_str(), entry.second.c_str(), 1);
    int in = open("/dev/null", O_RDONLY);
    int out = open(outFile.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    int err = open(errFile.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    if (in < 0 || out < 0 || err < 0)
        _exit(126);
    dup2(in, STDIN_FILENO);
    dup2(out, STDOUT_FILENO);
    dup2(err, STDERR_FILENO);
    std::vector<char *> args;
    for (const std::string &arg : argv)
        args.push_back(const_cast<char *>(arg.c_str()));
    args.push_back(nullptr);
    execvp(args[0], args.data());
    fprintf(stderr, "cannot run %s: %s\n", args[0], strerror(errno));
    _exit(127);
}

CommandResult run(const std::vector<std::string> &argv,
                  const std::map<std::string, std::string> &env) {
    TempDir output;
    CommandResult result;
    pid_t pid = start(argv, env, output / "out", output / "err");
    int status = 0;
    while (waitpid(pid, &status, 0) < 0) {
        if (errno != EINTR)
            return result;
    }
    result.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    result.out = readText(output / "out");
    result.err = readText(output / "err");
    return result;
}

CommandResult quillsetSim(std::vector<std::string> args,
                          const std::map<std::string, std::string> &env) {
    args.insert(args.begin(), program("quillset-sim"));
    return run(args, env);
}

std::string program(const std::string &name) {
    return sim::executableDir() + "/" + name;
}

std::string readText(const std::string &path) {
    std::ifstream in(path, std::ios::binary);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

void writeText(const std::string &path, const std::string &text) {
    std::ofstream(path, std::ios::binary | std::ios::trunc) << text;
}

bool contains(const std::string &text, const std::string &part) {
    return text.find(part) != std::string::npos;
}

}  // namespace simtest
