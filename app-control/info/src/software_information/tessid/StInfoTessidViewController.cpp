#include "StInfoTessidViewController.h"

#include "StInfoTessidMenuItem.h"

StInfoTessidViewController::StInfoTessidViewController() {}

StInfoTessidViewController::~StInfoTessidViewController() {}

Evas_Object *StInfoTessidViewController::onCreateView(Evas_Object *parent, void *) {
    Evas_Object *genlist = _createList(parent, "IDS_ST_MBODY_TESSID_VERSION");
    for (auto type :
         {StInfoTessidMenuItem::TESSID_PLATFORM_VERSION, StInfoTessidMenuItem::WEARABLE_SDK_VERSION,
          StInfoTessidMenuItem::PELOR_VERSION, StInfoTessidMenuItem::VIMO_VERSION})
        _appendDisplayRow(genlist, new StInfoTessidMenuItem(type));
    return genlist;
}
