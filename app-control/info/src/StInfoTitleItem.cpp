#include "StInfoTitleItem.h"

#include <libintl.h>

#include <cstring>

#include "StInfoDefines.h"

StInfoTitleItem::StInfoTitleItem(const std::string &titleId) : _title(titleId) {}

Elm_Genlist_Item_Class *StInfoTitleItem::getItemClassNew() {
    Elm_Genlist_Item_Class *itc = elm_genlist_item_class_new();
    itc->item_style = "title";
    itc->func.text_get = _textGetCb;
    itc->func.del = delItemCb;
    return itc;
}

char *StInfoTitleItem::_textGetCb(void *data, Evas_Object *, const char *) {
    auto *self = static_cast<StInfoTitleItem *>(data);
    return strdup(dgettext(ST_INFO_TEXT_DOMAIN, self->_title.c_str()));
}
