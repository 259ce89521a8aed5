#include "StLogManager.h"

#include <app_preference.h>
#include <bundle.h>
#include <metadata_extractor.h>
#include <vconf.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "StLog.h"

namespace {

const char *const kAppId = "com.nerova.quillset";
const char *const kWatchFaceAppId = "com.nerova.watchface-service";
const char *const kOn = "1000";
const char *const kOff = "0";
const char *const kRingtoneDir = "/opt/usr/data/settings/Ringtones";

int readInt(const char *key) {
    int value = 0;
    vconf_get_int(key, &value);
    return value;
}

int readBool(const char *key) {
    int value = 0;
    vconf_get_bool(key, &value);
    return value;
}

}  // namespace

StLogManager *StLogManager::_pInstance = nullptr;

StLogManager *StLogManager::getInstance() {
    if (!_pInstance) {
        _pInstance = new StLogManager();
        _pInstance->_init();
    }
    return _pInstance;
}

StLogManager::StLogManager() : _logManagerHandle(nullptr) {
    int ret = nerova_log_manager_create(&_logManagerHandle);
    if (ret != 0 || !_logManagerHandle) {
        ST_ERR("nerova_log_manager_create failed - [%d]", ret);
        _logManagerHandle = nullptr;
    }
}

StLogManager::~StLogManager() {
    if (_logManagerHandle)
        nerova_log_manager_destroy(_logManagerHandle);
    // The next getInstance() makes a new logger rather than hand out this freed one.
    if (_pInstance == this)
        _pInstance = nullptr;
}

void StLogManager::_init() {}

bool StLogManager::_ensureHandle() {
    if (_logManagerHandle)
        return true;
    int ret = nerova_log_manager_create(&_logManagerHandle);
    if (ret != 0 || !_logManagerHandle) {
        ST_ERR("nerova_log_manager_create failed - [%d]", ret);
        _logManagerHandle = nullptr;
        return false;
    }
    return true;
}

void StLogManager::_insert(const char *appId, const char *uri, const char *feature,
                           const char *extra, const char *value) {
    bundle *record = bundle_create();
    if (!record)
        return;
    bundle_add_str(record, "app_id", appId);
    bundle_add_str(record, "feature", feature);
    if (extra)
        bundle_add_str(record, "extra", extra);
    if (value)
        bundle_add_str(record, "value", value);
    int requestId = 0;
    nerova_log_manager_insert(_logManagerHandle, uri, record, nullptr, nullptr, &requestId);
    bundle_free(record);
}

void StLogManager::log(const char *appId, const char *uri, const char *feature, const char *extra,
                       const char *value) {
    if (!_ensureHandle() || !feature)
        return;
    _insert(appId, uri, feature, extra, value);
}

void StLogManager::log(const char *uri, const char *feature, const char *extra, const char *value) {
    log(kAppId, uri, feature, extra, value);
}

void StLogManager::_logStatus(const char *appId, const char *feature, const char *extra,
                              const char *value) {
    // Only logStatusAll sends status records, and it makes sure of the handle first.
    if (!_logManagerHandle || !feature)
        return;
    _insert(appId, ST_LOG_URI_STATUS_SURVEY, feature, extra, value);
}

void StLogManager::_logStatus(const char *feature, const char *extra, const char *value) {
    _logStatus(kAppId, feature, extra, value);
}

void StLogManager::_logOnOff(const char *feature, int value) {
    _logStatus(feature, nullptr, value ? kOn : kOff);
}

static int brightnessLevel(int brightness) {
    if (brightness <= 1 || brightness > 100)
        return 1;
    static const struct {
        int upTo;
        int level;
    } kLevels[] = {{20, 2}, {40, 3}, {50, 4}, {60, 5},  {70, 6},
                   {80, 7}, {90, 8}, {95, 9}, {100, 10}};
    for (const auto &step : kLevels)
        if (brightness <= step.upTo)
            return step.level;
    return 1;
}

