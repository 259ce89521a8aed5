#include "sim_platform_support.h"

#include <Ecore.h>

namespace simtest {

namespace {

Eina_Bool watchdogCb(void *data) {
    *static_cast<bool *>(data) = true;
    return ECORE_CALLBACK_CANCEL;
}

}  // namespace

bool runMainLoopUntil(const std::function<bool()> &done, double timeout) {
    // The watchdog makes a missing event a failure rather than a hang.
    bool expired = false;
    Ecore_Timer *watchdog = ecore_timer_add(timeout, watchdogCb, &expired);
    while (!done() && !expired)
        ecore_main_loop_iterate_may_block(1);
    if (!expired)
        ecore_timer_del(watchdog);
    return done();
}

}  // namespace simtest

int main(int argc, char **argv) {
    ::testing::InitGoogleTest(&argc, argv);
    // No system bus here: the toolkit's system modules would only complain about it.
    setenv("ECORE_NO_SYSTEM_MODULES", "1", 1);
    ecore_init();
    int status = RUN_ALL_TESTS();
    ecore_shutdown();
    return status;
}
