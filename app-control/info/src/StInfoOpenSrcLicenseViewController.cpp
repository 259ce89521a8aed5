#include "StInfoOpenSrcLicenseViewController.h"

#include <app.h>
#include <efl_extension.h>
#include <libintl.h>

#include <cstdio>
#include <cstdlib>

#include "StCircleSurfaceManager.h"
#include "StInfoDefines.h"
#include "StInfoPageTitle.h"
#include "StInfoModel.h"
#include "StLog.h"

namespace {

const char *const kTitle = "WDS_ST_HEADER_OPEN_SOURCE_LICENCES_ABB";
const char *const kLicenseFile = "/usr/share/license.html";
const char *const kConnectCommand = "sdb connect [%s]:26101";
const char *const kPullCommand = "sdb pull /usr/share/license.html c:\\OpenSource\\license.html";

const char *tr(const char *id) {
    return dgettext(ST_INFO_TEXT_DOMAIN, id);
}

void registerReadable(Evas_Object *layout, const char *part, const char *description,
                      Evas_Object **registered) {
    auto *edje =
        const_cast<Evas_Object *>(edje_object_part_object_get(elm_layout_edje_get(layout), part));
    *registered = edje ? elm_access_object_register(edje, layout) : nullptr;
    if (!*registered)
        return;
    elm_atspi_accessible_description_set(*registered, description);
    elm_atspi_accessible_reading_info_type_set(*registered,
                                               ELM_ACCESSIBLE_READING_INFO_TYPE_DESCRIPTION);
}

}  // namespace

StInfoOpenSrcLicenseViewController::StInfoOpenSrcLicenseViewController() {}

StInfoOpenSrcLicenseViewController::~StInfoOpenSrcLicenseViewController() {}

std::string StInfoOpenSrcLicenseViewController::helpText(bool chinaRegion) {
    const char *step1 = chinaRegion ? "WDS_ST_BODY_CONNECT_YOUR_COMPUTER_TO_WLAN_CHN"
                                    : "WDS_ST_BODY_CONNECT_YOUR_COMPUTER_TO_A_WI_FI_NETWORK";
    const char *step4 =
        chinaRegion
            ? "WDS_ST_BODY_GO_TO_SETTINGS_CONNECTIONS_WLAN_THEN_CONNECT_TO_THE_NETWORK_THAT_YOUR_"
              "COMPUTER_IS_USING_CHN"
            : "WDS_ST_BODY_GO_TO_SETTINGS_CONNECTIONS_WI_FI_THEN_CONNECT_TO_THE_WI_FI_NETWORK_THAT_"
              "YOUR_COMPUTER_IS_USING";
    const char *step5 =
        chinaRegion ? "WDS_ST_POP_SELECT_CONNECTED_WLAN_TO_CHECK_IP_ADDRESS_CHN"
                    : "WDS_ST_BODY_SELECT_THE_CONNECTED_WI_FI_NETWORK_TO_CHECK_THE_IP_ADDRESS";

    // The watch does not look its own address up: the user reads it in step 5 and types it in
    // place of the phrase.
    char connect[512] = {};
    snprintf(connect, sizeof(connect), kConnectCommand, tr("WDS_ST_POP_YOUR_IP_ADDRESS_LC"));
    char step6[1024] = {};
    snprintf(step6, sizeof(step6),
             tr("WDS_ST_BODY_INSTALL_THE_SDK_ON_YOUR_COMPUTER_TO_USE_SDB_CMD_AND_CONNECT_BY_"
                "ENTERING_PS"),
             connect);
    char last[1024] = {};
    snprintf(last, sizeof(last),
             tr("WDS_ST_BODY_USING_SDB_CMD_DOWNLOAD_THE_P1SS_FILE_TO_YOUR_COMPUTER_BY_RUNNING_CMD_"
                "AND_ENTERING_P2SS_INTO_THE_INPUT_FIELD"),
             kLicenseFile, kPullCommand);

    std::string text = tr("WDS_ST_BODY_FOLLOW_THE_STEPS_BELOW_TO_VIEW_THE_OPEN_SOURCE_LICENCES_C");
    text += "\n1. ";
    text += tr(step1);
    text += "\n2. ";
    text += tr("WDS_ST_BODY_GO_TO_ABOUT_KESTA_IN_SETTINGS_THEN_TURN_ON_DEBUGGING");
    text += "\n3. ";
    text += tr("WDS_ST_BODY_GO_TO_SETTINGS_CONNECTIONS_BLUETOOTH_THEN_TURN_OFF_BLUETOOTH");
    text += "\n4. ";
    text += tr(step4);
    text += "\n5. ";
    text += tr(step5);
    text += "\n6. ";
    text += step6;
    text += "\n";
    text += last;
    return text;
}

