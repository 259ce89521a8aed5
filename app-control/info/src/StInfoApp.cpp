#include "StInfoApp.h"

#include <Elementary.h>
#include <app_manager.h>

#include <WNaviframeController.h>
#include <WWindowController.h>

#include <libintl.h>

#include <cstdlib>
#include <string>

#include "StAppControlLauncher.h"
#include "StInfoDefines.h"
#include "StInfoMainViewController.h"
#include "StInfoTextUtils.h"
#include "StLog.h"

namespace {
const char *const kFallbackSharedResourceDir = "/usr/apps/com.nerova.quillset/shared/res/";
const char *const kColorTableFile = "tables/setting_style_ChangeableColorInfo.xml";
}  // namespace

StInfoApp::StInfoApp() : _colorTable(nullptr) {}

void StInfoApp::bindTextDomain() {
    // Without it the texts show as their string ids; the screens still work.
    char *resourcePath = app_get_resource_path();
    std::string localeDir = std::string(resourcePath ? resourcePath : "") + "locale";
    free(resourcePath);
    bindtextdomain(ST_INFO_TEXT_DOMAIN, localeDir.c_str());
    bind_textdomain_codeset(ST_INFO_TEXT_DOMAIN, "UTF-8");
}

StInfoApp::~StInfoApp() {}

void StInfoApp::_languageChangedCb(app_event_info_h event, void *) {
    char *language = nullptr;
    if (app_event_get_language(event, &language) != APP_ERROR_NONE || !language) {
        ST_ERR("app_event_get_language() failed!");
        return;
    }
    elm_language_set(language);
    free(language);
}

bool StInfoApp::onCreate() {
    _appEventHandler.addEventHandler(APP_EVENT_LANGUAGE_CHANGED, _languageChangedCb, this);

    attachWindowController(
        new app_assist::WWindowController(ST_INFO_WINDOW_NAME, ELM_WIN_DIALOG_BASIC));

    auto *naviframe = new app_assist::WNaviframeController();
    naviframe->setOnLastItemPop([](bool *popOut) {
        *popOut = true;
        elm_exit();
    });
    getWindowController()->attachBaseViewController(naviframe);

    Evas_Object *window = getWindowController()->getEvasObject();
    elm_win_wm_rotation_preferred_rotation_set(window, 0);
    elm_app_base_scale_set(1.3);
    uxt_theme_set_changeable_ui_enabled(true);

    char *sharedDir = nullptr;
    std::string path;
    if (app_manager_get_shared_resource_path(ST_INFO_PACKAGE, &sharedDir) !=
            APP_MANAGER_ERROR_NONE ||
        !sharedDir) {
        ST_ERR("app_manager_get_shared_resource_path() failed!");
        path = kFallbackSharedResourceDir;
    } else {
        path = sharedDir;
    }
    free(sharedDir);
    path += kColorTableFile;
    _colorTable = uxt_theme_add_color_table(path.c_str());
    if (_colorTable)
        uxt_theme_set_color_table(_colorTable);
    return true;
}

void StInfoApp::onTerminate() {
    // A list still blocked after a launch has its input frozen, and the toolkit deletes a
    // frozen object without running its deletion callbacks: what is attached to the list
    // would outlive it. Its input is let go before the window takes it down.
    StAppControlLauncher::getInstance()->unblockUi();
    finishPhoneNumberFormatting();
    if (_colorTable) {
        uxt_theme_delete_color_table(_colorTable);
        _colorTable = nullptr;
    }
}

void StInfoApp::onPause() {}

void StInfoApp::onResume() {}

void StInfoApp::onAppControl(app_control_h, bool firstLaunch) {
    if (!firstLaunch)
        return;
    auto *naviframe = static_cast<app_assist::WNaviframeController *>(
        getWindowController()->getBaseViewController());
    naviframe->push(new StInfoMainViewController());
}
