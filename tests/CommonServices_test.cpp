// Services shared by the settings suite: the circle surface, the launcher, the usage logger's
// status report and the info model's policy answers. Records and launches go to the services
// daemon of a watch kept up around these tests; what it kept is read back as
// `quillset-sim usage` and `launches` show it.

#include <app_control.h>
#include <gtest/gtest.h>
#include <vconf.h>

#include <algorithm>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "DaemonLink.h"
#include "PlatformState.h"
#include "StAppControlLauncher.h"
#include "StCircleSurfaceManager.h"
#include "StInfoModel.h"
#include "StLog.h"
#include "StLogManager.h"
#include "WDefine.h"
#include "sim_support.h"
#include "support/EflTestEnvironment.h"

namespace {

simtest::RunningWatch *g_watch = nullptr;

// What the daemon kept, once it has answered every record sent.
std::vector<nlohmann::json> rows(bool journal) {
    double end = ecore_time_get() + 10.0;
    while (platform::daemonAnswersAwaited() > 0 && ecore_time_get() < end)
        ecore_main_loop_iterate_may_block(1);
    simtest::CommandResult r = simtest::quillsetSim(
        {"--state", EflTestEnvironment::stateDir(), journal ? "launches" : "usage"});
    EXPECT_EQ(r.status, 0) << r.err;
    std::vector<nlohmann::json> out;
    std::istringstream lines(r.out);
    for (std::string line; std::getline(lines, line);)
        out.push_back(nlohmann::json::parse(line));
    return out;
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

TEST_F(CommonServicesTest, CircleSurfaceIsMadeOnceAndOnlyOnSupportedContainers) {
    StCircleSurfaceManager::destroy();
    StCircleSurfaceManager *manager = StCircleSurfaceManager::getInstance();
    EXPECT_EQ(manager->getCircleSurface(), nullptr);
    manager->addCircleSurface(elm_box_add(_win));
    EXPECT_EQ(manager->getCircleSurface(), nullptr);
    EXPECT_EQ(logSinceStart().find("objectType error"), std::string::npos);

    manager->addCircleSurface(elm_naviframe_add(_win));
    Eext_Circle_Surface *surface = manager->getCircleSurface();
    EXPECT_NE(surface, nullptr);
    manager->addCircleSurface(elm_layout_add(_win));
    EXPECT_EQ(manager->getCircleSurface(), surface);
    EXPECT_NE(logSinceStart().find("circleSurface is already created"), std::string::npos);

    StCircleSurfaceManager::destroy();
    StCircleSurfaceManager::destroy();
    EXPECT_EQ(StCircleSurfaceManager::getInstance()->getCircleSurface(), nullptr);
}

TEST_F(CommonServicesTest, ALaunchBlocksTouchesUntilTheTimeOutAndTheNextEndsItFirst) {
    Evas_Object *list = elm_genlist_add(_win);
    StAppControlLauncher *launcher = StAppControlLauncher::getInstance();
    ASSERT_TRUE(launcher->sendLaunchRequest(request("app.one"), nullptr, nullptr, list, 0.2));
    EXPECT_TRUE(launcher->isUiBlocked());
    EXPECT_TRUE(evas_object_freeze_events_get(list));
    settle(0.3);
    EXPECT_FALSE(launcher->isUiBlocked());
    EXPECT_FALSE(evas_object_freeze_events_get(list));
    // Without a list to block, nothing is blocked.
    ASSERT_TRUE(launcher->sendLaunchRequest(request("app.two"), nullptr, nullptr, nullptr, 1.0));
    EXPECT_FALSE(launcher->isUiBlocked());
    auto journal = rows(true);
    ASSERT_EQ(journal.size(), 3u);
    EXPECT_EQ(journal[1]["request"], "terminate");
    EXPECT_EQ(journal[1]["app_id"], "app.one");
    EXPECT_EQ(journal[2]["app_id"], "app.two");
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

TEST_F(CommonServicesTest, DeletingTheBlockedListCancelsTheTimeOut) {
    // The launcher's time-out is the loop's only timer of 5 s.
    auto timeOuts = [] {
        int n = 0;
        Eina_Iterator *children = efl_children_iterator_new(efl_main_loop_get());
        Eo *child;
        EINA_ITERATOR_FOREACH(children, child) {
            n += efl_isa(child, EFL_LOOP_TIMER_CLASS) && ecore_timer_interval_get(child) == 5.0;
        }
        eina_iterator_free(children);
        return n;
    };
    Evas_Object *list = elm_genlist_add(_win);
    StAppControlLauncher *launcher = StAppControlLauncher::getInstance();
    launcher->sendLaunchRequest(request("app.one"), nullptr, nullptr, list, 5.0);
    ASSERT_EQ(timeOuts(), 1);
    evas_object_del(list);
    EXPECT_EQ(timeOuts(), 0);
    EXPECT_FALSE(launcher->isUiBlocked());
}

TEST_F(CommonServicesTest, StatusReportFollowsTheWatchSettings) {
    writeProfile(R"({"media": {"/opt/usr/data/settings/Ringtones/Dawn.ogg": {"title": "Dawn"}},
                     "preferences": {"DND_SCHEDULE_ENABLED": true}})");
    vconf_set_int("db/setting/Brightness", 96);
    vconf_set_int("db/setting/lcd_backlight_normal", 15);
    vconf_set_bool("db/setting/sound/sound_on", 0);
    vconf_set_bool("db/setting/sound/vibration_on", 0);
    vconf_set_int("db/setup_wizard/standalone", 1);
    vconf_set_int("db/smack/spd_auto_update_status", 1);
    vconf_set_int("db/smack/spd_wifi_only_status", 1);
    vconf_set_str("db/setting/sound/call/ringtone_path",
                  "/opt/usr/data/settings/Ringtones/Dawn.ogg");
    vconf_set_int("db/setting/watch_order_setting", 2);
    StLogManager::getInstance()->logStatusAll();
    EXPECT_EQ(joined(statusRecords()),
              "S004 10 -|ST30 15 -|ST31 - 0|ST41 - 0|S032 - 0|ST50 Dawn -|ST51 Mute -|ST61 - 0|"
              "ST62 - 0|ST65 - 0|ST66 - 0|S002 - 0|S007 - -|S014 - 0|S015 sort by custom -|"
              "S121 - 1000|S122 - WiFi only|S016 - 1000|S036 - 0|S036 - Custom (watch face)|");
}

TEST_F(CommonServicesTest, StatusReportOfAWatchWhoseReadsAllFailSaysOffAndSkipsTexts) {
    // The ringtone is preloaded and has a title, but the extractor cannot read it.
    writeProfile(R"({"media": {"/opt/usr/data/settings/Ringtones/Dawn.ogg": {"title": "Dawn"}},
                     "preferences": {"DND_SCHEDULE_ENABLED": true},
                     "faults": [{"call": "vconf_get_int", "code": -1},
                                {"call": "vconf_get_bool", "code": -1},
                                {"call": "preference_get_boolean", "code": -22},
                                {"call": "metadata_extractor_get_metadata", "code": -22}]})");
    vconf_set_str("db/setting/sound/call/ringtone_path",
                  "/opt/usr/data/settings/Ringtones/Dawn.ogg");
    StLogManager::getInstance()->logStatusAll();
    std::string expected =
        "S004 1 -|ST30 0 -|ST31 - 0|ST41 - 0|S032 - 0|ST51 Mute -|ST61 - 0|ST62 - 0|ST65 - 0|"
        "ST66 - 0|S002 - 0|S000 - 0|S007 - -|S014 - 0|S015 sort by custom -|S121 - 0|S016 - 0|"
        "S036 - 0|S036 - Most recent first (watch face)|";
    EXPECT_EQ(joined(statusRecords()), expected);

    // Without the settings store's strings too, the ringtone row goes the same way.
    writeProfile(R"({"faults": [{"call": "vconf_get_str", "code": -1},
                                {"call": "metadata_extractor_create", "code": -22}]})");
    size_t before = statusRecords().size();
    StLogManager::getInstance()->logStatusAll();
    std::vector<std::string> records = statusRecords();
    records.erase(records.begin(), records.begin() + before);
    for (const std::string &record : records)
        EXPECT_NE(record.rfind("ST50", 0), 0u) << record;
    EXPECT_NE(std::find(records.begin(), records.end(), "S007 - -"), records.end());
}

