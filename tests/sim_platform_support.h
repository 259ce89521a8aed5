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

// Runs the Ecore main loop until done() or the time-out; false on time-out. The watchdog
// makes a missing event a failure rather than a hang.
inline bool runMainLoopUntil(const std::function<bool()> &done, double timeout) {
    bool expired = false;
    auto expire = [](void *data) -> Eina_Bool {
        *static_cast<bool *>(data) = true;
        return ECORE_CALLBACK_CANCEL;
    };
    Ecore_Timer *watchdog = ecore_timer_add(timeout, expire, &expired);
    while (!done() && !expired)
        ecore_main_loop_iterate_may_block(1);
    if (!expired)
        ecore_timer_del(watchdog);
    return done();
}

}  // namespace simtest

#endif
