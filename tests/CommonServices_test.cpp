// Services shared by the settings suite, their whole interface, what this application does not
// call included: the circle surface, the launcher, the usage logger and its status report, and
// the home-key handler, each with its tear-down. Records, launches and home-key presses go
// through the services daemon of a watch kept up around these tests; what it kept is read back
// as `quillset-sim usage` and `launches` show it.

#include <app.h>
#include <app_control.h>
#include <gtest/gtest.h>
#include <vconf.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <functional>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "DaemonLink.h"
#include "PlatformState.h"
#include "StAppControlLauncher.h"
#include "StCircleSurfaceManager.h"
#include "StHomeKeyHandler.h"
#include "StLog.h"
#include "StLogManager.h"
#include "WDefine.h"
#include "sim_support.h"
#include "support/EflTestEnvironment.h"

using nlohmann::json;

namespace {

simtest::RunningWatch *g_watch = nullptr;

// What the daemon kept, once it has answered every record sent.
std::vector<nlohmann::json> rows(bool journal) {
    double end = ecore_time_get() + 10.0;
    while (platform::daemonAnswersAwaited() > 0 && ecore_time_get() < end)
        ecore_main_loop_iterate_may_block(1);
    return simtest::simRows(EflTestEnvironment::stateDir(), journal ? "launches" : "usage");
}

app_control_h request(const char *appId) {
    app_control_h handle = nullptr;
    app_control_create(&handle);
    app_control_set_app_id(handle, appId);
    return handle;
}

// Status records as "feature extra value" lines.
std::vector<std::string> statusRecords() {
    std::vector<std::string> out;
    for (const auto &row : rows(false)) {
        if (row.value("uri", "").find("report_app_status_survey") == std::string::npos)
            continue;
        out.push_back(row.value("feature", "") + " " + row.value("extra", "-") + " " +
                      row.value("value", "-") +
                      (row.value("app_id", "") == "com.nerova.quillset" ? "" : " (watch face)"));
    }
    return out;
}

// The records of one status report.
std::vector<std::string> statusReport() {
    size_t before = statusRecords().size();
    StLogManager::getInstance()->logStatusAll();
    std::vector<std::string> records = statusRecords();
    records.erase(records.begin(), records.begin() + before);
    return records;
}

size_t count(const std::string &text, const std::string &what) {
    size_t n = 0;
    for (size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + 1))
        ++n;
    return n;
}

std::string joined(const std::vector<std::string> &records) {
    std::string out;
    for (const std::string &record : records)
        out += record + "|";
    return out;
}

}  // namespace

class CommonServicesTest : public EflTest {
protected:
    static void SetUpTestSuite() {
        writeProfile("{}");
        g_watch = new simtest::RunningWatch();
        g_watch->start(EflTestEnvironment::stateDir());
    }
    static void TearDownTestSuite() {
        platform::daemonLinkShutdown(1.0);
        delete g_watch;
        g_watch = nullptr;
    }
    void TearDown() override {
        StAppControlLauncher::destroy();
        writeProfile("{}");
        EflTest::TearDown();
    }
};

// This file is built as by a compiler without __FILE_NAME__.
TEST_F(CommonServicesTest, LogLinesNameTheSourceFileWithoutItsDirectory) {
#ifdef __FILE_NAME__
    FAIL() << "built with __FILE_NAME__";
#endif
    ST_ERR("a failure");
    WERROR("a framework failure");
    std::string log = logSinceStart();
    EXPECT_NE(log.find("/W-SETTING("), std::string::npos) << log;
    EXPECT_NE(log.find("): CommonServices_test.cpp: TestBody("), std::string::npos) << log;
    EXPECT_NE(log.find("/WAPP("), std::string::npos) << log;
    EXPECT_EQ(log.find("/CommonServices_test.cpp"), std::string::npos) << log;
}

