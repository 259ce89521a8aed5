// The vconf stand-in: typed reads and writes over the watch's settings store, change
// notification across processes on the Ecore main loop, and injected faults.

#include <gtest/gtest.h>
#include <vconf.h>

#include <sys/stat.h>
#include <sys/wait.h>

#include <chrono>
#include <cstdlib>
#include <sstream>

#include "SettingsStore.h"
#include "sim_platform_support.h"

using simtest::contains;
using simtest::runMainLoopUntil;

namespace {

struct Seen {
    int calls = 0;
    std::string name, value;  // value: "bool true", "int 4", "double 2.5", "string XEU", "none"
    std::chrono::system_clock::time_point at;
};

void recordCb(keynode_t *node, void *data) {
    auto *seen = static_cast<Seen *>(data);
    ++seen->calls;
    seen->at = std::chrono::system_clock::now();
    seen->name = vconf_keynode_get_name(node);
    std::ostringstream value;
    switch (vconf_keynode_get_type(node)) {
        case VCONF_TYPE_BOOL:
            value << "bool " << (vconf_keynode_get_bool(node) ? "true" : "false");
            break;
        case VCONF_TYPE_INT:
            value << "int " << vconf_keynode_get_int(node);
            break;
        case VCONF_TYPE_DOUBLE:
            value << "double " << vconf_keynode_get_dbl(node);
            break;
        case VCONF_TYPE_STRING:
            value << "string " << vconf_keynode_get_str(node);
            break;
        default:
            value << "none";
    }
    seen->value = value.str();
}

// A second callback, so that one key can have two watchers.
void otherCb(keynode_t *node, void *data) {
    recordCb(node, data);
}

class VconfTest : public simtest::StateTest {
protected:
    void TearDown() override {
        for (const char *key : {"db/test/a", "db/test/b", "db/new/group/key"}) {
            vconf_ignore_key_changed(key, recordCb);
            vconf_ignore_key_changed(key, otherCb);
        }
        StateTest::TearDown();
    }

    std::string path(const std::string &key) const { return _state / ("settings/" + key); }
};

}  // namespace

TEST_F(VconfTest, ValuesKeepTheirTypeAndAReadOfAnotherTypeFails) {
    ASSERT_EQ(vconf_set_bool("db/test/bool", 7), VCONF_OK);
    ASSERT_EQ(vconf_set_int("db/test/int", -42), VCONF_OK);
    ASSERT_EQ(vconf_set_dbl("db/test/double", 0.1), VCONF_OK);
    ASSERT_EQ(vconf_set_str("db/test/string", "Kesta \xE2\x9C\x93"), VCONF_OK);
    int b = -1, i = -1;
    double d = -1;
    char *s = vconf_get_str("db/test/string");
    EXPECT_STREQ(s, "Kesta \xE2\x9C\x93");
    free(s);
    EXPECT_TRUE(vconf_get_bool("db/test/bool", &b) == VCONF_OK && b == 1) << "true is 1";
    EXPECT_TRUE(vconf_get_int("db/test/int", &i) == VCONF_OK && i == -42);
    EXPECT_TRUE(vconf_get_dbl("db/test/double", &d) == VCONF_OK && d == 0.1);

    i = 5;
    EXPECT_EQ(vconf_get_int("db/test/bool", &i), VCONF_ERROR_WRONG_TYPE);
    EXPECT_EQ(vconf_get_dbl("db/test/int", &d), VCONF_ERROR_WRONG_TYPE);
    EXPECT_EQ(vconf_get_str("db/test/int"), nullptr);
    EXPECT_EQ(vconf_get_int("db/test/missing", &i), VCONF_ERROR_FILE_NO_ENT);
    EXPECT_EQ(i, 5) << "a failed read leaves the caller's value alone";
    EXPECT_EQ(vconf_get_int(nullptr, &i), VCONF_ERROR);
}

