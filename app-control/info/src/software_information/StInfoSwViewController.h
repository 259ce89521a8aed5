#ifndef _ST_INFO_SW_VIEW_CONTROLLER_H_
#define _ST_INFO_SW_VIEW_CONTROLLER_H_

#include <WContentViewController.h>

#include <functional>

#include "StInfoSwMenuItem.h"

// The software information page. Five taps in a row on the software version turn developer
// mode on.
class StInfoSwViewController : public app_assist::WContentViewController {
public:
    StInfoSwViewController();
    ~StInfoSwViewController() override;

    // How long the developer-mode toast stays: longer while the screen reader speaks it.
    static double devModeToastTimeout();

protected:
    Evas_Object *onCreateView(Evas_Object *parent, void *viewParam) override;
    void onPushed(Elm_Object_Item *naviItem) override;
    void onBecomeTop() override;

private:
    void _appendRow(Evas_Object *genlist, StInfoSwMenuItem::ItemType type,
                    std::function<void()> action);
    void _onSwVersionTapped();
    void _showDevModeToast();
    void _launchTessidSettings();
    static void _onToastDismiss(void *data, Evas_Object *obj, void *eventInfo);
    static void _onToastGone(void *data, Evas_Object *obj, void *eventInfo);

    Evas_Object *_circleGenlist;
    int _devModeTapCount;
};

#endif