void StLogManager::_logRingtoneTitle() {
    char *path = vconf_get_str("db/setting/sound/call/ringtone_path");
    if (!path)
        return;
    // Only the preloaded ringtones have titles worth reporting.
    bool preloaded = strncmp(path, kRingtoneDir, strlen(kRingtoneDir)) == 0;
    if (!preloaded) {
        free(path);
        return;
    }
    metadata_extractor_h extractor = nullptr;
    char *title = nullptr;
    if (metadata_extractor_create(&extractor) == METADATA_EXTRACTOR_ERROR_NONE &&
        metadata_extractor_set_path(extractor, path) == METADATA_EXTRACTOR_ERROR_NONE &&
        metadata_extractor_get_metadata(extractor, METADATA_TITLE, &title) ==
            METADATA_EXTRACTOR_ERROR_NONE &&
        title && *title) {
        _logStatus("ST50", title, nullptr);
    }
    free(title);
    free(path);
    if (extractor)
        metadata_extractor_destroy(extractor);
}

void StLogManager::logStatusAll() {
    if (!_ensureHandle())
        return;

    char level[5];
    snprintf(level, sizeof(level), "%d", brightnessLevel(readInt("db/setting/Brightness")));
    _logStatus("S004", level, nullptr);

    char timeout[32];
    snprintf(timeout, sizeof(timeout), "%d", readInt("db/setting/lcd_backlight_normal"));
    _logStatus("ST30", timeout, nullptr);

    _logOnOff("ST31", readBool("db/setting/disconnect_alert"));
    _logOnOff("ST41", readInt("db/private/com.nerova.w-home/indicator_notification_enabled"));
    _logOnOff("S032", readInt("db/private/com.nerova.w-home/watchface_indicator_enabled"));
    _logRingtoneTitle();

    int sound = readBool("db/setting/sound/sound_on");
    int vibration = readBool("db/setting/sound/vibration_on");
    if (sound && !vibration)
        _logStatus("ST51", "Sound", nullptr);
    else if (!sound && vibration)
        _logStatus("ST51", "Vibrate", nullptr);
    else if (!sound && !vibration)
        _logStatus("ST51", "Mute", nullptr);

    _logOnOff("ST61", readBool("db/setting/sound/vibrate_when_notification"));
    _logOnOff("ST62", readBool("db/setting/sound/vibrate_when_ringing"));
    _logOnOff("ST65", readInt("db/private/com.nerova.w-home/apps_auto_launch"));
    int wakeUp = readBool("db/wms/wakeup_by_gesture_enable");
    _logOnOff("ST66", wakeUp);
    _logOnOff("S002", wakeUp);

    if (readInt("db/setup_wizard/standalone") == 0)
        _logOnOff("S000", readBool("db/setting/disconnect_alert"));

    char *powerKey = vconf_get_str("db/wms/powerkey_double_pressing");
    _logStatus("S007", powerKey, nullptr);
    free(powerKey);

    _logOnOff("S014", readBool("db/setting/automatic_low_brightness"));
    _logStatus("S015",
               readInt("db/private/com.nerova.w-home/apps_sort_type") == 0 ? "sort by custom"
                                                                           : "sort by recent",
               nullptr);

    int autoUpdate = readInt("db/smack/spd_auto_update_status");
    _logOnOff("S121", autoUpdate);
    if (autoUpdate)
        _logStatus("S122", nullptr,
                   readInt("db/smack/spd_wifi_only_status") ? "WiFi only" : "WiFi and Mobile data");

    bool dnd = false;
    preference_get_boolean("DND_SCHEDULE_ENABLED", &dnd);
    _logOnOff("S016", dnd);

    _logOnOff("S036", readBool("db/setting/ambient_mode"));
    _logStatus(kWatchFaceAppId, "S036", nullptr,
               readInt("db/setting/watch_order_setting") == 0 ? "Most recent first" : "Custom");
}
