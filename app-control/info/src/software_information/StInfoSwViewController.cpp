#include "StInfoSwViewController.h"

#include <WEvasObject.h>
#include <WNaviframeController.h>
#include <app_control.h>
#include <efl_extension.h>
#include <libintl.h>
#include <package_manager.h>
#include <vconf.h>

#include "StAppControlLauncher.h"
#include "StInfoDefines.h"
#include "StLog.h"
#include "tessid/StInfoTessidViewController.h"

namespace {

const char *const kTitle = "WDS_ST_TMBODY_SOFTWARE_INFORMATION";
const char *const kTessidClientPackage = "com.nerova.tessid.ravelclient";
const char *const kTessidSettingsAppId = "com.nerova.tessid.ravelclient.settings";
const char *const kDeveloperOptionKey = "db/setting/developer_option_state";
const char *const kScreenReaderKey = "db/setting/accessibility/tts";
const int kDevModeTaps = 5;
const double kToastSeconds = 2.0;
const double kToastScreenReaderSeconds = 8.0;
const double kLaunchBlockSeconds = 1.0;

}  // namespace

StInfoSwViewController::StInfoSwViewController() : _devModeTapCount(0) {}

StInfoSwViewController::~StInfoSwViewController() {}

Evas_Object *StInfoSwViewController::onCreateView(Evas_Object *parent, void *) {
    setTitle(kTitle);

    Evas_Object *genlist = _createList(parent, kTitle);

    _appendRow(genlist, StInfoSwMenuItem::TIZEN_VERSION, [this]() { _devModeTapCount = 0; });
    _appendRow(genlist, StInfoSwMenuItem::SW_VERSION, [this]() { _onSwVersionTapped(); });
    _appendRow(genlist, StInfoSwMenuItem::TESSID_VERSION,
               [this]() { getNaviframeController()->push(new StInfoTessidViewController()); });

    // The client's settings are offered only where the client is installed.
    package_info_h package = nullptr;
    if (package_manager_get_package_info(kTessidClientPackage, &package) ==
            PACKAGE_MANAGER_ERROR_NONE &&
        package) {
        package_info_destroy(package);
        _appendRow(genlist, StInfoSwMenuItem::TESSID_CONFIGURE,
                   [this]() { _launchTessidSettings(); });
    }

    _appendRow(genlist, StInfoSwMenuItem::SECURITY_STATUS, [this]() { _devModeTapCount = 0; });
    return genlist;
}

void StInfoSwViewController::_appendRow(Evas_Object *genlist, StInfoSwMenuItem::ItemType type,
                                        std::function<void()> action) {
    auto *row = new StInfoSwMenuItem(type);
    Elm_Genlist_Item_Class *itc = row->getItemClassNew();
    Elm_Object_Item *item =
        elm_genlist_item_append(genlist, itc, row, nullptr, ELM_GENLIST_ITEM_NONE,
                                app_assist::WGenlistItem::getSelectCb(), row);
    row->setElmObjectItem(item);
    row->setOnSelect(std::move(action));
    elm_genlist_item_class_free(itc);
}

void StInfoSwViewController::_onSwVersionTapped() {
    if (++_devModeTapCount != kDevModeTaps)
        return;
    _devModeTapCount = 0;
    // The key is written every fifth tap, whatever it holds: the toast confirms each time.
    if (vconf_set_bool(kDeveloperOptionKey, 1) != VCONF_OK)
        ST_ERR("VCONFKEY_SETAPPL_DEVELOPER_OPTION_STATE set failed");
    _showDevModeToast();
}

double StInfoSwViewController::devModeToastTimeout() {
    int screenReader = 0;
    if (vconf_get_bool(kScreenReaderKey, &screenReader) != VCONF_OK)
        return kToastSeconds;
    return screenReader ? kToastScreenReaderSeconds : kToastSeconds;
}

void StInfoSwViewController::_showDevModeToast() {
    Evas_Object *toast = elm_popup_add(getNaviframeController()->getEvasObject());
    elm_object_style_set(toast, "toast/circle");
    elm_popup_orient_set(toast, ELM_POPUP_ORIENT_BOTTOM);
    // A toast only informs: taps go on reaching the list under it.
    elm_popup_allow_events_set(toast, EINA_TRUE);
    evas_object_size_hint_weight_set(toast, EVAS_HINT_EXPAND, EVAS_HINT_EXPAND);
    eext_object_event_callback_add(toast, EEXT_CALLBACK_BACK, _onToastDismiss, nullptr);
    evas_object_smart_callback_add(toast, "dismissed", _onToastGone, nullptr);
    // At its time-out the popup only hides itself.
    evas_object_smart_callback_add(toast, "timeout", _onToastGone, nullptr);
    elm_object_part_text_set(
        toast, "elm.text",
        dgettext(ST_INFO_TEXT_DOMAIN, "WDS_ST_TPOP_DEVELOPER_MODE_TURNED_ON_ABB"));
    elm_popup_timeout_set(toast, devModeToastTimeout());
    evas_object_show(toast);
}

void StInfoSwViewController::_onToastDismiss(void *, Evas_Object *obj, void *) {
    if (obj)
        elm_popup_dismiss(obj);
}

void StInfoSwViewController::_onToastGone(void *, Evas_Object *obj, void *) {
    // A toast that has gone away is not kept until the application ends. It is deleted once
    // the popup has finished with its own callback, unless something (a time-out during the
    // dismissal, the window's end) has deleted it first.
    if (!obj)
        return;
    evas_object_smart_callback_del(obj, "dismissed", _onToastGone);
    evas_object_smart_callback_del(obj, "timeout", _onToastGone);
    auto *toast = new app_assist::WEvasObjectWeakPtr(app_assist::wevasobject_get_weak_ptr(obj));
    ecore_job_add(
        [](void *data) {
            auto *weak = static_cast<app_assist::WEvasObjectWeakPtr *>(data);
            if (auto toast = weak->lock())
                evas_object_del(toast->getEvasObject());
            delete weak;
        },
        toast);
}

void StInfoSwViewController::_launchTessidSettings() {
    app_control_h request = nullptr;
    if (app_control_create(&request) != APP_CONTROL_ERROR_NONE)
        return;
    app_control_set_app_id(request, kTessidSettingsAppId);
    app_control_set_launch_mode(request, APP_CONTROL_LAUNCH_MODE_GROUP);
    StAppControlLauncher::getInstance()->sendLaunchRequest(request, nullptr, nullptr,
                                                           getEvasObject(), kLaunchBlockSeconds);
}
