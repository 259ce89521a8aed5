#include "StInfoBatteryViewController.h"

#include <efl_extension.h>
#include <uxt_genlist.h>

#include "StCircleSurfaceManager.h"
#include "StInfoBatteryMenuItem.h"
#include "StInfoDefines.h"
#include "StInfoTitleItem.h"

namespace {

const char *const kTitle = "WDS_ST_TMBODY_BATTERY_INFORMATION";

}  // namespace

StInfoBatteryViewController::StInfoBatteryViewController() : _circleGenlist(nullptr) {}

StInfoBatteryViewController::~StInfoBatteryViewController() {}

Evas_Object *StInfoBatteryViewController::onCreateView(Evas_Object *parent, void *) {
    setTitle(kTitle);

    Evas_Object *genlist = elm_genlist_add(parent);
    elm_genlist_mode_set(genlist, ELM_LIST_COMPRESS);
    uxt_genlist_set_bottom_margin_enabled(genlist, EINA_TRUE);

    _circleGenlist = eext_circle_object_genlist_add(
        genlist, StCircleSurfaceManager::getInstance()->getCircleSurface());
    eext_circle_object_genlist_scroller_policy_set(_circleGenlist, ELM_SCROLLER_POLICY_OFF,
                                                   ELM_SCROLLER_POLICY_AUTO);
    eext_rotary_object_event_activated_set(_circleGenlist, EINA_TRUE);

    auto *title = new StInfoTitleItem(kTitle);
    Elm_Genlist_Item_Class *itc = title->getItemClassNew();
    Elm_Object_Item *titleItem = elm_genlist_item_append(genlist, itc, title, nullptr,
                                                         ELM_GENLIST_ITEM_NONE, nullptr, nullptr);
    elm_genlist_item_class_free(itc);
    elm_genlist_item_select_mode_set(titleItem, ELM_OBJECT_SELECT_MODE_DISPLAY_ONLY);

    for (auto type : {StInfoBatteryMenuItem::RATED, StInfoBatteryMenuItem::BATTERY_CAPACITY}) {
        auto *row = new StInfoBatteryMenuItem(type);
        itc = row->getItemClassNew();
        Elm_Object_Item *item = elm_genlist_item_append(genlist, itc, row, nullptr,
                                                        ELM_GENLIST_ITEM_NONE, nullptr, nullptr);
        row->setElmObjectItem(item);
        elm_genlist_item_select_mode_set(item, ELM_OBJECT_SELECT_MODE_DISPLAY_ONLY);
        elm_genlist_item_class_free(itc);
    }
    return genlist;
}

void StInfoBatteryViewController::onPushed(Elm_Object_Item *naviItem) {
    elm_naviframe_item_title_enabled_set(naviItem, EINA_FALSE, EINA_FALSE);
    elm_object_item_domain_part_text_translatable_set(naviItem, nullptr, ST_INFO_TEXT_DOMAIN,
                                                      EINA_TRUE);
}

void StInfoBatteryViewController::onBecomeTop() {
    eext_rotary_object_event_activated_set(_circleGenlist, EINA_TRUE);
}