TEST_F(CommonServicesTest, BrightnessLevelsAndSkippedRecords) {
    struct Case {
        int brightness;
        const char *level;
    };
    for (Case c : {Case{0, "1"}, Case{1, "1"}, Case{20, "2"}, Case{21, "3"}, Case{95, "9"},
                   Case{100, "10"}, Case{101, "1"}}) {
        vconf_set_int("db/setting/Brightness", c.brightness);
        vconf_set_bool("db/setting/sound/sound_on", 1);
        vconf_set_bool("db/setting/sound/vibration_on", 1);
        vconf_set_str("db/setting/sound/call/ringtone_path", "/home/user/song.ogg");
        vconf_set_int("db/smack/spd_auto_update_status", 0);
        size_t before = statusRecords().size();
        StLogManager::getInstance()->logStatusAll();
        std::vector<std::string> records = statusRecords();
        records.erase(records.begin(), records.begin() + before);
        EXPECT_EQ(records[0], std::string("S004 ") + c.level + " -") << c.brightness;
        for (const std::string &record : records) {
            // Both sound and vibration on, a ringtone from elsewhere, auto update off.
            EXPECT_NE(record.rfind("ST51", 0), 0u);
            EXPECT_NE(record.rfind("ST50", 0), 0u);
            EXPECT_NE(record.rfind("S122", 0), 0u);
        }
    }
}

