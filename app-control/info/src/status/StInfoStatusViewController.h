#ifndef _ST_INFO_STATUS_VIEW_CONTROLLER_H_
#define _ST_INFO_STATUS_VIEW_CONTROLLER_H_

#include "StInfoListViewController.h"

#include "StInfoStatusMenuItem.h"

// The device status page: identifiers of the watch, its SIM, eSIM and radios. Which rows it
// has depends on the device and its carrier configuration.
class StInfoStatusViewController : public StInfoListViewController {
public:
    StInfoStatusViewController();
    ~StInfoStatusViewController() override;

protected:
    Evas_Object *onCreateView(Evas_Object *parent, void *viewParam) override;

private:
    void _appendRow(Evas_Object *genlist, StInfoStatusMenuItem::AboutMenu kind,
                    Elm_Genlist_Item_Class **itc, std::function<void()> action);
    void _launchEsimSettings();
    void _countKeyStringTap();

    int _keyStringTapCount;
};

#endif
