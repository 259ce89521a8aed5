#include "PlatformState.h"

#include <dlog.h>

#include <algorithm>
#include <cstdio>
#include <memory>

#include "Profile.h"
#include "StatePaths.h"
#include "UsageDb.h"

namespace platform {

namespace {

const char *const kTag = "PLATFORM";

struct Cache {
    bool profileLoaded = false;
    nlohmann::json profile = nlohmann::json::object();
    std::unique_ptr<sim::UsageDb> usage;
    bool usageTried = false;
};

Cache &cache() {
    static Cache c;
    return c;
}

sim::UsageDb *usageDb() {
    Cache &c = cache();
    if (!c.usageTried) {
        c.usageTried = true;
        if (stateDir().empty())
            return nullptr;
        auto db = std::make_unique<sim::UsageDb>();
        std::string error;
        if (!db->open(stateDir(), &error)) {
            dlog_print(DLOG_ERROR, kTag, "usage database: %s", error.c_str());
            return nullptr;
        }
        c.usage = std::move(db);
    }
    return c.usage.get();
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
                "watch's settings, profile and usage database are unavailable)\n");
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
    cache().usageTried = false;
    cache().usage.reset();
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
    const nlohmann::json &p = profile();
    auto faults = p.find("faults");
    if (faults == p.end() || !faults->is_array() || !call)
        return false;
    for (const auto &entry : *faults) {
        if (!entry.is_object() || entry.value("call", "") != call)
            continue;
        if (entry.contains("key") && (!key || entry.value("key", "") != key))
            continue;
        if (code)
            *code = entry.value("code", -1);
        return true;
    }
    return false;
}

bool recordUsage(const std::string &uri, const std::string &appId, const std::string &feature,
                 const char *extra, const char *value) {
    sim::UsageDb *db = usageDb();
    std::string error;
    if (!db || !db->addRecord(uri, appId, feature, extra, value, &error)) {
        dlog_print(DLOG_ERROR, kTag, "usage record %s not stored: %s", feature.c_str(),
                   db ? error.c_str() : "no usage database");
        return false;
    }
    return true;
}

long long journal(const char *request, const std::string &appId, const std::string &operation,
                  const std::string &extraJson, int launchMode, int result, long long launchId) {
    sim::UsageDb *db = usageDb();
    std::string error;
    long long id = db ? db->addJournal(request, appId, operation, extraJson, launchMode, result,
                                       launchId, &error)
                      : 0;
    if (!id)
        dlog_print(DLOG_ERROR, kTag, "%s request for %s not journalled: %s", request, appId.c_str(),
                   db ? error.c_str() : "no usage database");
    return id;
}

}  // namespace platform
