#include "StInfoBatteryViewController.h"

#include "StInfoBatteryMenuItem.h"

namespace {

const char *const kTitle = "WDS_ST_TMBODY_BATTERY_INFORMATION";

}  // namespace

StInfoBatteryViewController::StInfoBatteryViewController() {}

StInfoBatteryViewController::~StInfoBatteryViewController() {}

Evas_Object *StInfoBatteryViewController::onCreateView(Evas_Object *parent, void *) {
    setTitle(kTitle);
    Evas_Object *genlist = _createList(parent, kTitle);
    for (auto type : {StInfoBatteryMenuItem::RATED, StInfoBatteryMenuItem::BATTERY_CAPACITY})
        _appendDisplayRow(genlist, new StInfoBatteryMenuItem(type));
    return genlist;
}
