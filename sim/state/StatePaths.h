#ifndef QUILLSET_SIM_STATE_PATHS_H
#define QUILLSET_SIM_STATE_PATHS_H

#include <string>

namespace sim {

// The state directory of the running watch ($QUILLSET_STATE), or "" when none is set.
std::string stateDirFromEnv();

// The tree the programs were built or installed into (build/ or the install prefix): the
// parent of the directory holding the running executable, or $QUILLSET_DATA_DIR.
std::string dataDir();

// mkdir -p; false with a reason naming the call and errno.
bool makeDirs(const std::string &path, std::string *error);

// Writes a file atomically: a temporary file in the same directory, then rename.
bool writeFileAtomic(const std::string &path, const std::string &content, std::string *error);

bool readFile(const std::string &path, std::string *content, std::string *error);

}  // namespace sim

#endif
