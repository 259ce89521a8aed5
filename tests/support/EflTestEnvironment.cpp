#include "EflTestEnvironment.h"

#include <fstream>
#include <sstream>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <unistd.h>
#include <clocale>

#include <Efreet.h>
#include <vconf.h>

#include "PlatformState.h"
#include "Profile.h"
#include "StInfoApp.h"
#include "StatePaths.h"

namespace {
std::string g_stateDir;

std::string logPath() {
    return g_stateDir + "/platform.log";
}

long fileSize(const std::string &path) {
    std::ifstream in(path, std::ios::binary | std::ios::ate);
    return in ? static_cast<long>(in.tellg()) : 0;
}

struct Watchdog {
    bool fired = false;
};

Eina_Bool watchdogCb(void *data) {
    static_cast<Watchdog *>(data)->fired = true;
    return ECORE_CALLBACK_CANCEL;
}
}  // namespace

void EflTestEnvironment::SetUp() {
    char tmpl[] = "/tmp/quillset-test-XXXXXX";
    ASSERT_NE(mkdtemp(tmpl), nullptr);
    g_stateDir = tmpl;
    setenv("QUILLSET_STATE", g_stateDir.c_str(), 1);
    setenv("ELM_DISPLAY", "buffer", 1);
    setenv("ECORE_NO_SYSTEM_MODULES", "1", 1);
    // The platform's services are asked on a bus that does not exist, never the host's own.
    setenv("DBUS_SYSTEM_BUS_ADDRESS", ("unix:path=" + g_stateDir + "/no-bus.sock").c_str(), 1);
    // Texts as an English watch shows them.
    setenv("LANGUAGE", "en_US:en", 1);
    setlocale(LC_ALL, "C.UTF-8");
    StInfoApp::bindTextDomain();
    // Otherwise the first test to start EFL's cache daemon lends it its output, and the test
    // runner waits for that daemon to end, long after the test has.
    efreet_cache_disable();
    // The watch's faces, as the platform gives them to applications.
    setenv("FONTCONFIG_FILE", (sim::dataDir() + "/platform/fonts.conf").c_str(), 1);
    elm_init(0, nullptr);
    // The watch's own look, as the platform loads it for applications.
    std::string theme = sim::dataDir() + "/platform/watch-theme.edj";
    elm_theme_overlay_add(nullptr, theme.c_str());
    elm_config_transition_duration_factor_set(0.0);
    edje_transition_duration_factor_set(0.0);
}

void EflTestEnvironment::TearDown() {
    elm_shutdown();
    std::string cmd = "rm -rf '" + g_stateDir + "'";
    if (system(cmd.c_str()) != 0)
        fprintf(stderr, "could not remove %s\n", g_stateDir.c_str());
}

const std::string &EflTestEnvironment::stateDir() {
    return g_stateDir;
}

void EflTest::SetUp() {
    _logStart = fileSize(logPath());
    _win = elm_win_add(nullptr, "test", ELM_WIN_BASIC);
    evas_object_resize(_win, 360, 360);
    evas_object_show(_win);
    evas_object_resize(_win, 360, 360);
}

void EflTest::TearDown() {
    if (_win)
        evas_object_del(_win);
    _win = nullptr;
    settle(0.01);
}

bool EflTest::runUntil(const std::function<bool()> &done, double timeout) {
    Watchdog watchdog;
    Ecore_Timer *timer = ecore_timer_add(timeout, watchdogCb, &watchdog);
    while (!done() && !watchdog.fired) {
        ecore_main_loop_iterate();
        usleep(1000);
    }
    if (!watchdog.fired)
        ecore_timer_del(timer);
    return done();
}

void EflTest::settle(double seconds) {
    double end = ecore_time_get() + seconds;
    runUntil([end]() { return ecore_time_get() >= end; }, seconds + 1.0);
}

void EflTestEnvironment::seedShippedProfile(const char *name) {
    sim::Profile profile;
    std::string error;
    ASSERT_TRUE(profile.load(sim::Profile::resolve(name, sim::profilesDir()), &error)) << error;
    ASSERT_TRUE(profile.seed(stateDir(), &error)) << error;
    platform::reloadProfile();
}

void EflTest::writeProfile(const std::string &json) {
    std::ofstream(g_stateDir + "/profile.json") << json;
    platform::reloadProfile();
}

void EflTest::writeSettings(const nlohmann::json &settings) {
    for (const auto &setting : settings.items()) {
        const char *key = setting.key().c_str();
        const nlohmann::json &value = setting.value();
        if (value.is_boolean())
            vconf_set_bool(key, value.get<bool>());
        else if (value.is_number())
            vconf_set_int(key, value.get<int>());
        else if (value.is_string())
            vconf_set_str(key, value.get<std::string>().c_str());
        else
            std::remove((g_stateDir + "/settings/" + key).c_str());
    }
}

std::string EflTest::textOf(Elm_Object_Item *item, const char *part) {
    const Elm_Genlist_Item_Class *itc = elm_genlist_item_item_class_get(item);
    char *text =
        itc->func.text_get(elm_object_item_data_get(item), elm_object_item_widget_get(item), part);
    std::string out = text ? text : "(none)";
    free(text);
    return out;
}

app_assist::WNaviframeController *EflTest::makeNaviframe() {
    auto *naviframe = new app_assist::WNaviframeController();
    EXPECT_TRUE(naviframe->create(_win, nullptr));
    Evas_Object *obj = naviframe->getEvasObject();
    evas_object_size_hint_weight_set(obj, EVAS_HINT_EXPAND, EVAS_HINT_EXPAND);
    elm_win_resize_object_add(_win, obj);
    evas_object_show(obj);
    return naviframe;
}

std::string EflTest::logSinceStart() const {
    std::ifstream in(logPath(), std::ios::binary);
    if (!in)
        return std::string();
    in.seekg(_logStart);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

int EflTest::centreRow(Evas_Object *list) {
    int x, y, w, h, pos;
    evas_object_geometry_get(list, &x, &y, &w, &h);
    Elm_Object_Item *item = elm_genlist_at_xy_item_get(list, x + w / 2, y + h / 2, &pos);
    return item ? elm_genlist_item_index_get(item) : -1;
}

void EflTest::click(Evas_Object *obj) {
    int x, y, w, h;
    evas_object_geometry_get(obj, &x, &y, &w, &h);
    Evas *evas = evas_object_evas_get(obj);
    unsigned int ts = static_cast<unsigned int>(ecore_time_get() * 1000);
    evas_event_feed_mouse_move(evas, x + w / 2, y + h / 2, ts, nullptr);
    evas_event_feed_mouse_down(evas, 1, EVAS_BUTTON_NONE, ts + 1, nullptr);
    evas_event_feed_mouse_up(evas, 1, EVAS_BUTTON_NONE, ts + 50, nullptr);
}

void EflTest::tapItem(Elm_Object_Item *item) {
    elm_genlist_item_show(item, ELM_GENLIST_ITEM_SCROLLTO_IN);
    settle();
    Evas_Object *track = elm_object_item_track(item);
    ASSERT_NE(track, nullptr);
    click(track);
    elm_object_item_untrack(item);
    settle();
}

void EflTest::pressKey(const char *key) {
    Evas *evas = evas_object_evas_get(_win);
    unsigned int ts = static_cast<unsigned int>(ecore_time_get() * 1000);
    evas_event_feed_key_down(evas, key, key, nullptr, nullptr, ts, nullptr);
    evas_event_feed_key_up(evas, key, key, nullptr, nullptr, ts + 10, nullptr);
    settle();
}
