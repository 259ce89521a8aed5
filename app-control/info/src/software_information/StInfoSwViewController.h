#ifndef _ST_INFO_SW_VIEW_CONTROLLER_H_
#define _ST_INFO_SW_VIEW_CONTROLLER_H_

#include "StInfoListViewController.h"

#include <functional>

#include "StInfoSwMenuItem.h"

// The software information page. Five taps in a row on the software version turn developer
// mode on.
class StInfoSwViewController : public StInfoListViewController {
public:
    StInfoSwViewController();
    ~StInfoSwViewController() override;

    // How long the developer-mode toast stays: longer while the screen reader speaks it.
    static double devModeToastTimeout();

protected:
    Evas_Object *onCreateView(Evas_Object *parent, void *viewParam) override;

private:
    void _appendRow(Evas_Object *genlist, StInfoSwMenuItem::ItemType type,
                    std::function<void()> action);
    void _onSwVersionTapped();
    void _showDevModeToast();
    void _launchTessidSettings();
    static void _onToastDismiss(void *data, Evas_Object *obj, void *eventInfo);
    static void _onToastGone(void *data, Evas_Object *obj, void *eventInfo);

    int _devModeTapCount;
};

#endif
