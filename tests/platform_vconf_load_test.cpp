// The vconf stand-in under load: changes arriving faster than the main loop reads them.

#include <gtest/gtest.h>
#include <vconf.h>

#include "SettingsStore.h"
#include "sim_platform_support.h"

using VconfLoadTest = simtest::StateTest;

static int lastValue = -1, calls = 0;

static void lastCb(keynode_t *node, void *) {
    ++calls;
    lastValue = vconf_keynode_get_bool(node);
}

TEST_F(VconfLoadTest, AChangeDroppedByTheKernelStillReachesTheWatcher) {
    ASSERT_EQ(vconf_notify_key_changed("db/load/switch", lastCb, nullptr), VCONF_OK);
    // Another process writes a neighbouring key far more often than the kernel queues
    // notifications (16384 events by default, three per write) while this one is busy
    // elsewhere, then turns the watched key on: that notification is dropped.
    sim::SettingsStore store(_state.path());
    std::string error;
    for (int i = 0; i < 8000; ++i)
        ASSERT_EQ(store.write("db/load/other", sim::SettingValue::ofInt(i), &error), 0) << error;
    ASSERT_EQ(store.write("db/load/switch", sim::SettingValue::ofBool(true), &error), 0);
    EXPECT_TRUE(simtest::runMainLoopUntil([&] { return lastValue == 1; }, 5.0)) << calls;
    EXPECT_EQ(calls, 1);
    vconf_ignore_key_changed("db/load/switch", lastCb);
}
