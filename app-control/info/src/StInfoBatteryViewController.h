#ifndef _ST_INFO_BATTERY_VIEW_CONTROLLER_H_
#define _ST_INFO_BATTERY_VIEW_CONTROLLER_H_

#include "StInfoListViewController.h"

// The read-only battery information page.
class StInfoBatteryViewController : public StInfoListViewController {
public:
    StInfoBatteryViewController();
    ~StInfoBatteryViewController() override;

protected:
    Evas_Object *onCreateView(Evas_Object *parent, void *viewParam) override;
};

#endif
