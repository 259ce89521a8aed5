#include "WGenlistItem.h"

namespace app_assist {

WGenlistItem::WGenlistItem() : _item(nullptr) {}

WGenlistItem::~WGenlistItem() {}

Elm_Genlist_Item_Class *WGenlistItem::getItemClassStatic() {
    return nullptr;
}

Elm_Genlist_Item_Class *WGenlistItem::getItemClassNew() {
    return nullptr;
}

void WGenlistItem::onSelect(Elm_Object_Item *) {}

void WGenlistItem::onSetElmObjectItem(Elm_Object_Item *) {}

void WGenlistItem::setElmObjectItem(Elm_Object_Item *item) {
    _item = item;
    onSetElmObjectItem(item);
}

Evas_Smart_Cb WGenlistItem::getSelectCb() {
    return _selectCb;
}

void WGenlistItem::_selectCb(void *data, Evas_Object *, void *eventInfo) {
    if (data)
        static_cast<WGenlistItem *>(data)->onSelect(static_cast<Elm_Object_Item *>(eventInfo));
}

void WGenlistItem::delItemCb(void *data, Evas_Object *) {
    delete static_cast<WGenlistItem *>(data);
}

}  // namespace app_assist
