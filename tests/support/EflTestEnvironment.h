#ifndef QUILLSET_TESTS_EFL_TEST_ENVIRONMENT_H
#define QUILLSET_TESTS_EFL_TEST_ENVIRONMENT_H

#include <Elementary.h>
#include <WNaviframeController.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <functional>
#include <string>

// Brings the toolkit up on the buffer engine with a private state directory for the whole test
// program, and tears it down at the end.
class EflTestEnvironment : public ::testing::Environment {
public:
    void SetUp() override;
    void TearDown() override;

    static const std::string &stateDir();
    // Seeds the state directory with a shipped profile, as quillset-sim would, and has the
    // platform read it; a failure fails the calling test.
    static void seedShippedProfile(const char *name);
};

// A 360x360 window on the buffer engine, deleted after each test.
class EflTest : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    // Runs the main loop until done() is true or the watchdog expires; false on time-out.
    bool runUntil(const std::function<bool()> &done, double timeout = 2.0);
    // Lets the toolkit lay out and draw.
    void settle(double seconds = 0.05);
    // Lines of the platform log written since this test started.
    std::string logSinceStart() const;
    // Replaces the watch's device profile and has the platform read it.
    static void writeProfile(const std::string &json);
    // Writes settings keys with the type of their JSON value; null removes the key.
    static void writeSettings(const nlohmann::json &settings);
    // A row's text for the part as its list asks for it; "(none)" when it has none.
    static std::string textOf(Elm_Object_Item *item, const char *part);
    // A naviframe filling the window, shown, for pages to be pushed on.
    app_assist::WNaviframeController *makeNaviframe();
    // The index of the list's row at the centre of the screen, -1 for none.
    static int centreRow(Evas_Object *list);
    // Touches the centre of a genlist row as a person would.
    void tapItem(Elm_Object_Item *item);
    void click(Evas_Object *obj);
    void pressKey(const char *key);

    Evas_Object *_win = nullptr;
    long _logStart = 0;
};

#endif
