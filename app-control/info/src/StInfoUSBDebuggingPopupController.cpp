#include "StInfoUSBDebuggingPopupController.h"

#include <efl_extension.h>

#include "StInfoDefines.h"
#include "StInfoModel.h"
#include "StInfoPopupUtils.h"

StInfoUSBDebuggingPopupController::StInfoUSBDebuggingPopupController(Evas_Object *rotaryOwner)
    : _rotaryOwner(app_assist::wevasobject_get_weak_ptr(rotaryOwner)) {}

StInfoUSBDebuggingPopupController::~StInfoUSBDebuggingPopupController() {
    if (auto owner = _rotaryOwner.lock())
        eext_rotary_object_event_activated_set(owner->getEvasObject(), EINA_TRUE);
}

Evas_Object *StInfoUSBDebuggingPopupController::onCreateView(Evas_Object *parent, void *viewParam) {
    setTextTranslatable(ST_INFO_TEXT_DOMAIN);
    setTitle("WDS_ST_MBODY_DEBUGGING_ABB");
    setContent(
        "WDS_ST_POP_ALLOW_YOUR_KESTA_TO_READ_LOG_DATA_COPY_FILES_TO_AND_FROM_YOUR_COMPUTER_AND_"
        "INSTALL_APPS_WITHOUT_NOTIFICATION_HDEVELOPMENT_ONLY_Q");
    setOnAddProperties(setCirclePopupProperties);
    addButton(
        "", [](bool *destroyPopup) { *destroyPopup = true; },
        [](Evas_Object *button) {
            decorateIconButton(button, "WDS_ST_BUTTON_CANCEL", ST_INFO_CANCEL_ICON);
        });
    addButton(
        "",
        [](bool *destroyPopup) {
            // A failed write is logged by the model; the switch then simply stays off.
            StInfoModel::getInstance()->setUsbDebuggingMode(true);
            *destroyPopup = true;
        },
        [](Evas_Object *button) {
            decorateIconButton(button, "WDS_ST_BUTTON_OK_ABB", ST_INFO_OK_ICON);
        });
    return WPopupController::onCreateView(parent, viewParam);
}
