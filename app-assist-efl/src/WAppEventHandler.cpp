#include "WAppEventHandler.h"

#include "WDefine.h"

namespace app_assist {

WAppEventHandler::WAppEventHandler() {}

WAppEventHandler::~WAppEventHandler() {
    removeAll();
}

bool WAppEventHandler::addEventHandler(app_event_type_e eventType, app_event_cb callback,
                                       void *userData) {
    app_event_handler_h handler = nullptr;
    int ret = ui_app_add_event_handler(&handler, eventType, callback, userData);
    if (ret != APP_ERROR_NONE) {
        WERROR("ui_app_add_event_handler(%d) failed: %d", eventType, ret);
        return false;
    }
    _handlers.push_back(handler);
    return true;
}

void WAppEventHandler::removeAll() {
    for (app_event_handler_h handler : _handlers)
        ui_app_remove_event_handler(handler);
    _handlers.clear();
}

}  // namespace app_assist
