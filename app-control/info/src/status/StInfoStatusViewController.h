#ifndef _ST_INFO_STATUS_VIEW_CONTROLLER_H_
#define _ST_INFO_STATUS_VIEW_CONTROLLER_H_

#include <WContentViewController.h>

#include "StInfoStatusMenuItem.h"

// The device status page: identifiers of the watch, its SIM, eSIM and radios. Which rows it
// has depends on the device and its carrier configuration.
class StInfoStatusViewController : public app_assist::WContentViewController {
public:
    StInfoStatusViewController();
    ~StInfoStatusViewController() override;

protected:
    Evas_Object *onCreateView(Evas_Object *parent, void *viewParam) override;
    void onPushed(Elm_Object_Item *naviItem) override;
    void onBecomeTop() override;

private:
    void _appendRow(Evas_Object *genlist, StInfoStatusMenuItem::AboutMenu kind,
                    Elm_Genlist_Item_Class **itc, std::function<void()> action);
    void _launchEsimSettings();
    void _countKeyStringTap();

    Evas_Object *_circleGenlist;
    int _keyStringTapCount;
};

#endif
