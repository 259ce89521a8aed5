#include "StInfoBatteryModel.h"

#include <system_info.h>

#include <cstdio>
#include <cstdlib>

#include "StInfoDefines.h"

StInfoBatteryModel *StInfoBatteryModel::_instance = nullptr;

StInfoBatteryModel *StInfoBatteryModel::getInstance() {
    if (!_instance)
        _instance = new StInfoBatteryModel();
    return _instance;
}

StInfoBatteryModel::~StInfoBatteryModel() {}

// A watch without these keys simply has nothing to show; that is not worth a log line.
std::string StInfoBatteryModel::getRatedInfo() {
    char *current = nullptr;
    char *voltage = nullptr;
    system_info_get_custom_string(ST_VENDOR_KEY("tizen/system/rated_current"), &current);
    system_info_get_custom_string(ST_VENDOR_KEY("tizen/system/rated_voltage"), &voltage);
    if (!current || !voltage) {
        free(current);
        free(voltage);
        return ST_UNKNOWN_TEXT;
    }
    char rated[32] = {};
    snprintf(rated, sizeof(rated), "%s; %s", voltage, current);
    free(current);
    free(voltage);
    return rated;
}

std::string StInfoBatteryModel::getBatteryCapacity() {
    char *capacity = nullptr;
    system_info_get_custom_string(ST_VENDOR_KEY("tizen/system/battery_capacity"), &capacity);
    if (!capacity)
        return ST_UNKNOWN_TEXT;
    char text[16] = {};
    snprintf(text, sizeof(text), "%s", capacity);
    free(capacity);
    return text;
}
