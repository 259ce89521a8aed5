#ifndef _ST_INFO_USB_DEBUGGING_POPUP_CONTROLLER_H_
#define _ST_INFO_USB_DEBUGGING_POPUP_CONTROLLER_H_

#include <WEvasObject.h>
#include <WPopupController.h>

// Asks before USB debugging is switched on.
class StInfoUSBDebuggingPopupController : public app_assist::WPopupController {
public:
    // rotaryOwner gets the bezel back when the popup goes away.
    explicit StInfoUSBDebuggingPopupController(Evas_Object *rotaryOwner);
    ~StInfoUSBDebuggingPopupController() override;

protected:
    Evas_Object *onCreateView(Evas_Object *parent, void *viewParam) override;

private:
    // Weak: the window may be torn down, the list with it, while the popup is still open.
    app_assist::WEvasObjectWeakPtr _rotaryOwner;
};

#endif
