#ifndef _ST_HOME_KEY_HANDLER_H_
#define _ST_HOME_KEY_HANDLER_H_

#include <Eldbus.h>

#include <functional>

// Lets a screen react to the home key, which the platform announces on the system bus as the
// "homeraise" signal. Without an installed action a press ends the application.
class StHomeKeyHandler {
public:
    StHomeKeyHandler();
    virtual ~StHomeKeyHandler();

    // Subscribes to the signal; false when the bus or the subscription is not available. A
    // second call while registered is refused (logged) and changes nothing.
    bool registerHandler();
    // Ends the subscription and the connection; harmless when not registered.
    void unregisterHandler();
    // Replaces the action; it may be set before or after registering and survives
    // unregistering.
    void setHomeKeyPressedCb(std::function<void()> callback);

    StHomeKeyHandler(const StHomeKeyHandler &) = delete;
    StHomeKeyHandler &operator=(const StHomeKeyHandler &) = delete;

private:
    static void _homeKeyPressedCb(void *data, const Eldbus_Message *message);

    Eldbus_Connection *_connection;
    Eldbus_Signal_Handler *_signalHandler;
    std::function<void()> _homeKeyPressedCallback;
};

#endif