// Each kind of surface is made on its own kind of container, and only once.
TEST_F(CommonServicesTest, CircleSurfaceIsMadeOnceOnAConformantANaviframeOrALayout) {
    const struct {
        const char *container;
        Evas_Object *(*add)(Evas_Object *parent);
        bool made;
    } lines[] = {
        {"conformant", elm_conformant_add, true},
        {"naviframe", elm_naviframe_add, true},
        {"layout", elm_layout_add, true},
        {"box", elm_box_add, false},
        {"nothing", [](Evas_Object *) { return static_cast<Evas_Object *>(nullptr); }, false},
    };
    for (const auto &line : lines) {
        StCircleSurfaceManager::destroy();
        StCircleSurfaceManager *manager = StCircleSurfaceManager::getInstance();
        EXPECT_EQ(manager->getCircleSurface(), nullptr);
        manager->addCircleSurface(line.add(_win));
        EXPECT_EQ(manager->getCircleSurface() != nullptr, line.made) << line.container;
    }
    // Only a container without a type is worth a log line.
    EXPECT_EQ(count(logSinceStart(), "objectType error"), 1u);

    StCircleSurfaceManager::destroy();
    StCircleSurfaceManager *manager = StCircleSurfaceManager::getInstance();
    manager->addCircleSurface(elm_naviframe_add(_win));
    Eext_Circle_Surface *surface = manager->getCircleSurface();
    manager->addCircleSurface(elm_layout_add(_win));
    EXPECT_EQ(manager->getCircleSurface(), surface);
    EXPECT_NE(logSinceStart().find("circleSurface is already created"), std::string::npos);
    StCircleSurfaceManager::destroy();
    StCircleSurfaceManager::destroy();
    EXPECT_EQ(StCircleSurfaceManager::getInstance()->getCircleSurface(), nullptr);
}

// Every way a launch's block on a list ends: the list takes touches again (or is gone), no
// time-out is left to fire, and the launched application is asked to end only when the
// launcher ends, is destroyed or launches the next. A launcher made afresh ends nothing.
TEST_F(CommonServicesTest, EveryWayALaunchsBlockEndsLeavesNoTimeOut) {
    const double kTimeOut = 0.3;  // no other timer of the loop has it
    auto timeOuts = [kTimeOut] {
        int n = 0;
        Eina_Iterator *children = efl_children_iterator_new(efl_main_loop_get());
        Eo *child;
        EINA_ITERATOR_FOREACH(children, child) {
            n +=
                efl_isa(child, EFL_LOOP_TIMER_CLASS) && ecore_timer_interval_get(child) == kTimeOut;
        }
        eina_iterator_free(children);
        return n;
    };
    auto launcher = [] { return StAppControlLauncher::getInstance(); };
    const struct {
        const char *end;
        std::function<void(Evas_Object *list)> how;
        const char *asked;  // after the launch of app.one
    } ends[] = {
        {"time-out", [this, kTimeOut](Evas_Object *) { settle(kTimeOut + 0.2); }, ""},
        {"list deleted", [](Evas_Object *list) { evas_object_del(list); }, ""},
        {"unblocked", [&](Evas_Object *) { launcher()->unblockUi(); }, ""},
        {"next launch",
         [&](Evas_Object *) {
             launcher()->sendLaunchRequest(request("app.two"), nullptr, nullptr, nullptr, 1.0);
         },
         "terminate app.one|launch app.two|"},
        {"terminated", [&](Evas_Object *) { launcher()->terminate(); }, "terminate app.one|"},
        {"destroyed", [](Evas_Object *) { StAppControlLauncher::destroy(); }, "terminate app.one|"},
    };
    for (const auto &end : ends) {
        SCOPED_TRACE(end.end);
        StAppControlLauncher::destroy();
        size_t before = rows(true).size();
        Evas_Object *list = elm_genlist_add(_win);
        Eo *alive = list;
        efl_wref_add(list, &alive);
        ASSERT_TRUE(
            launcher()->sendLaunchRequest(request("app.one"), nullptr, nullptr, list, kTimeOut));
        EXPECT_TRUE(launcher()->isUiBlocked());
        EXPECT_TRUE(evas_object_freeze_events_get(list));
        EXPECT_EQ(timeOuts(), 1);
        end.how(list);
        EXPECT_FALSE(launcher()->isUiBlocked());
        if (alive) {
            EXPECT_FALSE(evas_object_freeze_events_get(list));
        }
        EXPECT_EQ(timeOuts(), 0);
        auto journal = rows(true);
        std::string asked;
        for (size_t i = before + 1; i < journal.size(); ++i)
            asked += journal[i].value("request", "") + " " + journal[i].value("app_id", "") + "|";
        EXPECT_EQ(asked, end.asked);
        if (alive) {
            efl_wref_del(list, &alive);
            evas_object_del(list);
        }
    }
    // Without a list to block, nothing is blocked.
    ASSERT_TRUE(
        launcher()->sendLaunchRequest(request("app.three"), nullptr, nullptr, nullptr, 1.0));
    EXPECT_FALSE(launcher()->isUiBlocked());
    EXPECT_EQ(rows(true).back().value("request", ""), "launch");
}

