#ifndef _ST_INFO_REGULATORY_INFO_VIEW_CONTROLLER_H_
#define _ST_INFO_REGULATORY_INFO_VIEW_CONTROLLER_H_

#include <WContentViewController.h>

// The regulatory information page: certification marks and their texts, in a scroller that
// the bezel turns.
class StInfoRegulatoryInfoViewController : public app_assist::WContentViewController {
public:
    StInfoRegulatoryInfoViewController();
    ~StInfoRegulatoryInfoViewController() override;

protected:
    Evas_Object *onCreateView(Evas_Object *parent, void *viewParam) override;
    void onPushed(Elm_Object_Item *naviItem) override;

private:
    Evas_Object *_circleScroller;
};

#endif