TEST_F(VconfTest, FailedReadsAndWritesAreLoggedAndLoseNothing) {
    ASSERT_EQ(vconf_set_int("db/test/a", 1), VCONF_OK);
    EXPECT_EQ(vconf_set_int("db/test/a/below", 2), VCONF_ERROR);
    EXPECT_EQ(vconf_set_int("db/test", 2), VCONF_ERROR);
    EXPECT_EQ(vconf_set_int("../outside", 2), VCONF_ERROR);
    EXPECT_EQ(vconf_set_str("db/test/b", nullptr), VCONF_ERROR);
    int value = 0;
    EXPECT_TRUE(vconf_get_int("db/test/a", &value) == VCONF_OK && value == 1);
    simtest::writeText(path("db/test/a"), "int:1x");
    EXPECT_EQ(vconf_get_int("db/test/a", &value), VCONF_ERROR);
    EXPECT_EQ(value, 1);
    std::string log = platformLog();
    for (const std::string &line : std::vector<std::string>{
             "E/VCONF(", "vconf_set_int(db/test/a/below): mkdir(",
             "vconf_set_int(db/test): db/test: is a group of keys",
             "vconf_set_int(../outside): invalid key",
             "vconf_get_int(db/test/a): " + path("db/test/a") +
                 ": corrupt value (an int is a 32-bit decimal integer, not '1x')"})
        EXPECT_TRUE(contains(log, line)) << line << "\n" << log;
}

