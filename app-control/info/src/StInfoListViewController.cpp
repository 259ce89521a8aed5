#include "StInfoListViewController.h"

#include <efl_extension.h>
#include <uxt_genlist.h>

#include "StCircleSurfaceManager.h"
#include "StInfoDefines.h"
#include "StInfoPageTitle.h"
#include "StInfoTitleItem.h"

StInfoListViewController::StInfoListViewController() : _circleGenlist(nullptr) {}

StInfoListViewController::~StInfoListViewController() {}

Evas_Object *StInfoListViewController::_createList(Evas_Object *parent, const char *titleId) {
    Evas_Object *genlist = elm_genlist_add(parent);
    elm_genlist_mode_set(genlist, ELM_LIST_COMPRESS);
    _circleGenlist = eext_circle_object_genlist_add(
        genlist, StCircleSurfaceManager::getInstance()->getCircleSurface());
    eext_circle_object_genlist_scroller_policy_set(_circleGenlist, ELM_SCROLLER_POLICY_OFF,
                                                   ELM_SCROLLER_POLICY_AUTO);
    eext_rotary_object_event_activated_set(_circleGenlist, EINA_TRUE);
    uxt_genlist_set_bottom_margin_enabled(genlist, true);

    // The title row keeps no item handle.
    auto *title = new StInfoTitleItem(titleId);
    Elm_Genlist_Item_Class *itc = title->getItemClassNew();
    Elm_Object_Item *item = elm_genlist_item_append(genlist, itc, title, nullptr,
                                                    ELM_GENLIST_ITEM_NONE, nullptr, nullptr);
    elm_genlist_item_class_free(itc);
    elm_genlist_item_select_mode_set(item, ELM_OBJECT_SELECT_MODE_DISPLAY_ONLY);
    return genlist;
}

Elm_Object_Item *StInfoListViewController::_appendDisplayRow(Evas_Object *genlist,
                                                             StDecoratableItem *row) {
    Elm_Genlist_Item_Class *itc = row->getItemClassStatic();
    bool shared = itc != nullptr;
    if (!shared)
        itc = row->getItemClassNew();
    Elm_Object_Item *item = elm_genlist_item_append(genlist, itc, row, nullptr,
                                                    ELM_GENLIST_ITEM_NONE, nullptr, nullptr);
    if (!shared)
        elm_genlist_item_class_free(itc);
    elm_genlist_item_select_mode_set(item, ELM_OBJECT_SELECT_MODE_DISPLAY_ONLY);
    row->setElmObjectItem(item);
    return item;
}

void StInfoListViewController::onPushed(Elm_Object_Item *naviItem) {
    useTitleInsidePage(this, naviItem);
}

void StInfoListViewController::onBecomeTop() {
    eext_rotary_object_event_activated_set(_circleGenlist, EINA_TRUE);
}
