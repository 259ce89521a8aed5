#ifndef QUILLSET_SIM_RUN_H
#define QUILLSET_SIM_RUN_H

#include <string>
#include <vector>

namespace sim {

struct RunOptions {
    std::string profile = "default";  // a name in <data dir>/profiles or a file path
    bool profileGiven = false;
    std::string stateDir;  // empty: $QUILLSET_STATE, else a temporary directory
    bool fresh = false;
    // An accessibility bus (and a session bus when there is none) with the screen reader on.
    bool accessibility = false;
    std::vector<std::string> command;
};

// Brings up a simulated watch (state directory, private system bus, services daemon, with
// --a11y the accessibility bus), runs
// the command in it, tears everything down in every case and returns the command's exit
// status (128 + signal when it was killed; 1 or 2 when the watch could not be started).
int runWatch(const RunOptions &options);

}  // namespace sim

#endif
