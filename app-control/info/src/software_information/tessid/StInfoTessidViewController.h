#ifndef _ST_INFO_TESSID_VIEW_CONTROLLER_H_
#define _ST_INFO_TESSID_VIEW_CONTROLLER_H_

#include <WContentViewController.h>

// The read-only page of security-platform component versions.
class StInfoTessidViewController : public app_assist::WContentViewController {
public:
    StInfoTessidViewController();
    ~StInfoTessidViewController() override;

protected:
    Evas_Object *onCreateView(Evas_Object *parent, void *viewParam) override;
    void onPushed(Elm_Object_Item *naviItem) override;
};

#endif
