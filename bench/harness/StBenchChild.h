#ifndef _ST_BENCH_CHILD_H_
#define _ST_BENCH_CHILD_H_

#include <sys/types.h>

#include <cstdint>
#include <string>
#include <vector>

// One program the benchmark starts with the probe loaded: its event pipe on fd 3, its command
// pipe on fd 4. Times are CLOCK_MONOTONIC nanoseconds, the clock the probe reports in.
class StBenchChild {
public:
    StBenchChild();
    ~StBenchChild();

    // Starts argv with env added to this process's environment; startTime() is taken just
    // before the program is executed.
    bool start(const std::vector<std::string> &argv, const std::vector<std::string> &env,
               std::string *error);
    int64_t startTime() const { return _startTime; }

    void send(const std::string &command);
    // The next event line whose first word is one of words; error events and silence end
    // the wait with false.
    bool waitFor(const std::vector<std::string> &words, std::vector<std::string> *fields,
                 std::string *error, int timeoutMs = 30000);
    // Waits for the program to end; its peak resident set in kilobytes.
    bool finish(long *maxRssKb, std::string *error);

    static int64_t now();

    StBenchChild(const StBenchChild &) = delete;
    StBenchChild &operator=(const StBenchChild &) = delete;

private:
    void _kill();

    pid_t _pid;
    int _events;
    int _commands;
    std::string _buffer;
    int64_t _startTime;
};

#endif
