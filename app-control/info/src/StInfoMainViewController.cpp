#include "StInfoMainViewController.h"

#include <WNaviframeController.h>
#include <WPopupController.h>
#include <app_control.h>
#include <efl_extension.h>
#include <vconf.h>

#include "StAppControlLauncher.h"
#include "StInfoDefines.h"
#include "StInfoBatteryViewController.h"
#include "StInfoGeneralMenuItem.h"
#include "StInfoGroupIndexItem.h"
#include "StInfoMenuItem.h"
#include "StInfoModel.h"
#include "StInfoOpenSrcLicenseViewController.h"
#include "StInfoPopupUtils.h"
#include "StInfoRegulatoryInfoViewController.h"
#include "StInfoReportDiagnosticItem.h"
#include "StInfoReportDiagnosticPopupController.h"
#include "StInfoStatusViewController.h"
#include "StInfoSwViewController.h"
#include "StInfoTextUtils.h"
#include "StInfoUSBDebugItem.h"
#include "StInfoUSBDebuggingPopupController.h"
#include "StLog.h"
#include "StLogManager.h"

namespace {

const char *const kTitle = "WDS_ST_BODY_ABOUT_KESTA_ABB";
const char *const kLicenseViewerAppId = "com.nerova.tessid.license-viewer";
const char *const kResetAppId = "com.nerova.quillset.reset";
const double kLaunchBlockSeconds = 1.0;

// Appends a row that reacts to taps through the framework's selection callback.
Elm_Object_Item *appendSelectableRow(Evas_Object *genlist, StDecoratableItem *row) {
    Elm_Genlist_Item_Class *itc = row->getItemClassNew();
    Elm_Object_Item *item =
        elm_genlist_item_append(genlist, itc, row, nullptr, ELM_GENLIST_ITEM_NONE,
                                app_assist::WGenlistItem::getSelectCb(), row);
    elm_genlist_item_class_free(itc);
    return item;
}

}  // namespace

StInfoMainViewController::StInfoMainViewController()
    : _usbDebugItem(nullptr),
      _privacyNoticeItem(nullptr),
      _reportDiagnosticListenerId(0),
      _usbDebugListenerId(0),
      _usbDebugRestrictionListenerId(0) {
    StLogManager::getInstance()->log(ST_LOG_URI_FEATURE_SURVEY, "S003", nullptr, nullptr);
}

StInfoMainViewController::~StInfoMainViewController() {}

Evas_Object *StInfoMainViewController::onCreateView(Evas_Object *parent, void *) {
    setTitle(kTitle);

    Evas_Object *genlist = _createList(parent, kTitle);

    _addDeviceInformationEntry(genlist);
    for (int type : {StInfoGeneralMenuItem::MODEL_NUMBER, StInfoGeneralMenuItem::STORAGE})
        _appendDisplayRow(genlist, new StInfoGeneralMenuItem(type));
    _addInformationPageEntries(genlist);
    _addSwitches(genlist);
    _addPrivacyNotice(genlist);
    _addRelativeLinks(genlist);

    evas_object_smart_callback_add(genlist, "realized", _realizedCb, this);
    return genlist;
}

Elm_Object_Item *StInfoMainViewController::_addPageEntry(
    Evas_Object *genlist, const char *textId, std::function<app_assist::WViewController *()> page) {
    auto *entry = new StInfoMenuItem(textId);
    Elm_Object_Item *item = appendSelectableRow(genlist, entry);
    entry->setElmObjectItem(item);
    entry->setOnSelect([this, page]() { getNaviframeController()->push(page()); });
    return item;
}

void StInfoMainViewController::_addDeviceInformationEntry(Evas_Object *genlist) {
    Elm_Object_Item *entry = _addPageEntry(genlist, "WDS_ST_TMBODY_DEVICE_INFORMATION",
                                           [] { return new StInfoStatusViewController(); });
    // The page formats the phone number with a library of its own, which most visits to this
    // list never need: it starts loading off the main loop when a finger comes down on the
    // entry, so that the page seldom waits for it and other launches never pay for it.
    evas_object_smart_callback_add(genlist, "pressed", _entryPressedCb, entry);
}