TEST_F(CommonServicesTest, RefusedLaunchIsLoggedAndNeverTerminated) {
    writeProfile(R"({"faults": [{"call": "app_control_send_launch_request",
                                 "key": "app.broken", "code": -289}]})");
    StAppControlLauncher *launcher = StAppControlLauncher::getInstance();
    EXPECT_FALSE(
        launcher->sendLaunchRequest(request("app.broken"), nullptr, nullptr, nullptr, 1.0));
    EXPECT_NE(logSinceStart().find("app_control ret error code= -289"), std::string::npos);
    ASSERT_TRUE(launcher->sendLaunchRequest(request("app.fine"), nullptr, nullptr, nullptr, 1.0));
    for (const auto &row : rows(true))
        EXPECT_NE(row["request"], "terminate");
}

// The status report, each record from its own source. From a watch whose reported settings are
// all off, each line changes one setting (or one condition of a rule) and the report changes by
// exactly the records given: "-" a record that goes, "+" one that comes. Non-zero values other
// than 1 count as on.
TEST_F(CommonServicesTest, EachStatusRecordFollowsItsOwnSetting) {
    const json allOff = json::parse(R"({
        "db/setting/Brightness": 0, "db/setting/lcd_backlight_normal": 0,
        "db/setting/disconnect_alert": false, "db/wms/wakeup_by_gesture_enable": false,
        "db/private/com.nerova.w-home/indicator_notification_enabled": 0,
        "db/private/com.nerova.w-home/watchface_indicator_enabled": 0,
        "db/private/com.nerova.w-home/apps_auto_launch": 0,
        "db/private/com.nerova.w-home/apps_sort_type": 0,
        "db/setting/sound/sound_on": false, "db/setting/sound/vibration_on": false,
        "db/setting/sound/vibrate_when_notification": false,
        "db/setting/sound/vibrate_when_ringing": false, "db/setup_wizard/standalone": 0,
        "db/setting/automatic_low_brightness": false, "db/smack/spd_auto_update_status": 0,
        "db/smack/spd_wifi_only_status": 0, "db/setting/ambient_mode": false,
        "db/setting/watch_order_setting": 0, "db/setting/sound/call/ringtone_path": null,
        "db/wms/powerkey_double_pressing": null, "DND_SCHEDULE_ENABLED": false})");
    const struct {
        const char *change, *records;
    } lines[] = {
        {"{}", ""},
        {R"({"db/setting/Brightness": 96})", "-S004 1 -|+S004 10 -|"},
        {R"({"db/setting/lcd_backlight_normal": 15})", "-ST30 0 -|+ST30 15 -|"},
        {R"({"db/setting/disconnect_alert": true})",
         "-ST31 - 0|-S000 - 0|+ST31 - 1000|+S000 - 1000|"},
        {R"({"db/private/com.nerova.w-home/indicator_notification_enabled": 2})",
         "-ST41 - 0|+ST41 - 1000|"},
        {R"({"db/private/com.nerova.w-home/watchface_indicator_enabled": 3})",
         "-S032 - 0|+S032 - 1000|"},
        {R"({"db/setting/sound/call/ringtone_path": "/opt/usr/data/settings/Ringtones/Dawn.ogg"})",
         "+ST50 Dawn -|"},
        // A ringtone from elsewhere, or one without a title, is not reported.
        {R"({"db/setting/sound/call/ringtone_path": "/home/owner/Music/Dawn.ogg"})", ""},
        {R"({"db/setting/sound/call/ringtone_path": "/opt/usr/data/settings/Ringtones/Gale.ogg"})",
         ""},
        {R"({"db/setting/sound/sound_on": true})", "-ST51 Mute -|+ST51 Sound -|"},
        {R"({"db/setting/sound/vibration_on": true})", "-ST51 Mute -|+ST51 Vibrate -|"},
        {R"({"db/setting/sound/sound_on": true, "db/setting/sound/vibration_on": true})",
         "-ST51 Mute -|"},
        {R"({"db/setting/sound/vibrate_when_notification": true})", "-ST61 - 0|+ST61 - 1000|"},
        {R"({"db/setting/sound/vibrate_when_ringing": true})", "-ST62 - 0|+ST62 - 1000|"},
        {R"({"db/private/com.nerova.w-home/apps_auto_launch": 2})", "-ST65 - 0|+ST65 - 1000|"},
        {R"({"db/wms/wakeup_by_gesture_enable": true})",
         "-ST66 - 0|-S002 - 0|+ST66 - 1000|+S002 - 1000|"},
        {R"({"db/setup_wizard/standalone": 2})", "-S000 - 0|"},
        {R"({"db/wms/powerkey_double_pressing": "Voice"})", "-S007 - -|+S007 Voice -|"},
        {R"({"db/setting/automatic_low_brightness": true})", "-S014 - 0|+S014 - 1000|"},
        {R"({"db/private/com.nerova.w-home/apps_sort_type": 2})",
         "-S015 sort by custom -|+S015 sort by recent -|"},
        {R"({"db/smack/spd_auto_update_status": 2})",
         "-S121 - 0|+S121 - 1000|+S122 - WiFi and Mobile data|"},
        {R"({"db/smack/spd_wifi_only_status": 2})", ""},
        {R"({"db/smack/spd_auto_update_status": 2, "db/smack/spd_wifi_only_status": 2})",
         "-S121 - 0|+S121 - 1000|+S122 - WiFi only|"},
        {R"({"DND_SCHEDULE_ENABLED": true})", "-S016 - 0|+S016 - 1000|"},
        {R"({"db/setting/ambient_mode": true})", "-S036 - 0|+S036 - 1000|"},
        {R"({"db/setting/watch_order_setting": 2})",
         "-S036 - Most recent first (watch face)|+S036 - Custom (watch face)|"},
        // Reads that fail report off, and a ringtone title that cannot be read is not sent.
        {R"({"db/setting/Brightness": 96, "db/setting/disconnect_alert": true,
             "DND_SCHEDULE_ENABLED": true,
             "db/setting/sound/call/ringtone_path": "/opt/usr/data/settings/Ringtones/Dawn.ogg",
             "faults": [{"call": "vconf_get_int", "code": -1}, {"call": "vconf_get_bool", "code": -1},
                        {"call": "preference_get_boolean", "code": -22},
                        {"call": "metadata_extractor_get_metadata", "code": -22}]})",
         ""},
        {R"({"db/setting/sound/call/ringtone_path": "/opt/usr/data/settings/Ringtones/Dawn.ogg",
             "db/wms/powerkey_double_pressing": "Voice",
             "faults": [{"call": "vconf_get_str", "code": -1},
                        {"call": "metadata_extractor_create", "code": -22}]})",
         ""},
    };
    std::vector<std::string> off;
    for (const auto &line : lines) {
        json settings = allOff;
        settings.update(json::parse(line.change));
        // Faults and the preference belong to the profile.
        json profile = {
            {"faults", settings.value("faults", json::array())},
            {"preferences", {{"DND_SCHEDULE_ENABLED", settings["DND_SCHEDULE_ENABLED"]}}},
            {"media",
             {{"/opt/usr/data/settings/Ringtones/Dawn.ogg", {{"title", "Dawn"}}},
              {"/home/owner/Music/Dawn.ogg", {{"title", "Dawn"}}}}}};
        settings.erase("faults");
        settings.erase("DND_SCHEDULE_ENABLED");
        writeSettings(settings);
        writeProfile(profile.dump());
        std::vector<std::string> report = statusReport();
        if (off.empty()) {
            off = report;
            EXPECT_EQ(joined(report),
                      "S004 1 -|ST30 0 -|ST31 - 0|ST41 - 0|S032 - 0|ST51 Mute -|ST61 - 0|"
                      "ST62 - 0|ST65 - 0|ST66 - 0|S002 - 0|S000 - 0|S007 - -|S014 - 0|"
                      "S015 sort by custom -|S121 - 0|S016 - 0|S036 - 0|"
                      "S036 - Most recent first (watch face)|");
        }
        std::string gone, came;
        for (const std::string &record : off) {
            auto found = std::find(report.begin(), report.end(), record);
            if (found == report.end())
                gone += "-" + record + "|";
            else
                report.erase(found);
        }
        for (const std::string &record : report)
            came += "+" + record + "|";
        EXPECT_EQ(gone + came, line.records) << line.change;
    }
}

