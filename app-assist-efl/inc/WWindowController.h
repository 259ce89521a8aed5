#ifndef _APP_ASSIST_WWINDOW_CONTROLLER_H_
#define _APP_ASSIST_WWINDOW_CONTROLLER_H_

#include <Elementary.h>

#include <string>

namespace app_assist {

class WViewController;

// The application's window: a round screen with one base view (usually a naviframe).
class WWindowController {
public:
    WWindowController(const char *name, Elm_Win_Type type);
    virtual ~WWindowController();

    // Makes the window; called by WApp::attachWindowController.
    bool create();
    // The base view fills the window; the window owns it.
    bool attachBaseViewController(WViewController *view);
    WViewController *getBaseViewController() const { return _baseView; }
    Evas_Object *getEvasObject() const { return _win; }
    const char *getName() const { return _name.c_str(); }

    WWindowController(const WWindowController &) = delete;
    WWindowController &operator=(const WWindowController &) = delete;

protected:
    virtual Evas_Object *onCreateWin(const char *name, Elm_Win_Type type);

private:
    static void _winDelCb(void *data, const Efl_Event *event);
    static void _deleteRequestCb(void *data, Evas_Object *obj, void *eventInfo);
    static Eina_Bool _fitToScreenCb(void *data);
    static Eina_Bool _mappedCb(void *data, int type, void *event);
    static void _baseViewDelCb(void *data, const Efl_Event *event);

    std::string _name;
    Elm_Win_Type _type;
    Evas_Object *_win;
    WViewController *_baseView;
    Ecore_Timer *_fitTimer;
    Ecore_Event_Handler *_mapHandler;
};

}  // namespace app_assist

#endif
