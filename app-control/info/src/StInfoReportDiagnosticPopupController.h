#ifndef _ST_INFO_REPORT_DIAGNOSTIC_POPUP_CONTROLLER_H_
#define _ST_INFO_REPORT_DIAGNOSTIC_POPUP_CONTROLLER_H_

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
    static char *_descriptionCb(void *data, Evas_Object *obj);
    void _releaseBody(Evas_Object *layout);
    static void _bodyDelCb(void *data, Evas *evas, Evas_Object *layout, void *eventInfo);
    static void _seeAllClickedCb(void *data, Evas_Object *obj, void *eventInfo);

    Evas_Object *_textAccessObject;
    Evas_Object *_seeAllButton;
    Evas_Object *_rotaryOwner;
};

#endif
