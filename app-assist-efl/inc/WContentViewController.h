#ifndef _APP_ASSIST_WCONTENT_VIEW_CONTROLLER_H_
#define _APP_ASSIST_WCONTENT_VIEW_CONTROLLER_H_

#include "WViewController.h"

namespace app_assist {

// A page that is pushed onto a naviframe. Its title (a text id) becomes the naviframe item's
// title text.
class WContentViewController : public WViewController {
public:
    WContentViewController();
    const char *getClassName() const override;

    void setTitle(const char *title);
    const char *getTitle() const;

protected:
    Elm_Object_Item *onPushToNaviframe(Evas_Object *naviframe) override;

private:
    std::string _title;
    bool _hasTitle;
};

}  // namespace app_assist

#endif