// The brightness reported is a level of 1 to 10, each level's both ends.
TEST_F(CommonServicesTest, BrightnessIsReportedAsALevel) {
    const int levels[][2] = {{0, 1},  {1, 1},  {2, 2},  {20, 2}, {21, 3},  {40, 3},   {41, 4},
                             {50, 4}, {51, 5}, {60, 5}, {61, 6}, {70, 6},  {71, 7},   {80, 7},
                             {81, 8}, {90, 8}, {91, 9}, {95, 9}, {96, 10}, {100, 10}, {101, 1}};
    for (const auto &level : levels) {
        vconf_set_int("db/setting/Brightness", level[0]);
        EXPECT_EQ(statusReport().at(0), "S004 " + std::to_string(level[1]) + " -") << level[0];
    }
}

// The logger's client: a record sent before the log service is up is lost and the client is
// made again for the next; a record without a feature is not sent; a destroyed logger closes
// its client, and the next logger opens its own.
TEST_F(CommonServicesTest, LoggerOpensItsClientWhenItCanAndClosesItWhenDestroyed) {
    writeProfile(R"({"faults": [{"call": "nerova_log_manager_create", "code": -5}]})");
    StLogManager::getInstance()->log(ST_LOG_URI_FEATURE_SURVEY, "S003", nullptr, nullptr);
    EXPECT_EQ(platform::logManagerHandlesOpen(), 0);
    writeProfile("{}");
    StLogManager::getInstance()->log(ST_LOG_URI_FEATURE_SURVEY, nullptr, nullptr, nullptr);
    EXPECT_EQ(platform::logManagerHandlesOpen(), 1);
    StLogManager::getInstance()->log(ST_LOG_URI_FEATURE_SURVEY, "S516", nullptr, nullptr);
    delete StLogManager::getInstance();
    EXPECT_EQ(platform::logManagerHandlesOpen(), 0);
    StLogManager::getInstance()->log(ST_LOG_URI_FEATURE_SURVEY, "ST15", nullptr, nullptr);
    EXPECT_EQ(platform::logManagerHandlesOpen(), 1);
    std::string sent;
    for (const auto &row : rows(false))
        sent += row.value("feature", "") + (row.contains("extra") ? "+extra" : "") + "|";
    EXPECT_EQ(sent, "S516|ST15|");
    EXPECT_EQ(count(logSinceStart(), "nerova_log_manager_create failed - [-5]"), 2u);
}

