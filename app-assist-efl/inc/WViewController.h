#ifndef _APP_ASSIST_WVIEW_CONTROLLER_H_
#define _APP_ASSIST_WVIEW_CONTROLLER_H_

#include <Elementary.h>

#include <string>

namespace app_assist {

class WNaviframeController;
class WPopupController;

// A controller that owns one Evas object (its view). The object owns the controller: when it
// is deleted, onDestroy runs and the controller deletes itself.
class WViewController {
public:
    WViewController();

    virtual const char *getClassName() const;
    // Builds the view (onCreate, onCreateView, onCreated). False when no view was made; the
    // caller then still owns the controller.
    virtual bool create(Evas_Object *parent, void *viewParam);
    // Deletes the view and, with it, this controller.
    virtual void destroy();

    Evas_Object *getEvasObject() const { return _obj; }
    WNaviframeController *getNaviframeController() const { return _naviframe; }
    void setName(const char *name) { _name = name ? name : ""; }
    const char *getName() const { return _name.c_str(); }

    // Shows a popup over this view. The popup is owned by its own Evas object; it is closed
    // when this view goes away, and a previous popup of this view is closed first.
    bool attachPopup(WPopupController *popup);
    WPopupController *getPopup() const { return _popup; }

    WViewController(const WViewController &) = delete;
    WViewController &operator=(const WViewController &) = delete;

protected:
    virtual bool onCreate();
    virtual Evas_Object *onCreateView(Evas_Object *parent, void *viewParam) = 0;
    virtual void onCreated();
    virtual void onDestroy();

public:
    virtual ~WViewController();

protected:
    friend class WNaviframeController;
    friend class WPopupController;

    // Naviframe hooks.
    virtual void onSetContainerProperties(Evas_Object *container);
    virtual Elm_Object_Item *onPushToNaviframe(Evas_Object *naviframe);
    virtual void onPushed(Elm_Object_Item *naviItem);
    // False keeps the view on the naviframe.
    virtual bool onPop();
    virtual void onBecomeTop();
    virtual void onSetAsPageContent(Elm_Object_Item *naviItem);
    virtual void onSetMoreButton(Evas_Object *moreButton);

private:
    static void _objDelCb(void *data, const Efl_Event *event);
    void _popupDestroyed(WPopupController *popup);

    Evas_Object *_obj;
    WNaviframeController *_naviframe;
    WPopupController *_popup;
    std::string _name;
};

}  // namespace app_assist

#endif
