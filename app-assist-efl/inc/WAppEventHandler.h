#ifndef _APP_ASSIST_WAPP_EVENT_HANDLER_H_
#define _APP_ASSIST_WAPP_EVENT_HANDLER_H_

#include <app.h>

#include <vector>

namespace app_assist {

// Registry of platform application-event handlers; removes them all when destroyed.
class WAppEventHandler {
public:
    WAppEventHandler();
    ~WAppEventHandler();

    bool addEventHandler(app_event_type_e eventType, app_event_cb callback, void *userData);
    void removeAll();

    WAppEventHandler(const WAppEventHandler &) = delete;
    WAppEventHandler &operator=(const WAppEventHandler &) = delete;

private:
    std::vector<app_event_handler_h> _handlers;
};

}  // namespace app_assist

#endif
