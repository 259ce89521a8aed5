#ifndef _ST_APP_CONTROL_LAUNCHER_H_
#define _ST_APP_CONTROL_LAUNCHER_H_

#include <Elementary.h>
#include <WEvasObject.h>
#include <app_control.h>

// Starts other applications. While one comes up, touch input on the calling screen is frozen
// for at most the given time; the next launch first asks the platform to end the previous one.
class StAppControlLauncher {
public:
    static StAppControlLauncher *getInstance();
    static void destroy();

    // Takes over request in every case. True when the platform accepted the launch.
    bool sendLaunchRequest(app_control_h request, app_control_reply_cb replyCb, void *userData,
                           Evas_Object *blockObject, double timeout);
    void terminate();
    bool isUiBlocked();
    void unblockUi();

    virtual ~StAppControlLauncher();

private:
    StAppControlLauncher();
    void _clearAll();
    void _thaw();
    static Eina_Bool _timeOutCb(void *data);
    static void _evasObjDelCb(void *data, const Efl_Event *event);

    Ecore_Timer *_timer;
    app_assist::WEvasObjectWeakPtr _blockedObject;
    app_control_h _appControl;
    static StAppControlLauncher *_instance;
};

#endif
