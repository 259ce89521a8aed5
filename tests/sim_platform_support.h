#ifndef QUILLSET_TESTS_SIM_PLATFORM_SUPPORT_H
#define QUILLSET_TESTS_SIM_PLATFORM_SUPPORT_H

#include <Ecore.h>

#include <functional>

#include "PlatformState.h"
#include "sim_support.h"

// The platform stand-ins' tests run with Ecore initialised once for the program (see the
// main() beside this) and a state directory of their own for each test.
namespace simtest {

// A test whose $QUILLSET_STATE is a fresh directory holding the given profile.
class StateTest : public ::testing::Test {
protected:
    void SetUp() override {
        setenv("QUILLSET_STATE", _state.path().c_str(), 1);
        unsetenv("DBUS_SYSTEM_BUS_ADDRESS");
        useProfile("{}");
    }
    void TearDown() override { platform::reloadProfile(); }

    // Replaces the watch's profile; the stand-ins read it again.
    void useProfile(const std::string &json) {
        writeText(_state / "profile.json", json);
        platform::reloadProfile();
    }
    std::string platformLog() const { return readText(_state / "platform.log"); }

    TempDir _state;
};

// Runs the Ecore main loop until done() or the time-out; false on time-out. A short timer
// keeps the loop from sleeping past the time-out, so that a missing event fails, not hangs.
inline bool runMainLoopUntil(const std::function<bool()> &done, double timeout) {
    double end = ecore_time_get() + timeout;
    Ecore_Timer *tick = ecore_timer_add(
        0.05, [](void *) { return ECORE_CALLBACK_RENEW; }, nullptr);
    while (!done() && ecore_time_get() < end)
        ecore_main_loop_iterate_may_block(1);
    ecore_timer_del(tick);
    return done();
}

}  // namespace simtest

#endif
