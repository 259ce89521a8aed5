#include "StInfoTessidViewController.h"

#include <efl_extension.h>
#include <uxt_genlist.h>

#include "StCircleSurfaceManager.h"
#include "StInfoTessidMenuItem.h"
#include "StInfoTitleItem.h"

StInfoTessidViewController::StInfoTessidViewController() {}

StInfoTessidViewController::~StInfoTessidViewController() {}

Evas_Object *StInfoTessidViewController::onCreateView(Evas_Object *parent, void *) {
    Evas_Object *genlist = elm_genlist_add(parent);
    elm_genlist_mode_set(genlist, ELM_LIST_COMPRESS);

    Evas_Object *circle = eext_circle_object_genlist_add(
        genlist, StCircleSurfaceManager::getInstance()->getCircleSurface());
    eext_circle_object_genlist_scroller_policy_set(circle, ELM_SCROLLER_POLICY_OFF,
                                                   ELM_SCROLLER_POLICY_AUTO);
    eext_rotary_object_event_activated_set(circle, EINA_TRUE);

    auto *title = new StInfoTitleItem("IDS_ST_MBODY_TESSID_VERSION");
    Elm_Genlist_Item_Class *itc = title->getItemClassNew();
    Elm_Object_Item *titleItem = elm_genlist_item_append(genlist, itc, title, nullptr,
                                                         ELM_GENLIST_ITEM_NONE, nullptr, nullptr);
    elm_genlist_item_class_free(itc);
    elm_genlist_item_select_mode_set(titleItem, ELM_OBJECT_SELECT_MODE_DISPLAY_ONLY);

    for (auto type :
         {StInfoTessidMenuItem::TESSID_PLATFORM_VERSION, StInfoTessidMenuItem::WEARABLE_SDK_VERSION,
          StInfoTessidMenuItem::PELOR_VERSION, StInfoTessidMenuItem::VIMO_VERSION}) {
        auto *row = new StInfoTessidMenuItem(type);
        itc = row->getItemClassNew();
        Elm_Object_Item *item = elm_genlist_item_append(genlist, itc, row, nullptr,
                                                        ELM_GENLIST_ITEM_NONE, nullptr, nullptr);
        row->setElmObjectItem(item);
        elm_genlist_item_select_mode_set(item, ELM_OBJECT_SELECT_MODE_DISPLAY_ONLY);
        elm_genlist_item_class_free(itc);
    }

    uxt_genlist_set_bottom_margin_enabled(genlist, EINA_TRUE);
    return genlist;
}

void StInfoTessidViewController::onPushed(Elm_Object_Item *naviItem) {
    elm_naviframe_item_title_enabled_set(naviItem, EINA_FALSE, EINA_FALSE);
}
