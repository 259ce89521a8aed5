#include "StInfoStatusViewController.h"

#include <app_control.h>
#include <system_info.h>
#include <vconf.h>

#include "StAppControlLauncher.h"
#include "StInfoDefines.h"
#include "StInfoStatusModel.h"
#include "StLog.h"
#include "StLogManager.h"

namespace {

const char *const kTitle = "WDS_ST_TMBODY_DEVICE_INFORMATION";
const char *const kEsimSettingsAppId = "com.nerova.esim-settings";
const char *const kKeyStringAppId = "com.nerova.tizenvelkeystring";
const char *const kSendTextOperation = "http://tizen.org/appcontrol/operation/send_text";
const int kKeyStringTaps = 5;
const double kLaunchBlockSeconds = 1.0;

}  // namespace

StInfoStatusViewController::StInfoStatusViewController() : _keyStringTapCount(0) {
    StLogManager::getInstance()->log(ST_LOG_URI_FEATURE_SURVEY, "ST15", nullptr, nullptr);
}

StInfoStatusViewController::~StInfoStatusViewController() {}

void StInfoStatusViewController::_appendRow(Evas_Object *genlist,
                                            StInfoStatusMenuItem::AboutMenu kind,
                                            Elm_Genlist_Item_Class **itc,
                                            std::function<void()> action) {
    auto *row = new StInfoStatusMenuItem(kind);
    // Rows of one group share the item class of its first row.
    if (!*itc)
        *itc = row->getItemClassNew();
    Elm_Object_Item *item =
        elm_genlist_item_append(genlist, *itc, row, nullptr, ELM_GENLIST_ITEM_NONE,
                                app_assist::WGenlistItem::getSelectCb(), row);
    row->setElmObjectItem(item);
    row->setOnSelect(std::move(action));
}

Evas_Object *StInfoStatusViewController::onCreateView(Evas_Object *parent, void *) {
    setTitle(kTitle);

    Evas_Object *genlist = _createList(parent, kTitle);

    StInfoStatusModel *model = StInfoStatusModel::getInstance();
    auto resetTaps = [this]() { _keyStringTapCount = 0; };
    using Row = StInfoStatusMenuItem;

    Elm_Genlist_Item_Class *itc = nullptr;
    if (model->isEsimMenuEnabled()) {
        int standalone = 0;
        vconf_get_int("db/setup_wizard/standalone", &standalone);
        // A watch set up on its own has no phone-side eSIM settings to open.
        if (standalone == 0)
            _appendRow(genlist, Row::ESIM_PROFILE, &itc, [this]() { _launchEsimSettings(); });
        _appendRow(genlist, Row::EID, &itc, resetTaps);
        elm_genlist_item_class_free(itc);
        itc = nullptr;
    }

    if (model->isHwVersionMenuEnabled())
        _appendRow(genlist, Row::HW_VERSION, &itc, resetTaps);
    _appendRow(genlist, Row::PHONE_NUMBER, &itc, resetTaps);

    bool cdma = false;
    if (system_info_get_platform_bool(ST_PLATFORM_KEY("feature/network.telephony.service.cdma"),
                                      &cdma) != SYSTEM_INFO_ERROR_NONE) {
        ST_ERR("system_info_get_platform_bool for cdma feature failed!!!");
        cdma = false;
    }
    if (!cdma) {
        for (Row::AboutMenu kind : {Row::IMEI, Row::IMEISV, Row::ICCID})
            _appendRow(genlist, kind, &itc, resetTaps);
    } else {
        for (Row::AboutMenu kind : {Row::PRL, Row::ERI, Row::MEID})
            _appendRow(genlist, kind, &itc, resetTaps);
    }
    if (model->isImsMenuEnabled())
        _appendRow(genlist, Row::IMS_REGISTRATION, &itc, resetTaps);
    _appendRow(genlist, Row::WIFI_MAC_ADDRESS, &itc, resetTaps);
    _appendRow(genlist, Row::BLUETOOTH_ADDRESS, &itc, resetTaps);
    _appendRow(genlist, Row::SERIAL_NUMBER, &itc, [this]() { _countKeyStringTap(); });
    if (model->isBarcodeMenuEnabled())
        _appendRow(genlist, Row::BARCODE_NUMBER, &itc, resetTaps);
    elm_genlist_item_class_free(itc);

    return genlist;
}

void StInfoStatusViewController::_launchEsimSettings() {
    _keyStringTapCount = 0;
    app_control_h request = nullptr;
    if (app_control_create(&request) != APP_CONTROL_ERROR_NONE)
        return;
    app_control_set_app_id(request, kEsimSettingsAppId);
    app_control_add_extra_data(request, "mode", "profile_list");
    app_control_set_launch_mode(request, APP_CONTROL_LAUNCH_MODE_GROUP);
    StAppControlLauncher::getInstance()->sendLaunchRequest(request, nullptr, nullptr,
                                                           getEvasObject(), kLaunchBlockSeconds);
}

void StInfoStatusViewController::_countKeyStringTap() {
    if (++_keyStringTapCount != kKeyStringTaps)
        return;
    _keyStringTapCount = 0;
    // The service menu opens on its own, without blocking input.
    app_control_h request = nullptr;
    if (app_control_create(&request) != APP_CONTROL_ERROR_NONE)
        return;
    app_control_set_operation(request, kSendTextOperation);
    app_control_set_app_id(request, kKeyStringAppId);
    app_control_send_launch_request(request, nullptr, nullptr);
    app_control_destroy(request);
}
