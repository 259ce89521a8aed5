#ifndef _ST_INFO_LIST_VIEW_CONTROLLER_H_
#define _ST_INFO_LIST_VIEW_CONTROLLER_H_

#include <WContentViewController.h>

#include "StDecoratableItem.h"

// A page of the application that is a round list headed by its title row. The naviframe's own
// title stays hidden; the bezel scrolls the list whenever the page is on top.
class StInfoListViewController : public app_assist::WContentViewController {
public:
    StInfoListViewController();
    ~StInfoListViewController() override;

protected:
    void onPushed(Elm_Object_Item *naviItem) override;
    void onBecomeTop() override;

    // The page's list in its circle object, with the title row (text id) as its first row.
    Evas_Object *_createList(Evas_Object *parent, const char *titleId);
    // Appends a row that only shows a value: no selection callback, display-only.
    Elm_Object_Item *_appendDisplayRow(Evas_Object *genlist, StDecoratableItem *row);

    Evas_Object *_circleGenlist;
};

#endif
