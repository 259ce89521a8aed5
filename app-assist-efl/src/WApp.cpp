#include "WApp.h"

#include "WDefine.h"
#include "WWindowController.h"

namespace app_assist {

WApp *WApp::_instance = nullptr;

WApp::WApp() : _windowController(nullptr), _firstLaunch(true) {
    if (_instance)
        WERROR("a second application object was created");
    _instance = this;
}

WApp::~WApp() {
    delete _windowController;
    if (_instance == this)
        _instance = nullptr;
}

int WApp::start(int argc, char *argv[]) {
    onStart(argc, argv);
    ui_app_lifecycle_callback_s callbacks = {_createCb, _terminateCb, _pauseCb, _resumeCb,
                                             _appControlCb};
    return ui_app_main(argc, argv, &callbacks, this);
}

bool WApp::attachWindowController(WWindowController *windowController) {
    if (!windowController)
        return false;
    if (_windowController) {
        WERROR("a window controller is already attached");
        delete windowController;
        return false;
    }
    if (!windowController->create()) {
        delete windowController;
        return false;
    }
    _windowController = windowController;
    return true;
}

void WApp::onStart(int, char *[]) {}

bool WApp::onCreate() {
    return true;
}

void WApp::onTerminate() {}

void WApp::onPause() {}

void WApp::onResume() {}

void WApp::onAppControl(app_control_h, bool) {}

bool WApp::_createCb(void *data) {
    return static_cast<WApp *>(data)->onCreate();
}

void WApp::_terminateCb(void *data) {
    auto *self = static_cast<WApp *>(data);
    self->onTerminate();
    // Views go with the window, while the toolkit is still up.
    delete self->_windowController;
    self->_windowController = nullptr;
}

void WApp::_pauseCb(void *data) {
    static_cast<WApp *>(data)->onPause();
}

void WApp::_resumeCb(void *data) {
    static_cast<WApp *>(data)->onResume();
}

void WApp::_appControlCb(app_control_h request, void *data) {
    auto *self = static_cast<WApp *>(data);
    bool firstLaunch = self->_firstLaunch;
    self->_firstLaunch = false;
    self->onAppControl(request, firstLaunch);
}

}  // namespace app_assist
