// The vconf stand-in: typed reads and writes over the watch's settings store, change
// notification across processes on the Ecore main loop, and injected faults.

#include <gtest/gtest.h>
#include <vconf.h>

#include <sys/stat.h>

#include <chrono>

#include "SettingsStore.h"
#include "sim_platform_support.h"

using simtest::contains;
using simtest::runMainLoopUntil;

namespace {

struct Seen {
    int calls = 0;
    std::string name;
    std::string value;  // as "bool true", "int 4", "string XEU" or "none"
    std::chrono::system_clock::time_point at;
};

void recordCb(keynode_t *node, void *data) {
    auto *seen = static_cast<Seen *>(data);
    ++seen->calls;
    seen->at = std::chrono::system_clock::now();
    seen->name = vconf_keynode_get_name(node);
    int type = vconf_keynode_get_type(node);
    seen->value = type == VCONF_TYPE_BOOL
                      ? vconf_keynode_get_bool(node) ? "bool true" : "bool false"
                  : type == VCONF_TYPE_INT    ? "int " + std::to_string(vconf_keynode_get_int(node))
                  : type == VCONF_TYPE_STRING ? std::string("string ") + vconf_keynode_get_str(node)
                                              : "none";
}

// A second callback, so that one key can have two watchers.
void otherCb(keynode_t *node, void *data) {
    recordCb(node, data);
}

// Stops watching from inside its own call and starts another watcher (data: two Seen).
void selfRemovingCb(keynode_t *node, void *data) {
    recordCb(node, data);
    vconf_ignore_key_changed("db/test/a", selfRemovingCb);
    vconf_notify_key_changed("db/test/a", otherCb, static_cast<Seen *>(data) + 1);
}

class VconfTest : public simtest::StateTest {
protected:
    void TearDown() override {
        for (const char *key : {"db/test/a", "db/test/b", "db/new/group/key"}) {
            for (vconf_callback_fn cb : {recordCb, otherCb, selfRemovingCb})
                vconf_ignore_key_changed(key, cb);
        }
        StateTest::TearDown();
    }

    std::string path(const std::string &key) const { return _state / ("settings/" + key); }
};

}  // namespace

TEST_F(VconfTest, ValuesKeepTheirTypeAndFailedCallsAreLoggedAndLoseNothing) {
    ASSERT_EQ(vconf_set_bool("db/test/bool", 7), VCONF_OK);
    ASSERT_EQ(vconf_set_int("db/test/a", -42), VCONF_OK);
    ASSERT_EQ(vconf_set_str("db/test/string", "Kesta \xE2\x9C\x93"), VCONF_OK);
    char *s = vconf_get_str("db/test/string");
    EXPECT_STREQ(s, "Kesta \xE2\x9C\x93");
    free(s);
    int b = -1, i = 5;
    EXPECT_TRUE(vconf_get_bool("db/test/bool", &b) == VCONF_OK && b == 1) << "true is 1";
    EXPECT_EQ(vconf_get_int("db/test/bool", &i), VCONF_ERROR_WRONG_TYPE);
    EXPECT_EQ(vconf_get_str("db/test/a"), nullptr);
    EXPECT_EQ(vconf_get_int("db/test/missing", &i), VCONF_ERROR_FILE_NO_ENT);
    EXPECT_EQ(vconf_set_int("db/test/a/below", 2), VCONF_ERROR);
    EXPECT_EQ(vconf_set_int("db/test", 2), VCONF_ERROR);
    EXPECT_EQ(vconf_set_int("../outside", 2), VCONF_ERROR);
    simtest::writeText(path("db/test/bool"), "int:1x");
    EXPECT_EQ(vconf_get_int("db/test/bool", &i), VCONF_ERROR);
    EXPECT_EQ(i, 5) << "a failed read leaves the caller's value alone";
    EXPECT_TRUE(vconf_get_int("db/test/a", &i) == VCONF_OK && i == -42);
    std::string log = platformLog();
    for (const std::string &line : std::vector<std::string>{
             " E/VCONF(", "vconf_set_int(db/test/a/below): mkdir(",
             "vconf_set_int(db/test): db/test: is a group of keys",
             "vconf_get_int(db/test/bool): " + path("db/test/bool") +
                 ": corrupt value (an int is a 32-bit decimal integer, not '1x')"})
        EXPECT_TRUE(contains(log, line)) << line << "\n" << log;
}

