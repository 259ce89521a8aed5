// The vconf stand-in under load: changes arriving faster than the main loop reads them.

#include <gtest/gtest.h>
#include <vconf.h>

#include <string>

#include "SettingsStore.h"
#include "sim_platform_support.h"

using simtest::StateTest;

namespace {

struct Last {
    int calls = 0;
    int value = -1;
};

void lastCb(keynode_t *node, void *data) {
    auto *last = static_cast<Last *>(data);
    ++last->calls;
    last->value = vconf_keynode_get_bool(node);
}

class VconfLoadTest : public StateTest {
protected:
    void TearDown() override {
        vconf_ignore_key_changed("db/load/switch", lastCb);
        StateTest::TearDown();
    }
};

}  // namespace

TEST_F(VconfLoadTest, AChangeDroppedByTheKernelStillReachesTheWatcher) {
    Last last;
    ASSERT_EQ(vconf_notify_key_changed("db/load/switch", lastCb, &last), VCONF_OK);
    // Another process writes a neighbouring key far more often than the kernel queues
    // notifications (16384 events by default, three per write) while this one is busy
    // elsewhere, then turns the watched key on: that notification is dropped.
    sim::SettingsStore store(_state.path());
    std::string error;
    for (int i = 0; i < 8000; ++i)
        ASSERT_EQ(store.write("db/load/other", sim::SettingValue::ofInt(i), &error),
                  sim::SettingsStore::Ok)
            << error;
    ASSERT_EQ(store.write("db/load/switch", sim::SettingValue::ofBool(true), &error),
              sim::SettingsStore::Ok)
        << error;
    ASSERT_TRUE(simtest::runMainLoopUntil([&] { return last.value == 1; }, 5.0))
        << last.calls << " notifications, the last with " << last.value;
    EXPECT_EQ(last.calls, 1);
}
