#include "PlatformState.h"

#include <dlog.h>

#include <algorithm>
#include <cstdio>

#include "Profile.h"
#include "StatePaths.h"

namespace platform {

namespace {

const char *const kTag = "PLATFORM";

struct Cache {
    bool profileLoaded = false;
    nlohmann::json profile = nlohmann::json::object();
};

Cache &cache() {
    static Cache c;
    return c;
}

}  // namespace

const std::string &stateDir() {
    static std::string dir;
    static bool warned = false;
    dir = sim::stateDirFromEnv();
    if (dir.empty() && !warned) {
        warned = true;
        fprintf(stderr,
                "QUILLSET_STATE is not set: start the program with `quillset-sim run` (the "
                "watch's settings and profile are unavailable)\n");
    }
    return dir;
}

bool hasState() {
    return !stateDir().empty();
}

const std::string &dataDir() {
    static const std::string dir = sim::dataDir();
    return dir;
}

const nlohmann::json &profile() {
    Cache &c = cache();
    if (!c.profileLoaded) {
        c.profileLoaded = true;
        c.profile = nlohmann::json::object();
        if (!stateDir().empty()) {
            sim::Profile loaded;
            std::string error;
            if (loaded.load(stateDir() + "/profile.json", &error))
                c.profile = loaded.json();
            else
                dlog_print(DLOG_ERROR, kTag, "device profile: %s", error.c_str());
        }
    }
    return c.profile;
}

void reloadProfile() {
    cache().profileLoaded = false;
}

double latencySeconds(const char *key) {
    const nlohmann::json &p = profile();
    auto latency = p.find("latency");
    if (latency == p.end() || !latency->is_object())
        return 0.0;
    auto it = latency->find(key);
    if (it == latency->end() || !it->is_number() || it->get<double>() < 0)
        return 0.0;
    return it->get<double>() / 1000.0;
}

double longestLatencySeconds() {
    const nlohmann::json &p = profile();
    auto latency = p.find("latency");
    double longest = 0.0;
    if (latency != p.end() && latency->is_object())
        for (const auto &item : latency->items())
            longest = std::max(longest, latencySeconds(item.key().c_str()));
    return longest;
}

namespace {
int g_repliesAwaited = 0;
}  // namespace

void awaitReplies(int change) {
    g_repliesAwaited = std::max(0, g_repliesAwaited + change);
}

int repliesAwaited() {
    return g_repliesAwaited;
}

bool fault(const char *call, const char *key, int *code) {
    return sim::Profile::fault(profile(), call, key, code);
}

}  // namespace platform
