#ifndef QUILLSET_SIM_STATE_PATHS_H
#define QUILLSET_SIM_STATE_PATHS_H

#include <string>

// Where the simulated watch keeps things, and the few file operations its state needs. Every
// failure comes back as a sentence naming the OS call, its argument and the errno text.
namespace sim {

// The state directory of the running watch ($QUILLSET_STATE), or "" when none is set.
std::string stateDirFromEnv();

// The tree the programs were built or installed into (build/ or the install prefix): the
// parent of the directory holding the running executable, or $QUILLSET_DATA_DIR.
std::string dataDir();

// The directory holding the running executable.
std::string executableDir();

// The shipped device profiles: <data dir>/profiles.
std::string profilesDir();

// "call(arg): strerror(err)".
std::string sysError(const char *call, const std::string &arg, int err);

// An absolute form of path (relative paths are taken from the working directory).
std::string absolutePath(const std::string &path);

bool isDirectory(const std::string &path);
bool fileExists(const std::string &path);

// mkdir -p.
bool makeDirs(const std::string &path, std::string *error);

// Writes a file atomically: a temporary file in the same directory, then rename, so that a
// reader sees the old content or the new one, never a part.
bool writeFileAtomic(const std::string &path, const std::string &content, std::string *error);

// The whole file; err (optional) receives the errno of a failure.
bool readFile(const std::string &path, std::string *content, std::string *error,
              int *err = nullptr);

// rm -rf, without following symbolic links; a missing path is not an error.
bool removeTree(const std::string &path, std::string *error);

// Temporary files of writeFileAtomic carry this in their name; watchers skip them.
extern const char *const kTempMarker;

}  // namespace sim

#endif
