#include "StInfoSwitchItem.h"

#include <libintl.h>

#include <cstdio>
#include <cstring>

#include "StInfoDefines.h"

StInfoSwitchItem::StInfoSwitchItem() : _check(nullptr) {}

StInfoSwitchItem::~StInfoSwitchItem() {
    if (_check)
        efl_event_callback_del(_check, EFL_EVENT_INVALIDATE, _checkDelCb, this);
}

void StInfoSwitchItem::setOnSelect(std::function<void()> action) {
    _onSelect = std::move(action);
}

void StInfoSwitchItem::setCheckState(bool on) {
    if (!_check)
        return;
    elm_object_signal_emit(_check, on ? "elm,activate,check,on" : "elm,activate,check,off", "elm");
    elm_check_state_set(_check, on ? EINA_TRUE : EINA_FALSE);
}

Elm_Genlist_Item_Class *StInfoSwitchItem::getItemClassNew() {
    Elm_Genlist_Item_Class *itc = elm_genlist_item_class_new();
    itc->item_style = "1text.1icon.1";
    itc->func.text_get = _textGetCb;
    itc->func.content_get = _contentGetCb;
    itc->func.del = delItemCb;
    return itc;
}

void StInfoSwitchItem::onSelect(Elm_Object_Item *item) {
    elm_genlist_item_selected_set(item, EINA_FALSE);
    if (_onSelect)
        _onSelect();
}

char *StInfoSwitchItem::_textGetCb(void *data, Evas_Object *, const char *part) {
    auto *self = static_cast<StInfoSwitchItem *>(data);
    if (!part || strcmp(part, "elm.text"))
        return nullptr;
    bool on = self->_isOn();
    // The row speaks for its switch: "Switch, On".
    char description[256] = {0};
    snprintf(description, sizeof(description), "%s, %s",
             dgettext(ST_INFO_TEXT_DOMAIN, "WDS_ALM_TBOPT_SWITCH"),
             dgettext(ST_INFO_TEXT_DOMAIN,
                      on ? "WDS_PN_SBODY_ON_M_STATUS_ABB" : "WDS_PN_SBODY_OFF_M_STATUS_ABB"));
    if (Elm_Object_Item *item = self->getElmObjectItem())
        elm_atspi_accessible_description_set(item, description);
    return strdup(dgettext(ST_INFO_TEXT_DOMAIN, self->_label()));
}

Evas_Object *StInfoSwitchItem::_contentGetCb(void *data, Evas_Object *obj, const char *part) {
    auto *self = static_cast<StInfoSwitchItem *>(data);
    if (!part || (strcmp(part, "elm.icon") && strcmp(part, "elm.swallow.icon")))
        return nullptr;
    Evas_Object *check = elm_check_add(obj);
    elm_atspi_accessible_can_highlight_set(check, EINA_FALSE);
    elm_object_style_set(check, "on&off/list");
    evas_object_size_hint_weight_set(check, EVAS_HINT_EXPAND, EVAS_HINT_EXPAND);
    evas_object_size_hint_align_set(check, EVAS_HINT_FILL, EVAS_HINT_FILL);
    elm_object_signal_emit(check, "elm,event,pass,enabled", "elm");
    elm_check_state_set(check, self->_isOn() ? EINA_TRUE : EINA_FALSE);
    if (self->_check)
        efl_event_callback_del(self->_check, EFL_EVENT_INVALIDATE, _checkDelCb, self);
    self->_check = check;
    efl_event_callback_add(check, EFL_EVENT_INVALIDATE, _checkDelCb, self);
    return check;
}

void StInfoSwitchItem::_checkDelCb(void *data, const Efl_Event *event) {
    // The list dropped the row's content: later state changes must not reach a stale check.
    auto *self = static_cast<StInfoSwitchItem *>(data);
    if (self->_check == event->object)
        self->_check = nullptr;
}