void StInfoMainViewController::_entryPressedCb(void *entry, Evas_Object *, void *pressed) {
    if (pressed == entry)
        preparePhoneNumberFormatting();
}

void StInfoMainViewController::_addInformationPageEntries(Evas_Object *genlist) {
    _addPageEntry(genlist, "WDS_ST_TMBODY_SOFTWARE_INFORMATION",
                  [] { return new StInfoSwViewController(); });
    _addPageEntry(genlist, "WDS_ST_TMBODY_BATTERY_INFORMATION",
                  [] { return new StInfoBatteryViewController(); });
    // Only Indian devices carry the regulatory marks page.
    if (StInfoModel::getInstance()->isIndiaCountry())
        _addPageEntry(genlist, "WDS_ST_HEADER_REGULATORY_INFO_ABB",
                      [] { return new StInfoRegulatoryInfoViewController(); });
    _addPageEntry(genlist, "WDS_ST_HEADER_OPEN_SOURCE_LICENCES_ABB",
                  [] { return new StInfoOpenSrcLicenseViewController(); });
}

void StInfoMainViewController::_addSwitches(Evas_Object *genlist) {
    StInfoModel *model = StInfoModel::getInstance();

    auto *diagnostic = new StInfoReportDiagnosticItem();
    diagnostic->setElmObjectItem(appendSelectableRow(genlist, diagnostic));
    diagnostic->setOnSelect([this]() { _onReportDiagnosticTapped(); });
    _reportDiagnosticListenerId = model->getReportDiagnosticChangedSignal().addListener(
        [diagnostic](bool on) { diagnostic->setCheckState(on); }, genlist);

    auto *debug = new StInfoUSBDebugItem();
    _usbDebugItem = appendSelectableRow(genlist, debug);
    debug->setElmObjectItem(_usbDebugItem);
    debug->setOnSelect([this]() { _onUsbDebugTapped(); });
    _usbDebugListenerId = model->getUsbDebuggingChangedSignal().addListener(
        [debug](bool on) { debug->setCheckState(on); }, genlist);

    if (model->isUsbDebuggingMenuRestricted())
        elm_object_item_disabled_set(_usbDebugItem, EINA_TRUE);
    _usbDebugRestrictionListenerId = model->getUsbDebuggingRestrictionChangedSignal().addListener(
        [this](bool restricted) { elm_object_item_disabled_set(_usbDebugItem, restricted); },
        genlist);
}

void StInfoMainViewController::_addPrivacyNotice(Evas_Object *genlist) {
    if (_privacyNoticeItem)
        return;
    // It stands between the two switches.
    auto *notice = new StInfoMenuItem("LDS_TESSID_POP_NEROVA_TESSID_PRIVACY_NOTICE_LEGALPHRASE");
    Elm_Genlist_Item_Class *itc = notice->getItemClassNew();
    _privacyNoticeItem = elm_genlist_item_insert_before(
        genlist, itc, notice, nullptr, _usbDebugItem, ELM_GENLIST_ITEM_NONE,
        app_assist::WGenlistItem::getSelectCb(), notice);
    elm_genlist_item_class_free(itc);
    notice->setElmObjectItem(_privacyNoticeItem);
    notice->setOnSelect([genlist]() {
        app_control_h request = nullptr;
        if (app_control_create(&request) != APP_CONTROL_ERROR_NONE)
            return;
        app_control_set_app_id(request, kLicenseViewerAppId);
        app_control_set_operation(request, APP_CONTROL_OPERATION_DEFAULT);
        app_control_add_extra_data(request, "setting", "setting");
        app_control_set_launch_mode(request, APP_CONTROL_LAUNCH_MODE_GROUP);
        StAppControlLauncher::getInstance()->sendLaunchRequest(request, nullptr, nullptr, genlist,
                                                               kLaunchBlockSeconds);
    });
}

