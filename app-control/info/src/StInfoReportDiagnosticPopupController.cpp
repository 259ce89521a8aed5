#include "StInfoReportDiagnosticPopupController.h"

#include <app_control.h>
#include <efl_extension.h>
#include <libintl.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "StInfoDefines.h"
#include "StInfoModel.h"
#include "StInfoPopupUtils.h"
#include "StLog.h"

namespace {
const int kConsentBufferSize = 12288;
const char *const kReportAppId = "com.nerova.quillset.report";
}  // namespace

StInfoReportDiagnosticPopupController::StInfoReportDiagnosticPopupController(
    Evas_Object *rotaryOwner)
    : _textAccessObject(nullptr),
      _seeAllButton(nullptr),
      _rotaryOwner(app_assist::wevasobject_get_weak_ptr(rotaryOwner)) {}

StInfoReportDiagnosticPopupController::~StInfoReportDiagnosticPopupController() {
    if (auto owner = _rotaryOwner.lock())
        eext_rotary_object_event_activated_set(owner->getEvasObject(), EINA_TRUE);
}

std::string StInfoReportDiagnosticPopupController::consentText() {
    static char buffer[kConsentBufferSize];
    memset(buffer, 0, sizeof(buffer));
    snprintf(
        buffer, sizeof(buffer), "%s\n%s %s %s",
        dgettext(ST_INFO_TEXT_DOMAIN,
                 "IDS_ST_BODY_CONSENT_TO_PROVIDE_DIAGNOSTIC_AND_USAGE_DATA_P1_WC1_LEGALPHRASE"),
        dgettext(ST_INFO_TEXT_DOMAIN,
                 "IDS_ST_BODY_CONSENT_TO_PROVIDE_DIAGNOSTIC_AND_USAGE_DATA_P2_WC1_LEGALPHRASE"),
        dgettext(ST_INFO_TEXT_DOMAIN,
                 "IDS_ST_BODY_CONSENT_TO_PROVIDE_DIAGNOSTIC_AND_USAGE_DATA_P3_WC1_LEGALPHRASE"),
        dgettext(ST_INFO_TEXT_DOMAIN,
                 "IDS_ST_BODY_CONSENT_TO_PROVIDE_DIAGNOSTIC_AND_USAGE_DATA_P4_WC1_LEGALPHRASE"));
    return buffer;
}

Evas_Object *StInfoReportDiagnosticPopupController::onCreateView(Evas_Object *parent,
                                                                 void *viewParam) {
    setContent([this](Evas_Object *popupParent) { return _createBody(popupParent); });
    setOnAddProperties([](Evas_Object *popup) {
        setCirclePopupProperties(popup);
        // The text is read once, as the popup's first stop (its text object); the popup
        // itself is announced without a name or a description of its own.
        elm_atspi_accessible_reading_info_type_set(popup,
                                                   ELM_ACCESSIBLE_READING_INFO_TYPE_DESCRIPTION);
    });
    addButton(
        "", [](bool *destroyPopup) { *destroyPopup = true; },
        [this](Evas_Object *button) {
            decorateIconButton(button, "WDS_ST_BUTTON_CANCEL", ST_INFO_CANCEL_ICON);
            if (_seeAllButton)
                elm_atspi_accessible_relationship_append(_seeAllButton, ELM_ATSPI_RELATION_FLOWS_TO,
                                                         button);
        });
    addButton(
        "",
        [](bool *destroyPopup) {
            StInfoModel::getInstance()->setReportDiagnosticMode(true);
            *destroyPopup = true;
        },
        [this](Evas_Object *button) {
            decorateIconButton(button, "WDS_ST_BUTTON_OK_ABB", ST_INFO_OK_ICON);
            if (_textAccessObject)
                elm_atspi_accessible_relationship_append(button, ELM_ATSPI_RELATION_FLOWS_TO,
                                                         _textAccessObject);
        });
    return WPopupController::onCreateView(parent, viewParam);
}