// Home key

// A press reaches a handler's action only while the handler is registered: registering twice
// is refused and still subscribes once, an unregistered or destroyed handler hears nothing, and
// the action survives unregistering. A second handler, registered throughout, hears every press.
TEST_F(CommonServicesTest, HomeKeyReachesTheActionOnlyWhileRegistered) {
    int users = eldbus_init() - 1;
    eldbus_shutdown();
    StHomeKeyHandler witness;
    int presses = 0;
    witness.setHomeKeyPressedCb([&presses] { ++presses; });
    ASSERT_TRUE(witness.registerHandler());
    auto handler = std::make_unique<StHomeKeyHandler>();
    std::string heard;
    handler->setHomeKeyPressedCb([&heard] { heard += "a"; });
    const struct {
        const char *step;
        std::function<void()> act;
        const char *heard;
    } steps[] = {
        {"registered", [&] { EXPECT_TRUE(handler->registerHandler()); }, "a"},
        {"registered again", [&] { EXPECT_TRUE(handler->registerHandler()); }, "a"},
        {"unregistered", [&] { handler->unregisterHandler(); }, ""},
        {"unregistered again", [&] { handler->unregisterHandler(); }, ""},
        {"action replaced", [&] { handler->setHomeKeyPressedCb([&heard] { heard += "b"; }); }, ""},
        {"registered with it", [&] { EXPECT_TRUE(handler->registerHandler()); }, "b"},
        {"destroyed", [&] { handler.reset(); }, ""},
    };
    for (const auto &step : steps) {
        heard.clear();
        step.act();
        int before = presses;
        EXPECT_EQ(simtest::quillsetSim({"--state", EflTestEnvironment::stateDir(), "event", "home"})
                      .status,
                  0);
        EXPECT_TRUE(runUntil([&] { return presses > before; }, 5.0)) << step.step;
        settle(0.05);
        EXPECT_EQ(heard, step.heard) << step.step;
    }
    EXPECT_EQ(count(logSinceStart(), "Already registered!"), 1u);
    witness.unregisterHandler();
    EXPECT_EQ(eldbus_init() - 1, users) << "every registration's library use was given back";
    eldbus_shutdown();
}