void StInfoMainViewController::_addRelativeLinks(Evas_Object *genlist) {
    int retail = 0, retailDemoUnit = 0;
    if (vconf_get_int("db/retailmode/enabled", &retail) != VCONF_OK) {
        ST_ERR("VCONFKEY_RETAILMODE_ENABLED get error!!");
        retail = 0;
    }
    if (vconf_get_int("db/retailmode/RDU_V9/enabled", &retailDemoUnit) != VCONF_OK) {
        ST_ERR("VCONFKEY_RETAILMODE_ENABLED_RDU_V9 get error!!");
        retailDemoUnit = 0;
    }
    // A demonstration watch in a shop must not offer its own reset.
    if (retail != 0 || retailDemoUnit != 0)
        return;

    auto *header = new StInfoGroupIndexItem("WDS_ST_HEADER_LOOKING_FOR_THIS_Q_ABB");
    Elm_Object_Item *headerItem = elm_genlist_item_append(
        genlist, header->getItemClassStatic(), header, nullptr, ELM_GENLIST_ITEM_NONE,
        app_assist::WGenlistItem::getSelectCb(), header);
    header->setElmObjectItem(headerItem);

    auto *reset = new StInfoMenuItem("WDS_ST_BODY_RESET_KESTA_ABB");
    reset->setElmObjectItem(appendSelectableRow(genlist, reset));
    reset->setOnSelect([genlist]() {
        app_control_h request = nullptr;
        if (app_control_create(&request) == APP_CONTROL_ERROR_NONE) {
            app_control_set_app_id(request, kResetAppId);
            app_control_set_launch_mode(request, APP_CONTROL_LAUNCH_MODE_GROUP);
            StAppControlLauncher::getInstance()->sendLaunchRequest(request, nullptr, nullptr,
                                                                   genlist, kLaunchBlockSeconds);
        }
        StLogManager::getInstance()->log(ST_LOG_URI_FEATURE_SURVEY, "S516", nullptr, nullptr);
    });
}

void StInfoMainViewController::_onReportDiagnosticTapped() {
    StInfoModel *model = StInfoModel::getInstance();
    if (!model->isReportDiagnosticEnabled())
        attachPopup(new StInfoReportDiagnosticPopupController(_circleGenlist));
    else
        model->setReportDiagnosticMode(false);
}

void StInfoMainViewController::_onUsbDebugTapped() {
    StInfoModel *model = StInfoModel::getInstance();
    if (model->isUsbDebuggingChangeRestricted())
        _createRestrictedPopup();
    else if (!model->isUsbDebuggingEnabled())
        attachPopup(new StInfoUSBDebuggingPopupController(_circleGenlist));
    else
        model->setUsbDebuggingMode(false);
}

void StInfoMainViewController::_createRestrictedPopup() {
    auto *popup = new app_assist::WPopupController();
    popup->setTextTranslatable(ST_INFO_TEXT_DOMAIN);
    popup->setContent("IDS_ST_TPOP_SECURITY_POLICY_RESTRICTS_CHANGING_SETTINGS");
    // The round popup look, like the other popups of the list.
    popup->setOnAddProperties(setCirclePopupProperties);
    Evas_Object *circleGenlist = _circleGenlist;
    auto close = [circleGenlist](bool *destroyPopup) {
        eext_rotary_object_event_activated_set(circleGenlist, EINA_TRUE);
        *destroyPopup = true;
    };
    popup->addButton("WDS_ST_BUTTON_OK_ABB", close);
    popup->setOnBack(close);
    attachPopup(popup);
}

void StInfoMainViewController::_realizedCb(void *, Evas_Object *, void *eventInfo) {
    auto *item = static_cast<Elm_Object_Item *>(eventInfo);
    if (!item)
        return;
    auto *row = static_cast<StDecoratableItem *>(elm_object_item_data_get(item));
    if (row)
        row->decorate();
}
