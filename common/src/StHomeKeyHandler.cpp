#include "StHomeKeyHandler.h"

#include <app.h>

#include "StLog.h"

namespace {

// The path begins with a capital O: that is how the platform sends it.
const char *const kHomeRaisePath = "/Org/Tizen/Coreapps/home/raise";
const char *const kHomeRaiseInterface = "org.tizen.coreapps.home.raise";
const char *const kHomeRaiseMember = "homeraise";

}  // namespace

StHomeKeyHandler::StHomeKeyHandler() : _connection(nullptr), _signalHandler(nullptr) {}

StHomeKeyHandler::~StHomeKeyHandler() {
    unregisterHandler();
}

bool StHomeKeyHandler::registerHandler() {
    if (_connection) {
        ST_ERR("Already registered!");
        return true;
    }
    // Every successful registration holds one library reference, dropped by unregisterHandler.
    eldbus_init();
    _connection = eldbus_connection_get(ELDBUS_CONNECTION_TYPE_SYSTEM);
    if (!_connection) {
        ST_ERR("Failed to get dbus connection");
        eldbus_shutdown();
        return false;
    }
    _signalHandler =
        eldbus_signal_handler_add(_connection, nullptr, kHomeRaisePath, kHomeRaiseInterface,
                                  kHomeRaiseMember, _homeKeyPressedCb, this);
    if (_signalHandler)
        return true;

    ST_ERR("e_dbus_signal_handler_add() failed");
    eldbus_connection_unref(_connection);
    eldbus_shutdown();
    _connection = nullptr;
    return false;
}

void StHomeKeyHandler::unregisterHandler() {
    if (!_connection)
        return;
    if (_signalHandler)
        eldbus_signal_handler_del(_signalHandler);
    _signalHandler = nullptr;
    eldbus_connection_unref(_connection);
    eldbus_shutdown();
    _connection = nullptr;
}

void StHomeKeyHandler::setHomeKeyPressedCb(std::function<void()> callback) {
    _homeKeyPressedCallback = std::move(callback);
}

void StHomeKeyHandler::_homeKeyPressedCb(void *data, const Eldbus_Message *) {
    auto *self = static_cast<StHomeKeyHandler *>(data);
    if (!self)
        return;
    if (!self->_homeKeyPressedCallback)
        ui_app_exit();
    else
        self->_homeKeyPressedCallback();
}
