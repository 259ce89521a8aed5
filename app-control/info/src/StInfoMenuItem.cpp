#include "StInfoMenuItem.h"

#include <libintl.h>

#include <cstring>

#include "StInfoDefines.h"

StInfoMenuItem::StInfoMenuItem(const std::string &textId) : _text(textId) {}

Elm_Genlist_Item_Class *StInfoMenuItem::getItemClassNew() {
    Elm_Genlist_Item_Class *itc = elm_genlist_item_class_new();
    itc->item_style = "1text";
    itc->func.text_get = _textGetCb;
    itc->func.del = delItemCb;
    return itc;
}

void StInfoMenuItem::onSelect(Elm_Object_Item *item) {
    elm_genlist_item_selected_set(item, EINA_FALSE);
    if (_onSelect)
        _onSelect();
}

void StInfoMenuItem::setOnSelect(std::function<void()> action) {
    _onSelect = std::move(action);
}

char *StInfoMenuItem::_textGetCb(void *data, Evas_Object *, const char *part) {
    auto *self = static_cast<StInfoMenuItem *>(data);
    if (!part || strcmp(part, "elm.text"))
        return nullptr;
    return strdup(dgettext(ST_INFO_TEXT_DOMAIN, self->_text.c_str()));
}
