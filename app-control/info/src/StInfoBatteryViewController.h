#ifndef _ST_INFO_BATTERY_VIEW_CONTROLLER_H_
#define _ST_INFO_BATTERY_VIEW_CONTROLLER_H_

#include <WContentViewController.h>

// The read-only battery information page.
class StInfoBatteryViewController : public app_assist::WContentViewController {
public:
    StInfoBatteryViewController();
    ~StInfoBatteryViewController() override;

protected:
    Evas_Object *onCreateView(Evas_Object *parent, void *viewParam) override;
    void onPushed(Elm_Object_Item *naviItem) override;
    void onBecomeTop() override;

private:
    Evas_Object *_circleGenlist;
};

#endif
