#ifndef _APP_ASSIST_WNAVIFRAME_CONTROLLER_H_
#define _APP_ASSIST_WNAVIFRAME_CONTROLLER_H_

#include <functional>
#include <vector>

#include "WViewController.h"

namespace app_assist {

// A naviframe of pages. It owns every pushed view: popping a page deletes its view. The hardware
// back key pops the top page; popping the last one calls the last-item-pop handler instead.
class WNaviframeController : public WViewController {
public:
    WNaviframeController();
    const char *getClassName() const override;

    // Creates the view when needed and pushes it; the naviframe owns it from then on, also
    // when the push fails.
    bool push(WViewController *view, const char *viewName = nullptr, void *viewParam = nullptr);
    // Pops the top page. With one page left, calls the last-item-pop handler: when it sets the
    // flag to true, the last page is popped as well.
    bool pop();
    void setOnLastItemPop(std::function<void(bool *popOut)> handler);

    WViewController *getTopView() const;
    std::vector<WViewController *> getViews() const;

protected:
    Evas_Object *onCreateView(Evas_Object *parent, void *viewParam) override;
    void onDestroy() override;

private:
    static void _backCb(void *data, Evas_Object *obj, void *eventInfo);

    std::function<void(bool *)> _onLastItemPop;
    bool _popping;
};

}  // namespace app_assist

#endif
