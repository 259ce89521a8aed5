#ifndef QUILLSET_TESTS_SIM_PLATFORM_SUPPORT_H
#define QUILLSET_TESTS_SIM_PLATFORM_SUPPORT_H

#include <cstdlib>
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

// Runs the Ecore main loop until done() or the time-out; false on time-out.
bool runMainLoopUntil(const std::function<bool()> &done, double timeout);

}  // namespace simtest

#endif
