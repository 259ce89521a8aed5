#ifndef _ST_INFO_MAIN_VIEW_CONTROLLER_H_
#define _ST_INFO_MAIN_VIEW_CONTROLLER_H_

#include "StInfoListViewController.h"

#include <functional>

// The About list: the first screen of the application.
class StInfoMainViewController : public StInfoListViewController {
public:
    StInfoMainViewController();
    ~StInfoMainViewController() override;

protected:
    Evas_Object *onCreateView(Evas_Object *parent, void *viewParam) override;

private:
    // An entry that opens a page: page() makes the view to push.
    Elm_Object_Item *_addPageEntry(Evas_Object *genlist, const char *textId,
                                   std::function<app_assist::WViewController *()> page);
    void _addDeviceInformationEntry(Evas_Object *genlist);
    void _addInformationPageEntries(Evas_Object *genlist);
    void _addSwitches(Evas_Object *genlist);
    void _addPrivacyNotice(Evas_Object *genlist);
    void _addRelativeLinks(Evas_Object *genlist);
    void _onReportDiagnosticTapped();
    void _onUsbDebugTapped();
    void _createRestrictedPopup();
    static void _realizedCb(void *data, Evas_Object *obj, void *eventInfo);
    static void _entryPressedCb(void *entry, Evas_Object *obj, void *pressed);

    Elm_Object_Item *_usbDebugItem;
    Elm_Object_Item *_privacyNoticeItem;
    unsigned int _reportDiagnosticListenerId;
    unsigned int _usbDebugListenerId;
    unsigned int _usbDebugRestrictionListenerId;
};

#endif
