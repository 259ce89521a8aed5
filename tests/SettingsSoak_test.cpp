// The settings store under load: another process toggling, then deleting, the debugging key
// while the About list is open, and writers killed in the middle of their writes. `make test` runs
// a short version of each; `make soak` (QUILLSET_SOAK=1) the full one and prints what it measured.

#include <gtest/gtest.h>

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "SettingsStore.h"
#include "support/DrivenWatch.h"
#include "support/SimulatedWatch.h"

namespace {

bool fullSoak() {
    const char *soak = getenv("QUILLSET_SOAK");
    return soak && *soak && strcmp(soak, "0") != 0;
}

}  // namespace

TEST(Soak, SwitchShowsTheFinalValueAfterAnotherProcessTogglesIt) {
    const int toggles = fullSoak() ? 10000 : 200;
    char tmpl[] = "/tmp/quillset-soak-XXXXXX";
    ASSERT_NE(mkdtemp(tmpl), nullptr);
    std::string state = tmpl;
    const std::string key = "db/setting/debug_mode";
    const std::string label = "Debugging";
    {
        DrivenWatch watch("default", state);
        // The switch must be on screen, where only the model's signal moves it.
        watch.send("bezel 12\ndump\n");
        nlohmann::json before = watch.nextDump();
        ASSERT_TRUE(before.is_object()) << "the list did not open";
        ASSERT_EQ(rowWithLabel(before, label)["check"], false);

        sim::SettingsStore store(state);
        std::string error;
        for (int i = 0; i < toggles; ++i) {
            // The last write turns debugging on.
            bool on = (toggles - 1 - i) % 2 == 0;
            ASSERT_EQ(store.write(key, sim::SettingValue::ofBool(on), &error),
                      sim::SettingsStore::Ok)
                << error;
        }
        // The application may still be working through the changes: look again for a while.
        nlohmann::json after;
        for (int look = 0; look < 20; ++look) {
            watch.send("wait 500\ndump\n");
            after = watch.nextDump();
            ASSERT_TRUE(after.is_object()) << "the application stopped while the key changed";
            if (rowWithLabel(after, label)["check"] == true)
                break;
        }
        EXPECT_EQ(rowWithLabel(after, label)["check"], true);
        // Deleted, the key reads as off, and a tap asks before turning debugging on.
        ASSERT_EQ(store.remove(key, &error), sim::SettingsStore::Ok) << error;
        nlohmann::json deleted = after;
        for (int look = 0; look < 10 && rowWithLabel(deleted, label)["check"] != false; ++look) {
            watch.send("wait 300\ndump\n");
            deleted = watch.nextDump();
        }
        EXPECT_EQ(rowWithLabel(deleted, label)["check"], false);
        watch.send("tap WDS_ST_MBODY_DEBUGGING_ABB\ndump\n");
        EXPECT_TRUE(watch.nextDump()["popup"].is_object());
        watch.send("quit\n");
        EXPECT_EQ(watch.finish(), 0);
        printf(
            "toggles: %d writes of %s by another process; the switch shows %s, and %s once "
            "the key is deleted\n",
            toggles, key.c_str(), rowWithLabel(after, label)["check"].dump().c_str(),
            rowWithLabel(deleted, label)["check"].dump().c_str());
    }
    std::string cmd = "rm -rf '" + state + "'";
    EXPECT_EQ(system(cmd.c_str()), 0);
}

TEST(Soak, WritersKilledMidWriteLeaveEveryKeyOldOrNew) {
    const int kills = fullSoak() ? 1000 : 50;
    const int keys = 8;
    char tmpl[] = "/tmp/quillset-kill-XXXXXX";
    ASSERT_NE(mkdtemp(tmpl), nullptr);
    std::string state = tmpl;
    sim::SettingsStore store(state);
    std::string error;
    auto keyName = [](int k) { return "db/soak/key" + std::to_string(k); };
    // Write n gives key n % keys the value n; so after any prefix of writes every key holds
    // the last value written to it, and a key holding anything else was damaged.
    for (int k = 0; k < keys; ++k)
        ASSERT_EQ(store.write(keyName(k), sim::SettingValue::ofInt(k), &error),
                  sim::SettingsStore::Ok)
            << error;
    std::mt19937 random(12345);
    int next = keys;
    long writes = 0;
    for (int round = 0; round < kills; ++round) {
        pid_t writer = fork();
        ASSERT_GE(writer, 0);
        if (writer == 0) {
            for (int n = next;; ++n)
                store.write(keyName(n % keys), sim::SettingValue::ofInt(n), nullptr);
        }
        usleep(200 + random() % 4800);
        kill(writer, SIGKILL);
        waitpid(writer, nullptr, 0);
        int newest = -1;
        std::vector<int> values(keys, -1);
        for (int k = 0; k < keys; ++k) {
            sim::SettingValue value;
            ASSERT_EQ(store.read(keyName(k), &value, &error), sim::SettingsStore::Ok)
                << "round " << round << ": " << error;
            ASSERT_EQ(value.type, sim::SettingValue::Int);
            values[k] = value.i;
            newest = std::max(newest, value.i);
        }
        for (int k = 0; k < keys; ++k) {
            // The last write to key k at or before the newest one that landed.
            int expected = newest - ((newest - k) % keys + keys) % keys;
            ASSERT_EQ(values[k], expected) << "round " << round << ", key " << k;
        }
        writes += newest + 1 - next;
        next = newest + 1;
    }
    printf(
        "kills: %d writers killed at random points after %ld completed writes; every key "
        "reads back as its old or its new value\n",
        kills, writes);
    std::string cmd = "rm -rf '" + state + "'";
    EXPECT_EQ(system(cmd.c_str()), 0);
}