Evas_Object *StInfoOpenSrcLicenseViewController::onCreateView(Evas_Object *parent, void *) {
    setTitle(kTitle);

    Evas_Object *frame = elm_layout_add(parent);
    elm_layout_theme_set(frame, "layout", "application", "default");
    evas_object_size_hint_weight_set(frame, EVAS_HINT_EXPAND, EVAS_HINT_EXPAND);
    evas_object_show(frame);

    Evas_Object *scroller = elm_scroller_add(frame);
    evas_object_size_hint_weight_set(scroller, EVAS_HINT_EXPAND, EVAS_HINT_EXPAND);
    elm_object_style_set(scroller, "effect");
    elm_object_part_content_set(frame, "elm.swallow.content", scroller);

    Evas_Object *circle = eext_circle_object_scroller_add(
        scroller, StCircleSurfaceManager::getInstance()->getCircleSurface());
    eext_circle_object_scroller_policy_set(circle, ELM_SCROLLER_POLICY_OFF,
                                           ELM_SCROLLER_POLICY_AUTO);
    eext_rotary_object_event_activated_set(circle, EINA_TRUE);

    char path[4096] = {};
    if (char *resources = app_get_resource_path()) {
        snprintf(path, sizeof(path), "%s%s", resources, "edje/help_layout.edj");
        free(resources);
    }
    Evas_Object *content = elm_layout_add(scroller);
    // Without its layout the page keeps its frame and stays empty.
    elm_layout_file_set(content, path, "setting/help/layout");
    evas_object_size_hint_weight_set(content, EVAS_HINT_EXPAND, EVAS_HINT_EXPAND);
    elm_object_content_set(scroller, content);

    // Translated once: the title keeps the language the page was opened in.
    elm_object_domain_translatable_part_text_set(content, "text.title", nullptr, tr(kTitle));

    std::string body = helpText(StInfoModel::getInstance()->isChinaCountry());
    char *markup = elm_entry_utf8_to_markup(body.c_str());
    elm_object_part_text_set(content, "text.body", markup);
    free(markup);

    // A screen reader reads the title, then the steps, through their own objects; the layout
    // that holds them would only repeat both.
    elm_atspi_accessible_can_highlight_set(content, EINA_FALSE);
    Evas_Object *titleAccess = nullptr;
    Evas_Object *bodyAccess = nullptr;
    registerReadable(content, "text.title", elm_object_part_text_get(content, "text.title"),
                     &titleAccess);
    registerReadable(content, "text.body", body.c_str(), &bodyAccess);
    if (titleAccess && bodyAccess) {
        elm_atspi_accessible_relationship_append(titleAccess, ELM_ATSPI_RELATION_FLOWS_TO,
                                                 bodyAccess);
        elm_atspi_accessible_relationship_append(bodyAccess, ELM_ATSPI_RELATION_FLOWS_FROM,
                                                 titleAccess);
    }
    return frame;
}

void StInfoOpenSrcLicenseViewController::onPushed(Elm_Object_Item *naviItem) {
    useTitleInsidePage(this, naviItem);
}