TEST_F(VconfTest, ChangesFromAnotherProcessArriveOnTheMainLoopWithin100ms) {
    // The key's group does not exist yet either.
    const std::string key = "db/new/group/key";
    Seen seen;
    ASSERT_EQ(vconf_notify_key_changed(key.c_str(), recordCb, &seen), VCONF_OK);
    // Written while the main loop waits, which can only lengthen the time measured.
    simtest::CommandResult r =
        simtest::quillsetSim({"set", key, "bool", "true"}, {{"QUILLSET_STATE", _state.path()}});
    ASSERT_TRUE(runMainLoopUntil([&] { return seen.calls > 0; }, 5.0)) << r.err;
    EXPECT_EQ(seen.name + " = " + seen.value, key + " = bool true");
    struct stat st;
    ASSERT_EQ(stat(path(key).c_str(), &st), 0);
    auto written = std::chrono::system_clock::from_time_t(st.st_mtim.tv_sec) +
                   std::chrono::nanoseconds(st.st_mtim.tv_nsec);
    EXPECT_LT(seen.at - written, std::chrono::milliseconds(100)) << "from write to callback";

    // A removed or corrupt value is no value; written again, by anyone, it comes back.
    std::string error;
    ASSERT_EQ(sim::SettingsStore(_state.path()).remove(key, &error), sim::SettingsStore::Ok);
    ASSERT_TRUE(runMainLoopUntil([&] { return seen.calls > 1; }, 2.0));
    EXPECT_EQ(seen.value, "none");
    simtest::writeText(path(key), "int:three");
    ASSERT_TRUE(runMainLoopUntil([&] { return seen.calls > 2; }, 2.0));
    EXPECT_EQ(seen.value, "none");
    EXPECT_TRUE(contains(platformLog(), "change of " + key + ": "));
    ASSERT_EQ(vconf_set_int(key.c_str(), 4), VCONF_OK);
    ASSERT_TRUE(runMainLoopUntil([&] { return seen.value == "int 4"; }, 2.0)) << seen.value;
}

TEST_F(VconfTest, OwnWritesReachEveryRegisteredWatcherFromTheMainLoop) {
    Seen first, second, other;
    ASSERT_EQ(vconf_notify_key_changed("db/test/a", recordCb, &first), VCONF_OK);
    ASSERT_EQ(vconf_notify_key_changed("db/test/a", otherCb, &second), VCONF_OK);
    EXPECT_EQ(vconf_notify_key_changed("db/test/a", recordCb, &other), VCONF_ERROR) << "twice";
    ASSERT_EQ(vconf_notify_key_changed("db/test/b", recordCb, &other), VCONF_OK);
    ASSERT_EQ(vconf_set_str("db/test/a", "XEU"), VCONF_OK);
    EXPECT_EQ(first.calls, 0) << "not from inside vconf_set_str";
    ASSERT_TRUE(runMainLoopUntil([&] { return second.calls > 0; }, 2.0));
    EXPECT_EQ(first.value + ", " + second.value, "string XEU, string XEU");

    ASSERT_EQ(vconf_ignore_key_changed("db/test/a", recordCb), VCONF_OK);
    EXPECT_EQ(vconf_ignore_key_changed("db/test/a", recordCb), VCONF_ERROR);
    ASSERT_EQ(vconf_set_int("db/test/a", 1), VCONF_OK);
    ASSERT_EQ(vconf_set_int("db/test/b", 1), VCONF_OK);
    ASSERT_TRUE(runMainLoopUntil([&] { return second.calls > 1 && other.calls > 0; }, 2.0));
    EXPECT_EQ(first.calls, 1) << "the ignored registration heard nothing more";
    EXPECT_EQ(other.name, "db/test/b");
}

TEST_F(VconfTest, CallbacksMayChangeRegistrationsWhileBeingCalled) {
    Seen self[2], later;
    ASSERT_EQ(vconf_notify_key_changed("db/test/a", selfRemovingCb, self), VCONF_OK);
    ASSERT_EQ(vconf_notify_key_changed("db/test/a", recordCb, &later), VCONF_OK);
    ASSERT_EQ(vconf_set_int("db/test/a", 1), VCONF_OK);
    ASSERT_TRUE(runMainLoopUntil([&] { return later.calls > 0; }, 2.0));
    EXPECT_EQ(self[1].calls, 0) << "a watcher added during a change starts with the next one";
    ASSERT_EQ(vconf_set_int("db/test/a", 2), VCONF_OK);
    ASSERT_TRUE(runMainLoopUntil([&] { return later.calls > 1; }, 2.0));
    EXPECT_EQ(self[0].calls, 1);
    EXPECT_EQ(self[1].calls, 1);
}

TEST_F(VconfTest, FaultsFailTheNamedCallForTheNamedKeyOnly) {
    useProfile(R"({"faults": [
        {"call": "vconf_get_bool", "key": "db/test/a", "code": -5},
        {"call": "vconf_set_int", "code": -3},
        {"call": "vconf_notify_key_changed", "key": "db/test/b", "code": -9}]})");
    ASSERT_EQ(vconf_set_bool("db/test/a", 1), VCONF_OK);
    ASSERT_EQ(vconf_set_bool("db/test/b", 1), VCONF_OK);
    int value = 7;
    EXPECT_EQ(vconf_get_bool("db/test/a", &value), -5);
    EXPECT_EQ(value, 7);
    EXPECT_EQ(vconf_get_bool("db/test/b", &value), VCONF_OK);
    EXPECT_EQ(vconf_set_int("db/test/c", 1), -3);
    EXPECT_EQ(vconf_get_int("db/test/c", &value), VCONF_ERROR_FILE_NO_ENT) << "nothing written";
    EXPECT_TRUE(contains(platformLog(), "vconf_set_int(db/test/c): failed (injected fault -3)"));
    Seen seen;
    EXPECT_EQ(vconf_notify_key_changed("db/test/b", recordCb, &seen), -9);
    EXPECT_EQ(vconf_notify_key_changed("db/test/a", recordCb, &seen), VCONF_OK);
}
