#ifndef _ST_INFO_OPEN_SRC_LICENSE_VIEW_CONTROLLER_H_
#define _ST_INFO_OPEN_SRC_LICENSE_VIEW_CONTROLLER_H_

#include <WContentViewController.h>

#include <string>

// A help page on copying the open-source licence file from the watch to a computer.
class StInfoOpenSrcLicenseViewController : public app_assist::WContentViewController {
public:
    StInfoOpenSrcLicenseViewController();
    ~StInfoOpenSrcLicenseViewController() override;

    // The steps as plain text, in the current language, worded for the sales region.
    static std::string helpText(bool chinaRegion);

protected:
    Evas_Object *onCreateView(Evas_Object *parent, void *viewParam) override;
    void onPushed(Elm_Object_Item *naviItem) override;
};

#endif