TEST_F(VconfTest, ChangesFromAnotherProcessArriveOnTheMainLoopWithin100ms) {
    // The key's group does not exist yet either.
    const std::string key = "db/new/group/key";
    Seen seen;
    ASSERT_EQ(vconf_notify_key_changed(key.c_str(), recordCb, &seen), VCONF_OK);
    pid_t writer = simtest::start(
        {simtest::program("quillset-sim"), "--state", _state.path(), "set", key, "bool", "true"},
        {}, _state / "out", _state / "err");
    ASSERT_TRUE(runMainLoopUntil([&] { return seen.calls > 0; }, 5.0))
        << simtest::readText(_state / "err");
    waitpid(writer, nullptr, 0);  // unless Ecore has reaped it already
    EXPECT_EQ(seen.calls, 1);
    EXPECT_EQ(seen.name + " = " + seen.value, key + " = bool true");
    struct stat st;
    ASSERT_EQ(stat(path(key).c_str(), &st), 0);
    auto written = std::chrono::system_clock::time_point(
        std::chrono::duration_cast<std::chrono::system_clock::duration>(
            std::chrono::seconds(st.st_mtim.tv_sec) +
            std::chrono::nanoseconds(st.st_mtim.tv_nsec)));
    EXPECT_LT(seen.at - written, std::chrono::milliseconds(100))
        << "from the write to the callback";

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

TEST_F(VconfTest, OwnWritesReachEveryWatcherFromTheMainLoop) {
    Seen first, second;
    ASSERT_EQ(vconf_notify_key_changed("db/test/a", recordCb, &first), VCONF_OK);
    ASSERT_EQ(vconf_notify_key_changed("db/test/a", otherCb, &second), VCONF_OK);
    ASSERT_EQ(vconf_set_str("db/test/a", "XEU"), VCONF_OK);
    EXPECT_EQ(first.calls, 0) << "not from inside vconf_set_str";
    ASSERT_TRUE(runMainLoopUntil([&] { return second.calls > 0; }, 2.0));
    EXPECT_EQ(first.value + ", " + second.value, "string XEU, string XEU");
    ASSERT_EQ(vconf_set_dbl("db/test/a", 2.5), VCONF_OK);
    ASSERT_TRUE(runMainLoopUntil([&] { return second.calls > 1; }, 2.0));
    EXPECT_EQ(first.value, "double 2.5");
}

TEST_F(VconfTest, RegistrationsAreByKeyAndCallback) {
    Seen seen, other;
    ASSERT_EQ(vconf_notify_key_changed("db/test/a", recordCb, &seen), VCONF_OK);
    EXPECT_EQ(vconf_notify_key_changed("db/test/a", recordCb, &other), VCONF_ERROR) << "twice";
    ASSERT_EQ(vconf_notify_key_changed("db/test/b", recordCb, &other), VCONF_OK);
    EXPECT_EQ(vconf_ignore_key_changed("db/test/b", otherCb), VCONF_ERROR);
    EXPECT_EQ(vconf_notify_key_changed("../x", recordCb, &seen), VCONF_ERROR);
    EXPECT_EQ(vconf_notify_key_changed("db/test/a", nullptr, &seen), VCONF_ERROR);
    ASSERT_EQ(vconf_ignore_key_changed("db/test/a", recordCb), VCONF_OK);
    EXPECT_EQ(vconf_ignore_key_changed("db/test/a", recordCb), VCONF_ERROR);
    ASSERT_EQ(vconf_set_int("db/test/a", 1), VCONF_OK);
    ASSERT_EQ(vconf_set_int("db/test/b", 1), VCONF_OK);
    ASSERT_TRUE(runMainLoopUntil([&] { return other.calls > 0; }, 2.0));
    EXPECT_EQ(seen.calls, 0) << "the ignored registration heard nothing";
    EXPECT_EQ(other.name, "db/test/b");
}

namespace {

struct SelfRemoving {
    int calls = 0;
    Seen *added = nullptr;
};

// Stops watching from inside its own callback and starts another watcher.
void selfRemovingCb(keynode_t *, void *data) {
    auto *state = static_cast<SelfRemoving *>(data);
    ++state->calls;
    vconf_ignore_key_changed("db/test/a", selfRemovingCb);
    vconf_notify_key_changed("db/test/a", otherCb, state->added);
}

}  // namespace

TEST_F(VconfTest, CallbacksMayChangeRegistrationsWhileBeingCalled) {
    Seen later, added;
    SelfRemoving self{0, &added};
    ASSERT_EQ(vconf_notify_key_changed("db/test/a", selfRemovingCb, &self), VCONF_OK);
    ASSERT_EQ(vconf_notify_key_changed("db/test/a", recordCb, &later), VCONF_OK);
    ASSERT_EQ(vconf_set_int("db/test/a", 1), VCONF_OK);
    ASSERT_TRUE(runMainLoopUntil([&] { return later.calls > 0; }, 2.0));
    EXPECT_EQ(added.calls, 0) << "a watcher added during a change starts with the next one";
    ASSERT_EQ(vconf_set_int("db/test/a", 2), VCONF_OK);
    ASSERT_TRUE(runMainLoopUntil([&] { return later.calls > 1; }, 2.0));
    EXPECT_EQ(self.calls, 1);
    EXPECT_EQ(added.calls, 1);
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

TEST(VconfWithoutAWatch, EveryCallFailsAndTheReasonIsGivenOnce) {
    unsetenv("QUILLSET_STATE");
    testing::internal::CaptureStderr();
    int value = 3;
    Seen seen;
    EXPECT_EQ(vconf_get_int("db/test/a", &value), VCONF_ERROR);
    EXPECT_EQ(vconf_set_int("db/test/a", 1), VCONF_ERROR);
    EXPECT_EQ(vconf_get_str("db/test/a"), nullptr);
    EXPECT_EQ(vconf_notify_key_changed("db/test/a", recordCb, &seen), VCONF_ERROR);
    std::string err = testing::internal::GetCapturedStderr();
    EXPECT_EQ(value, 3);
    const std::string reason =
        "QUILLSET_STATE is not set: start the program with `quillset-sim run`";
    size_t first = err.find(reason);
    ASSERT_NE(first, std::string::npos) << err;
    EXPECT_EQ(err.find(reason, first + 1), std::string::npos) << "said once: " << err;
}
