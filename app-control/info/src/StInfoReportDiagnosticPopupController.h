#ifndef _ST_INFO_REPORT_DIAGNOSTIC_POPUP_CONTROLLER_H_
#define _ST_INFO_REPORT_DIAGNOSTIC_POPUP_CONTROLLER_H_

#include <WEvasObject.h>
#include <WPopupController.h>

#include <string>

// The legal text of the consent to send diagnostic and usage data, with a See-all button that
// opens the full text, and Cancel and OK.
class StInfoReportDiagnosticPopupController : public app_assist::WPopupController {
public:
    explicit StInfoReportDiagnosticPopupController(Evas_Object *rotaryOwner);
    ~StInfoReportDiagnosticPopupController() override;

    // The four paragraphs as one text, cut at the consent buffer's size.
    static std::string consentText();

protected:
    Evas_Object *onCreateView(Evas_Object *parent, void *viewParam) override;
    void onDestroy() override;

private:
    Evas_Object *_createBody(Evas_Object *parent);
    void _releaseBody(Evas_Object *layout);
    static void _bodyDelCb(void *data, const Efl_Event *event);
    static void _seeAllClickedCb(void *data, Evas_Object *obj, void *eventInfo);

    Evas_Object *_textAccessObject;
    Evas_Object *_seeAllButton;
    // Weak: the window may be torn down, the list with it, while the popup is still open.
    app_assist::WEvasObjectWeakPtr _rotaryOwner;
};

#endif