TEST_F(CommonServicesTest, UsageRecordsNeedAFeatureAndALateLogServiceLosesNoLaterOne) {
    // The log service is not up yet when the first record is sent.
    writeProfile(R"({"faults": [{"call": "nerova_log_manager_create", "code": -5}]})");
    StLogManager::getInstance()->log(ST_LOG_URI_FEATURE_SURVEY, "S003", nullptr, nullptr);
    EXPECT_TRUE(rows(false).empty());
    writeProfile("{}");
    StLogManager::getInstance()->log(ST_LOG_URI_FEATURE_SURVEY, nullptr, nullptr, nullptr);
    StLogManager::getInstance()->log(ST_LOG_URI_FEATURE_SURVEY, "S516", nullptr, nullptr);
    auto usage = rows(false);
    ASSERT_EQ(usage.size(), 1u);
    EXPECT_EQ(usage[0]["feature"], "S516");
    EXPECT_FALSE(usage[0].contains("extra"));
}

TEST_F(CommonServicesTest, DebuggingPolicyAnswers) {
    StInfoModel *model = StInfoModel::getInstance();
    writeProfile(R"({"policy": {"allow_usb_debugging": -1, "change_allowed": false}})");
    EXPECT_FALSE(model->isUsbDebuggingMenuRestricted());
    EXPECT_TRUE(model->isUsbDebuggingChangeRestricted());
    writeProfile(R"({"policy": {"allow_usb_debugging": 1}})");
    EXPECT_TRUE(model->isUsbDebuggingMenuRestricted());
    EXPECT_FALSE(model->isUsbDebuggingChangeRestricted());
    writeProfile(R"({"policy": {"service": false}})");
    EXPECT_FALSE(model->isUsbDebuggingMenuRestricted());
    EXPECT_NE(logSinceStart().find("[MDM] mdm_get_service failed"), std::string::npos);
}

TEST_F(CommonServicesTest, ModelNumberGainsTheCarrierLetterOnlyForItsModel) {
    StInfoModel *model = StInfoModel::getInstance();
    struct Case {
        const char *model, *salesCode, *shown;
    };
    for (Case c : {Case{"QX-M480", "SKO", "QX-M480S"}, Case{"QX-M480", "LUC", "QX-M480L"},
                   Case{"QX-M480", "", "QX-M480"}, Case{"QX-M480", "XEU", "QX-M480"},
                   Case{"QX-M490", "KTO", "QX-M490"}}) {
        writeProfile(std::string(R"({"system_info": {"platform": {"system/model_name": ")") +
                     c.model + "\"}}}");
        vconf_set_str("db/csc/salescode", c.salesCode);
        EXPECT_EQ(model->getSystemInfoModel(), c.shown) << c.model << " " << c.salesCode;
    }
}
