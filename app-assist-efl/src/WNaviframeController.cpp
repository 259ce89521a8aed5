#include "WNaviframeController.h"

#include <efl_extension.h>

#include "WDefine.h"

namespace app_assist {

WNaviframeController::WNaviframeController() : _popping(false) {}

const char *WNaviframeController::getClassName() const {
    return "WNaviframeController";
}

Evas_Object *WNaviframeController::onCreateView(Evas_Object *parent, void *) {
    Evas_Object *naviframe = elm_naviframe_add(parent);
    elm_naviframe_prev_btn_auto_pushed_set(naviframe, EINA_FALSE);
    eext_object_event_callback_add(naviframe, EEXT_CALLBACK_BACK, _backCb, this);
    evas_object_show(naviframe);
    return naviframe;
}

void WNaviframeController::onDestroy() {
    eext_object_event_callback_del(getEvasObject(), EEXT_CALLBACK_BACK, _backCb);
}

bool WNaviframeController::push(WViewController *view, const char *viewName, void *viewParam) {
    if (!view)
        return false;
    Evas_Object *naviframe = getEvasObject();
    if (!naviframe) {
        WERROR("push before the naviframe was created");
        delete view;
        return false;
    }
    if (viewName)
        view->setName(viewName);
    if (!view->getEvasObject() && !view->create(naviframe, viewParam)) {
        delete view;
        return false;
    }
    view->_naviframe = this;
    view->onSetContainerProperties(naviframe);
    Elm_Object_Item *item = view->onPushToNaviframe(naviframe);
    if (!item) {
        WERROR("%s: naviframe push failed", view->getClassName());
        view->destroy();
        return false;
    }
    elm_object_item_data_set(item, view);
    view->onSetAsPageContent(item);
    view->onPushed(item);
    return true;
}

bool WNaviframeController::pop() {
    Evas_Object *naviframe = getEvasObject();
    if (!naviframe || _popping)
        return false;
    Eina_List *items = elm_naviframe_items_get(naviframe);
    unsigned int count = eina_list_count(items);
    Elm_Object_Item *below =
        count >= 2 ? static_cast<Elm_Object_Item *>(eina_list_nth(items, count - 2)) : nullptr;
    eina_list_free(items);
    if (count == 0)
        return false;

    WViewController *top = getTopView();
    if (top && !top->onPop())
        return false;

    if (count == 1) {
        bool popOut = false;
        if (_onLastItemPop)
            _onLastItemPop(&popOut);
        if (popOut) {
            _popping = true;
            elm_naviframe_item_pop(naviframe);
            _popping = false;
        }
        return popOut;
    }

    _popping = true;
    elm_naviframe_item_pop(naviframe);
    _popping = false;
    auto *newTop = static_cast<WViewController *>(elm_object_item_data_get(below));
    if (newTop)
        newTop->onBecomeTop();
    return true;
}

void WNaviframeController::setOnLastItemPop(std::function<void(bool *)> handler) {
    _onLastItemPop = std::move(handler);
}

WViewController *WNaviframeController::getTopView() const {
    if (!getEvasObject())
        return nullptr;
    Elm_Object_Item *top = elm_naviframe_top_item_get(getEvasObject());
    return top ? static_cast<WViewController *>(elm_object_item_data_get(top)) : nullptr;
}

std::vector<WViewController *> WNaviframeController::getViews() const {
    std::vector<WViewController *> views;
    if (!getEvasObject())
        return views;
    Eina_List *items = elm_naviframe_items_get(getEvasObject());
    Eina_List *l;
    void *item;
    EINA_LIST_FOREACH(items, l, item) {
        auto *view = static_cast<WViewController *>(
            elm_object_item_data_get(static_cast<Elm_Object_Item *>(item)));
        if (view)
            views.push_back(view);
    }
    eina_list_free(items);
    return views;
}

void WNaviframeController::_backCb(void *data, Evas_Object *, void *) {
    static_cast<WNaviframeController *>(data)->pop();
}

}  // namespace app_assist
