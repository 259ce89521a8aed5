#ifndef QUILLSET_SIM_PLATFORM_LOG_H
#define QUILLSET_SIM_PLATFORM_LOG_H

#include <string>
#include <vector>

namespace sim {

// The watch's log buffer (<state>/platform.log) read as the platform's log reader reads its
// own: lines of "HH:MM:SS.mmm P/TAG(PID): message", priorities V D I W E F from verbose to
// fatal, a priority filter meaning that priority and above.
class PlatformLog {
public:
    // "W", "w" or "warn" (and the other priorities alike) -> 'W'; 0 when text is none of them.
    static char priority(const std::string &text);

    void setMinimum(char priority) { _minimum = priority; }
    // Only lines of these tags (any of them); every tag when none is given.
    void addTag(const std::string &tag) { _tags.push_back(tag); }

    // Prints the buffer's lines that pass the filters; with follow, goes on printing lines as
    // they are logged until the watch's state directory goes away. Returns the exit status.
    int show(const std::string &stateDir, bool follow);

private:
    bool _accepts(const std::string &line);

    char _minimum = 'V';
    std::vector<std::string> _tags;
    bool _lastAccepted = false;  // a line that is no log line belongs to the one before
};

}  // namespace sim

#endif
