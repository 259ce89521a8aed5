#ifndef QUILLSET_SIM_RUN_H
#define QUILLSET_SIM_RUN_H

#include <string>
#include <vector>

namespace sim {

struct RunOptions {
    std::string profile = "default";
    std::string stateDir;  // empty: $QUILLSET_STATE or a temporary directory
    bool fresh = false;
    std::vector<std::string> command;
};

// Brings up a simulated watch (state directory, private bus, services daemon), runs the
// command in it, tears everything down and returns the command's exit status.
int runWatch(const RunOptions &options);

}  // namespace sim

#endif
