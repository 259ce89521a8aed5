// Model signals: order of calls, re-entrant subscription and removal, and subscriptions bound
// to screen objects.

#include <WSignal.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "support/EflTestEnvironment.h"

using app_assist::WSignal;

class WSignalTest : public EflTest {
protected:
    bool logged(const std::string &text) { return logSinceStart().find(text) != std::string::npos; }
};

TEST_F(WSignalTest, CallsListenersInSubscriptionOrderUnderIdsUniqueAcrossSignals) {
    WSignal<void(int)> signal;
    WSignal<void()> other;
    std::vector<std::string> calls;
    unsigned int a = signal.addListener([&](int v) { calls.push_back("a" + std::to_string(v)); });
    unsigned int b = other.addListener([]() {});
    unsigned int c = signal.addListener([&](int v) { calls.push_back("c" + std::to_string(v)); });
    signal.emit(7);
    EXPECT_EQ(calls, (std::vector<std::string>{"a7", "c7"}));
    EXPECT_NE(a, 0u);
    EXPECT_LT(a, b);
    EXPECT_LT(b, c);
}

TEST_F(WSignalTest, ChangesDuringAnEmissionTakeEffectAtOnceForRemovalsAndNextTimeForAdditions) {
    WSignal<void()> signal;
    int selfCalls = 0, laterCalls = 0, newCalls = 0;
    unsigned int self = 0, later = 0;
    self = signal.addListener([&]() {
        if (++selfCalls == 1) {
            signal.removeListener(later);
            signal.addListener([&]() { ++newCalls; });
        }
        signal.removeListener(self);
    });
    later = signal.addListener([&]() { ++laterCalls; });
    signal.emit();
    EXPECT_EQ(newCalls, 0);
    signal.emit();
    EXPECT_EQ(selfCalls, 1);
    EXPECT_EQ(laterCalls, 0);
    EXPECT_EQ(newCalls, 1);
    // Swept after the walk: a later removal finds nothing, and says so; id 0 says nothing.
    signal.removeListener(0);
    EXPECT_FALSE(logged("Already removed"));
    signal.removeListener(self);
    EXPECT_TRUE(logged("Already removed listener! = " + std::to_string(self)));
}

TEST_F(WSignalTest, DeletingTheBoundObjectEndsTheSubscriptionSilently) {
    WSignal<void(int)> signal;
    Evas_Object *box = elm_box_add(_win);
    int calls = 0;
    unsigned int id = signal.addListener([&](int) { ++calls; }, box);
    evas_object_del(box);
    signal.emit(1);
    EXPECT_EQ(calls, 0);
    EXPECT_FALSE(logged("Already removed"));
    signal.removeListener(id);
    EXPECT_TRUE(logged("Already removed listener! = " + std::to_string(id)));
}

TEST_F(WSignalTest, BoundObjectDeletedByAListenerDuringEmission) {
    WSignal<void()> signal;
    Evas_Object *box = elm_box_add(_win);
    int boundCalls = 0;
    signal.addListener([&]() { evas_object_del(box); });
    signal.addListener([&]() { ++boundCalls; }, box);
    signal.emit();
    signal.emit();
    EXPECT_EQ(boundCalls, 0);
}

TEST_F(WSignalTest, EmptyCallbackThrowsOutOfEmit) {
    WSignal<void()> signal;
    signal.addListener(std::function<void()>());
    EXPECT_THROW(signal.emit(), std::bad_function_call);
}

TEST_F(WSignalTest, DestroyedSignalLeavesBoundObjectsUsable) {
    Evas_Object *box = elm_box_add(_win);
    {
        WSignal<void()> signal;
        signal.addListener([]() {}, box);
    }
    // The signal unhooked itself; deleting the object must not reach freed records.
    evas_object_del(box);
}