Evas_Object *StInfoReportDiagnosticPopupController::_createBody(Evas_Object *parent) {
    Evas_Object *layout = elm_layout_add(parent);
    std::string file = resourceFile("edje/info.edj");
    // Without its layout the popup still offers its buttons.
    elm_layout_file_set(layout, file.c_str(), "setting/popup/layout/report");

    std::string text = consentText();
    char *markup = elm_entry_utf8_to_markup(text.c_str());
    elm_object_part_text_set(layout, "elm.text", markup);
    free(markup);

    Evas_Object *textPart = const_cast<Evas_Object *>(
        edje_object_part_object_get(elm_layout_edje_get(layout), "elm.text"));
    if (textPart) {
        // The text is read through its own object; the layout would only repeat it.
        elm_atspi_accessible_can_highlight_set(layout, EINA_FALSE);
        _textAccessObject = elm_access_object_register(textPart, parent);
        // The access object must let go of the text part before the layout deletes it.
        efl_event_callback_add(layout, EFL_EVENT_INVALIDATE, _bodyDelCb, this);
        elm_atspi_accessible_description_set(_textAccessObject, text.c_str());
        elm_atspi_accessible_reading_info_type_set(_textAccessObject,
                                                   ELM_ACCESSIBLE_READING_INFO_TYPE_DESCRIPTION);
    }

    Evas_Object *button = elm_button_add(layout);
    elm_object_style_set(button, "popup/circle/body");
    // Focus would scroll the text to the button at once; the text is read from its start.
    elm_object_focus_allow_set(button, EINA_FALSE);
    evas_object_size_hint_weight_set(button, EVAS_HINT_EXPAND, EVAS_HINT_EXPAND);
    elm_object_domain_translatable_part_text_set(
        button, nullptr, nullptr, dgettext(ST_INFO_TEXT_DOMAIN, "MIDS_QAPPS_BUTTON_SEE_ALL"));
    elm_object_part_content_set(layout, "elm.swallow.content", button);
    evas_object_smart_callback_add(button, "clicked", _seeAllClickedCb, this);
    if (_textAccessObject)
        elm_atspi_accessible_relationship_append(_textAccessObject, ELM_ATSPI_RELATION_FLOWS_TO,
                                                 button);
    _seeAllButton = button;

    evas_object_show(layout);
    return layout;
}

void StInfoReportDiagnosticPopupController::_releaseBody(Evas_Object *layout) {
    Evas_Object *textPart = const_cast<Evas_Object *>(
        edje_object_part_object_get(elm_layout_edje_get(layout), "elm.text"));
    if (textPart && _textAccessObject)
        elm_access_object_unregister(textPart);
    _textAccessObject = nullptr;
    _seeAllButton = nullptr;
}

void StInfoReportDiagnosticPopupController::_bodyDelCb(void *data, const Efl_Event *event) {
    static_cast<StInfoReportDiagnosticPopupController *>(data)->_releaseBody(event->object);
}

void StInfoReportDiagnosticPopupController::onDestroy() {
    // The popup goes first and its body after it, when this controller is gone already.
    if (Evas_Object *layout = getContentObject()) {
        efl_event_callback_del(layout, EFL_EVENT_INVALIDATE, _bodyDelCb, this);
        _releaseBody(layout);
    }
    WPopupController::onDestroy();
}

void StInfoReportDiagnosticPopupController::_seeAllClickedCb(void *, Evas_Object *, void *) {
    // Sent directly: the popup stays open beneath the full text.
    app_control_h request = nullptr;
    if (app_control_create(&request) != APP_CONTROL_ERROR_NONE)
        return;
    app_control_set_app_id(request, kReportAppId);
    app_control_set_launch_mode(request, APP_CONTROL_LAUNCH_MODE_GROUP);
    app_control_send_launch_request(request, nullptr, nullptr);
    app_control_destroy(request);
}
