#include "WWindowController.h"

#include <Ecore_X.h>
#include <app.h>

#include "WDefine.h"
#include "WViewController.h"

namespace app_assist {

namespace {
// The watch's screen.
const int kScreenSize = 360;

}  // namespace

Eina_Bool WWindowController::_fitToScreenCb(void *data) {
    // Some engines size a new window to its minimum when it is shown; give it the screen again.
    auto *self = static_cast<WWindowController *>(data);
    self->_fitTimer = nullptr;
    if (self->_win)
        evas_object_resize(self->_win, kScreenSize, kScreenSize);
    return ECORE_CALLBACK_CANCEL;
}

WWindowController::WWindowController(const char *name, Elm_Win_Type type)
    : _name(name ? name : ""),
      _type(type),
      _win(nullptr),
      _baseView(nullptr),
      _fitTimer(nullptr),
      _mapHandler(nullptr) {}

WWindowController::~WWindowController() {
    if (_fitTimer)
        ecore_timer_del(_fitTimer);
    if (_mapHandler)
        ecore_event_handler_del(_mapHandler);
    if (_win) {
        efl_event_callback_del(_win, EFL_EVENT_INVALIDATE, _winDelCb, this);
        Evas_Object *win = _win;
        _win = nullptr;
        evas_object_del(win);
    }
}

Evas_Object *WWindowController::onCreateWin(const char *name, Elm_Win_Type type) {
    Evas_Object *win = elm_win_add(nullptr, name, type);
    if (!win)
        return nullptr;
    elm_win_title_set(win, name);
    elm_win_autodel_set(win, EINA_FALSE);
    evas_object_size_hint_min_set(win, kScreenSize, kScreenSize);
    evas_object_size_hint_max_set(win, kScreenSize, kScreenSize);
    evas_object_resize(win, kScreenSize, kScreenSize);

    Evas_Object *bg = elm_bg_add(win);
    elm_bg_color_set(bg, 0, 0, 0);
    evas_object_size_hint_weight_set(bg, EVAS_HINT_EXPAND, EVAS_HINT_EXPAND);
    elm_win_resize_object_add(win, bg);
    evas_object_show(bg);
    return win;
}

bool WWindowController::create() {
    if (_win)
        return true;
    _win = onCreateWin(_name.c_str(), _type);
    if (!_win) {
        WERROR("window %s could not be created", _name.c_str());
        return false;
    }
    efl_event_callback_add(_win, EFL_EVENT_INVALIDATE, _winDelCb, this);
    evas_object_smart_callback_add(_win, "delete,request", _deleteRequestCb, this);
    evas_object_show(_win);
    // Without a window manager an X window stays withdrawn and the toolkit never draws it;
    // say it is a normal window, as a window manager would.
    if (Ecore_X_Window xwin = elm_win_xwindow_get(_win)) {
        ecore_x_icccm_state_set(xwin, ECORE_X_WINDOW_STATE_HINT_NORMAL);
        _mapHandler = ecore_event_handler_add(ECORE_X_EVENT_WINDOW_SHOW, _mappedCb, this);
    }
    _fitTimer = ecore_timer_add(0.0, _fitToScreenCb, this);
    return true;
}

// Nor does anything give it the keys: X then sends them to whatever window is under the
// pointer. Once it is on screen, it takes the focus unless some window already holds it.
Eina_Bool WWindowController::_mappedCb(void *data, int, void *event) {
    auto *self = static_cast<WWindowController *>(data);
    auto *shown = static_cast<Ecore_X_Event_Window_Show *>(event);
    Ecore_X_Window xwin = self->_win ? elm_win_xwindow_get(self->_win) : 0;
    if (!xwin || shown->win != xwin)
        return ECORE_CALLBACK_PASS_ON;
    // None or PointerRoot: no window holds the focus.
    if (ecore_x_window_focus_get() <= 1)
        ecore_x_window_focus(xwin);
    ecore_event_handler_del(self->_mapHandler);
    self->_mapHandler = nullptr;
    return ECORE_CALLBACK_PASS_ON;
}

bool WWindowController::attachBaseViewController(WViewController *view) {
    if (!view)
        return false;
    if (!_win || _baseView) {
        WERROR("no window, or a base view is already attached");
        delete view;
        return false;
    }
    if (!view->getEvasObject() && !view->create(_win, nullptr)) {
        delete view;
        return false;
    }
    Evas_Object *obj = view->getEvasObject();
    evas_object_size_hint_weight_set(obj, EVAS_HINT_EXPAND, EVAS_HINT_EXPAND);
    elm_win_resize_object_add(_win, obj);
    evas_object_show(obj);
    efl_event_callback_add(obj, EFL_EVENT_INVALIDATE, _baseViewDelCb, this);
    _baseView = view;
    return true;
}

void WWindowController::_baseViewDelCb(void *data, const Efl_Event *) {
    static_cast<WWindowController *>(data)->_baseView = nullptr;
}

void WWindowController::_winDelCb(void *data, const Efl_Event *) {
    auto *self = static_cast<WWindowController *>(data);
    self->_win = nullptr;
}

void WWindowController::_deleteRequestCb(void *, Evas_Object *, void *) {
    // Closing the window on a desktop ends the application the way the platform would.
    ui_app_exit();
}

}  // namespace app_assist
