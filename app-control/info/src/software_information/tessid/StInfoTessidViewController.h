#ifndef _ST_INFO_TESSID_VIEW_CONTROLLER_H_
#define _ST_INFO_TESSID_VIEW_CONTROLLER_H_

#include "StInfoListViewController.h"

// The read-only page of security-platform component versions. It sets no title of its own:
// the list's title row names it.
class StInfoTessidViewController : public StInfoListViewController {
public:
    StInfoTessidViewController();
    ~StInfoTessidViewController() override;

protected:
    Evas_Object *onCreateView(Evas_Object *parent, void *viewParam) override;
};

#endif
