#include "StAppControlLauncher.h"

#include "StLog.h"

StAppControlLauncher *StAppControlLauncher::_instance = nullptr;

StAppControlLauncher::StAppControlLauncher() : _timer(nullptr), _appControl(nullptr) {}

StAppControlLauncher::~StAppControlLauncher() {
    _clearAll();
    _blockedObject.reset();
}

StAppControlLauncher *StAppControlLauncher::getInstance() {
    if (!_instance)
        _instance = new StAppControlLauncher();
    return _instance;
}

void StAppControlLauncher::destroy() {
    delete _instance;
    _instance = nullptr;
}

bool StAppControlLauncher::sendLaunchRequest(app_control_h request, app_control_reply_cb replyCb,
                                             void *userData, Evas_Object *blockObject,
                                             double timeout) {
    _clearAll();
    _appControl = request;

    if (blockObject) {
        _blockedObject = app_assist::wevasobject_get_weak_ptr(blockObject);
        if (auto blocked = _blockedObject.lock()) {
            Evas_Object *obj = blocked->getEvasObject();
            evas_object_freeze_events_set(obj, EINA_TRUE);
            _timer = ecore_timer_add(timeout, _timeOutCb, this);
            // The toolkit runs no EVAS_CALLBACK_DEL of an object whose input is frozen: the
            // deletion is heard at the object level instead.
            efl_event_callback_add(obj, EFL_EVENT_INVALIDATE, _evasObjDelCb, this);
        }
    }

    int ret = app_control_send_launch_request(request, replyCb, userData);
    if (ret == APP_CONTROL_ERROR_NONE)
        return true;
    ST_ERR("app_control ret error code= %d", ret);
    app_control_destroy(request);
    _appControl = nullptr;
    return false;
}

void StAppControlLauncher::terminate() {
    _clearAll();
}

bool StAppControlLauncher::isUiBlocked() {
    auto blocked = _blockedObject.lock();
    return blocked && blocked->getEvasObject();
}

void StAppControlLauncher::_thaw() {
    auto blocked = _blockedObject.lock();
    if (blocked && blocked->getEvasObject()) {
        Evas_Object *obj = blocked->getEvasObject();
        evas_object_freeze_events_set(obj, EINA_FALSE);
        efl_event_callback_del(obj, EFL_EVENT_INVALIDATE, _evasObjDelCb, this);
        _blockedObject.reset();
    }
}

void StAppControlLauncher::unblockUi() {
    _thaw();
    if (_timer) {
        ecore_timer_del(_timer);
        _timer = nullptr;
    }
}

void StAppControlLauncher::_clearAll() {
    if (_appControl) {
        int ret = app_control_send_terminate_request(_appControl);
        if (ret != APP_CONTROL_ERROR_NONE)
            ST_WARN("app_control ret error code= %d", ret);
        app_control_destroy(_appControl);
        _appControl = nullptr;
    }
    unblockUi();
}

Eina_Bool StAppControlLauncher::_timeOutCb(void *data) {
    auto *self = static_cast<StAppControlLauncher *>(data);
    self->_thaw();
    self->_timer = nullptr;
    return ECORE_CALLBACK_CANCEL;
}

void StAppControlLauncher::_evasObjDelCb(void *data, const Efl_Event *) {
    auto *self = static_cast<StAppControlLauncher *>(data);
    // The object goes away with its input; only the time-out is left to cancel.
    if (self->_timer) {
        ecore_timer_del(self->_timer);
        self->_timer = nullptr;
    }
}
