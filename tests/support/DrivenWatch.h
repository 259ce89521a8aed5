#ifndef QUILLSET_TESTS_DRIVEN_WATCH_H
#define QUILLSET_TESTS_DRIVEN_WATCH_H

#include <nlohmann/json.hpp>

#include <sys/types.h>

#include <string>

// The application on a simulated watch, driven through a pipe so that the test decides when
// each command runs and can change the watch from outside in between.
class DrivenWatch {
public:
    // profile: a shipped profile name or a profile file; state: the watch's state directory.
    DrivenWatch(const std::string &profile, const std::string &state);
    ~DrivenWatch();

    DrivenWatch(const DrivenWatch &) = delete;
    DrivenWatch &operator=(const DrivenWatch &) = delete;

    // Sends script commands, one a line.
    bool send(const std::string &commands);
    // The next screen the driver dumps; null on time-out or when the driver ended.
    nlohmann::json nextDump(double timeout = 20.0);
    // Ends the script and waits for the watch; the driver's exit status.
    int finish();

private:
    pid_t _pid = -1;
    int _in = -1;
    int _out = -1;
};

#endif
