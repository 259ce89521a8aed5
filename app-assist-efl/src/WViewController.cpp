#include "WViewController.h"

#include "WDefine.h"
#include "WPopupController.h"

namespace app_assist {

WViewController::WViewController() : _obj(nullptr), _naviframe(nullptr), _popup(nullptr) {}

WViewController::~WViewController() {
    if (_obj) {
        // Deleted directly rather than through its view: the view must not call back.
        efl_event_callback_del(_obj, EFL_EVENT_INVALIDATE, _objDelCb, this);
        Evas_Object *obj = _obj;
        _obj = nullptr;
        evas_object_del(obj);
    }
}

const char *WViewController::getClassName() const {
    return "WViewController";
}

bool WViewController::create(Evas_Object *parent, void *viewParam) {
    if (_obj) {
        WERROR("%s: already created", getClassName());
        return false;
    }
    if (!onCreate())
        return false;
    Evas_Object *obj = onCreateView(parent, viewParam);
    if (!obj) {
        WERROR("%s: onCreateView gave no view", getClassName());
        return false;
    }
    _obj = obj;
    // Heard at the object level: a view whose input is frozen (a launch in progress) is
    // deleted without its EVAS_CALLBACK_DEL.
    efl_event_callback_add(_obj, EFL_EVENT_INVALIDATE, _objDelCb, this);
    onCreated();
    return true;
}

void WViewController::destroy() {
    if (_obj)
        evas_object_del(_obj);
    else
        delete this;
}

bool WViewController::attachPopup(WPopupController *popup) {
    if (!popup)
        return false;
    if (!_obj) {
        WERROR("%s: no view to attach a popup to", getClassName());
        delete popup;
        return false;
    }
    if (_popup)
        _popup->destroy();
    popup->_owner = this;
    // Popups sit on the window, over everything; this view closes them when it goes away.
    Evas_Object *window = elm_object_top_widget_get(_obj);
    if (!popup->create(window ? window : _obj, nullptr)) {
        popup->_owner = nullptr;
        delete popup;
        return false;
    }
    _popup = popup;
    return true;
}

void WViewController::_popupDestroyed(WPopupController *popup) {
    if (_popup == popup)
        _popup = nullptr;
}

bool WViewController::onCreate() {
    return true;
}

void WViewController::onCreated() {}

void WViewController::onDestroy() {}

void WViewController::onSetContainerProperties(Evas_Object *) {}

Elm_Object_Item *WViewController::onPushToNaviframe(Evas_Object *naviframe) {
    return elm_naviframe_item_push(naviframe, nullptr, nullptr, nullptr, _obj, nullptr);
}

void WViewController::onPushed(Elm_Object_Item *) {}

bool WViewController::onPop() {
    return true;
}

void WViewController::onBecomeTop() {}

void WViewController::onSetAsPageContent(Elm_Object_Item *) {}

void WViewController::onSetMoreButton(Evas_Object *) {}

void WViewController::_objDelCb(void *data, const Efl_Event *) {
    auto *self = static_cast<WViewController *>(data);
    if (WPopupController *popup = self->_popup) {
        popup->_owner = nullptr;
        self->_popup = nullptr;
        // When the whole window goes, it takes the popup with it.
        Evas_Object *window = elm_object_top_widget_get(popup->getEvasObject());
        if (window && !efl_invalidating_get(window) && !efl_invalidated_get(window))
            popup->destroy();
    }
    self->onDestroy();
    self->_obj = nullptr;
    delete self;
}

}  // namespace app_assist
