#ifndef _APP_ASSIST_WAPP_H_
#define _APP_ASSIST_WAPP_H_

#include <app.h>

namespace app_assist {

class WWindowController;

// The application object: runs the platform's application loop and turns its lifecycle calls
// into virtual operations. One per process.
class WApp {
public:
    WApp();
    virtual ~WApp();

    // Runs the main loop until the application exits; returns the platform's result.
    int start(int argc, char *argv[]);
    // The application owns the window controller from here on.
    bool attachWindowController(WWindowController *windowController);
    WWindowController *getWindowController() const { return _windowController; }

    static WApp *getInstance() { return _instance; }

    WApp(const WApp &) = delete;
    WApp &operator=(const WApp &) = delete;

protected:
    virtual void onStart(int argc, char *argv[]);
    virtual bool onCreate();
    virtual void onTerminate();
    virtual void onPause();
    virtual void onResume();
    virtual void onAppControl(app_control_h request, bool firstLaunch);

private:
    static bool _createCb(void *data);
    static void _terminateCb(void *data);
    static void _pauseCb(void *data);
    static void _resumeCb(void *data);
    static void _appControlCb(app_control_h request, void *data);

    WWindowController *_windowController;
    bool _firstLaunch;
    static WApp *_instance;
};

}  // namespace app_assist

#endif
