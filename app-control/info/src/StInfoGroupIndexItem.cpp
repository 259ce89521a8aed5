#include "StInfoGroupIndexItem.h"

#include <libintl.h>

#include <cstdlib>
#include <cstring>

#include "StInfoDefines.h"

StInfoGroupIndexItem::StInfoGroupIndexItem(const char *textId)
    : _text(textId ? strdup(textId) : nullptr) {}

StInfoGroupIndexItem::~StInfoGroupIndexItem() {
    free(_text);
}

Elm_Genlist_Item_Class *StInfoGroupIndexItem::getItemClassStatic() {
    // One class for every header, never freed; its fields are written again on every call.
    static Elm_Genlist_Item_Class itc;
    itc.version = ELM_GENLIST_ITEM_CLASS_VERSION;
    itc.item_style = "groupindex";
    itc.func.text_get = _textGetCb;
    itc.func.content_get = nullptr;
    itc.func.del = delItemCb;
    return &itc;
}

char *StInfoGroupIndexItem::_textGetCb(void *data, Evas_Object *, const char *part) {
    auto *self = static_cast<StInfoGroupIndexItem *>(data);
    if (!self->_text || !part || strcmp(part, "elm.text"))
        return nullptr;
    return strdup(dgettext(ST_INFO_TEXT_DOMAIN, self->_text));
}
