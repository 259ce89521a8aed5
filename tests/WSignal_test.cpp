// Model signals: order of calls, re-entrant subscription and removal, and subscriptions bound
// to screen objects.

#include <WSignal.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "support/EflTestEnvironment.h"

using app_assist::WSignal;

class WSignalTest : public EflTest {};

TEST_F(WSignalTest, CallsListenersInSubscriptionOrderWithTheArgument) {
    WSignal<void(int)> signal;
    std::vector<std::string> calls;
    signal.addListener([&](int v) { calls.push_back("a" + std::to_string(v)); });
    signal.addListener([&](int v) { calls.push_back("b" + std::to_string(v)); });
    signal.addListener([&](int v) { calls.push_back("c" + std::to_string(v)); });
    signal.emit(7);
    EXPECT_EQ(calls, (std::vector<std::string>{"a7", "b7", "c7"}));
}

TEST_F(WSignalTest, IdsAreNonZeroAndUniqueAcrossSignals) {
    WSignal<void(bool)> first;
    WSignal<void()> second;
    unsigned int a = first.addListener([](bool) {});
    unsigned int b = second.addListener([]() {});
    unsigned int c = first.addListener([](bool) {});
    EXPECT_NE(a, 0u);
    EXPECT_LT(a, b);
    EXPECT_LT(b, c);
}

TEST_F(WSignalTest, RemovingItselfDuringEmissionStopsFurtherCalls) {
    WSignal<void()> signal;
    int selfCalls = 0, otherCalls = 0;
    unsigned int self = 0;
    self = signal.addListener([&]() {
        ++selfCalls;
        signal.removeListener(self);
    });
    signal.addListener([&]() { ++otherCalls; });
    signal.emit();
    signal.emit();
    EXPECT_EQ(selfCalls, 1);
    EXPECT_EQ(otherCalls, 2);
    // Swept after the walk: a later removal finds nothing.
    signal.removeListener(self);
    EXPECT_NE(logSinceStart().find("Already removed listener! = " + std::to_string(self)),
              std::string::npos);
}

TEST_F(WSignalTest, RemovingALaterListenerDuringEmissionSkipsIt) {
    WSignal<void(bool)> signal;
    int laterCalls = 0;
    unsigned int later = 0;
    signal.addListener([&](bool) { signal.removeListener(later); });
    later = signal.addListener([&](bool) { ++laterCalls; });
    signal.emit(true);
    signal.emit(true);
    EXPECT_EQ(laterCalls, 0);
}

TEST_F(WSignalTest, SubscriptionMadeDuringEmissionWaitsForTheNextOne) {
    WSignal<void()> signal;
    int newCalls = 0;
    bool subscribed = false;
    signal.addListener([&]() {
        if (!subscribed) {
            subscribed = true;
            signal.addListener([&]() { ++newCalls; });
        }
    });
    signal.emit();
    EXPECT_EQ(newCalls, 0);
    signal.emit();
    EXPECT_EQ(newCalls, 1);
}

TEST_F(WSignalTest, DeletingTheBoundObjectEndsTheSubscriptionSilently) {
    WSignal<void(int)> signal;
    Evas_Object *box = elm_box_add(_win);
    int calls = 0;
    unsigned int id = signal.addListener([&](int) { ++calls; }, box);
    evas_object_del(box);
    signal.emit(1);
    EXPECT_EQ(calls, 0);
    EXPECT_EQ(logSinceStart().find("Already removed"), std::string::npos);
    signal.removeListener(id);
    EXPECT_NE(logSinceStart().find("Already removed listener! = " + std::to_string(id)),
              std::string::npos);
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

TEST_F(WSignalTest, RemoveWithIdZeroDoesNothingAndLogsNothing) {
    WSignal<void()> signal;
    int calls = 0;
    signal.addListener([&]() { ++calls; });
    signal.removeListener(0);
    signal.emit();
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(logSinceStart().find("Already removed"), std::string::npos);
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
    SUCCEED();
}
