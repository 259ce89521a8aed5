#include "WContentViewController.h"

namespace app_assist {

WContentViewController::WContentViewController() : _hasTitle(false) {}

const char *WContentViewController::getClassName() const {
    return "WContentViewController";
}

void WContentViewController::setTitle(const char *title) {
    _hasTitle = title != nullptr;
    _title = title ? title : "";
}

const char *WContentViewController::getTitle() const {
    return _hasTitle ? _title.c_str() : nullptr;
}

Elm_Object_Item *WContentViewController::onPushToNaviframe(Evas_Object *naviframe) {
    return elm_naviframe_item_push(naviframe, getTitle(), nullptr, nullptr, getEvasObject(),
                                   nullptr);
}

}  // namespace app_assist
