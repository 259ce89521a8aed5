#include "StInfoRegulatoryInfoViewController.h"

#include <app.h>
#include <efl_extension.h>

#include <cstdio>
#include <cstdlib>

#include "StCircleSurfaceManager.h"
#include "StInfoDefines.h"
#include "StInfoPageTitle.h"
#include "StLog.h"

namespace {

const char *const kTitle = "WDS_ST_HEADER_REGULATORY_INFO_ABB";

}  // namespace

StInfoRegulatoryInfoViewController::StInfoRegulatoryInfoViewController()
    : _circleScroller(nullptr) {}

StInfoRegulatoryInfoViewController::~StInfoRegulatoryInfoViewController() {}

Evas_Object *StInfoRegulatoryInfoViewController::onCreateView(Evas_Object *parent, void *) {
    setTitle(kTitle);

    Evas_Object *frame = elm_layout_add(parent);
    elm_layout_theme_set(frame, "layout", "application", "default");
    evas_object_size_hint_weight_set(frame, EVAS_HINT_EXPAND, EVAS_HINT_EXPAND);
    evas_object_show(frame);

    Evas_Object *scroller = elm_scroller_add(frame);
    evas_object_size_hint_weight_set(scroller, EVAS_HINT_EXPAND, EVAS_HINT_EXPAND);
    elm_object_style_set(scroller, "effect");
    elm_object_part_content_set(frame, "elm.swallow.content", scroller);

    _circleScroller = eext_circle_object_scroller_add(
        scroller, StCircleSurfaceManager::getInstance()->getCircleSurface());
    eext_circle_object_scroller_policy_set(_circleScroller, ELM_SCROLLER_POLICY_OFF,
                                           ELM_SCROLLER_POLICY_AUTO);
    eext_rotary_object_event_activated_set(_circleScroller, EINA_TRUE);

    // Without a resource directory the page keeps its frame and an empty scroller.
    char path[4096] = {};
    if (char *resources = app_get_resource_path()) {
        snprintf(path, sizeof(path), "%s%s", resources, "edje/regulatory_info.edj");
        free(resources);
    }
    Evas_Object *content = elm_layout_add(scroller);
    // Without its layout the page keeps its frame and stays empty.
    elm_layout_file_set(content, path, "regulatory_info_layout");
    evas_object_size_hint_weight_set(content, EVAS_HINT_EXPAND, EVAS_HINT_EXPAND);
    elm_object_content_set(scroller, content);

    elm_object_domain_translatable_part_text_set(content, "text.title", ST_INFO_TEXT_DOMAIN,
                                                 kTitle);
    // The layout's own texts are string ids too; they follow the language like the title.
    static const char *const kLayoutTexts[][2] = {
        {"caption.conformity", "WDS_ST_BODY_CONFORMITY_ABB"},
        {"caption.registration", "WDS_ST_BODY_REGISTERED_ABB"},
        {"caption.radio", "WDS_ST_BODY_RADIO_ABB"},
        {"text.statements", "WDS_ST_BODY_REGULATORY_STATEMENTS"},
    };
    for (const auto &text : kLayoutTexts)
        elm_object_domain_translatable_part_text_set(content, text[0], ST_INFO_TEXT_DOMAIN,
                                                     text[1]);
    return frame;
}

void StInfoRegulatoryInfoViewController::onPushed(Elm_Object_Item *naviItem) {
    useTitleInsidePage(this, naviItem);
}