// A press with no action installed ends the application.
TEST_F(CommonServicesTest, HomeKeyWithoutAnActionEndsTheApplication) {
    struct Run {
        StHomeKeyHandler handler;
        Ecore_Timer *watchdog = nullptr;
        bool timedOut = false;
    } run;
    ui_app_lifecycle_callback_s callbacks = {};
    callbacks.create = [](void *data) {
        auto *run = static_cast<Run *>(data);
        if (!run->handler.registerHandler())
            return false;
        simtest::quillsetSim({"--state", EflTestEnvironment::stateDir(), "event", "home"});
        run->watchdog = ecore_timer_add(
            5.0,
            [](void *data) -> Eina_Bool {
                static_cast<Run *>(data)->timedOut = true;
                elm_exit();
                return ECORE_CALLBACK_CANCEL;
            },
            run);
        return true;
    };
    EXPECT_EQ(ui_app_main(0, nullptr, &callbacks, &run), APP_ERROR_NONE);
    EXPECT_FALSE(run.timedOut);
    if (!run.timedOut)
        ecore_timer_del(run.watchdog);
}

class HomeKeyWithoutABusTest : public EflTest {};

// Without a system bus the handler stays unregistered, may try again, and leaves the library as
// it found it.
TEST_F(HomeKeyWithoutABusTest, RegisteringFailsEachTimeAndKeepsTheLibraryBalanced) {
    int before = eldbus_init();
    eldbus_shutdown();
    {
        StHomeKeyHandler handler;
        handler.unregisterHandler();  // never registered: nothing to do
        handler.setHomeKeyPressedCb([] {});
        EXPECT_FALSE(handler.registerHandler());
        EXPECT_FALSE(handler.registerHandler());
    }
    int after = eldbus_init();
    eldbus_shutdown();
    EXPECT_EQ(after, before);
    EXPECT_EQ(count(logSinceStart(), "Failed to get dbus connection"), 2u);
    EXPECT_EQ(logSinceStart().find("Already registered!"), std::string::npos);
}
