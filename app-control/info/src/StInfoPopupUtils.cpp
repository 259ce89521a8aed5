#include "StInfoPopupUtils.h"

#include <app.h>
#include <uxt_popup.h>

#include <cstdlib>

#include "StInfoDefines.h"
#include "StLog.h"

std::string resourceFile(const char *file) {
    char *dir = app_get_resource_path();
    std::string path = dir ? dir : "";
    free(dir);
    return path + file;
}

void setCirclePopupProperties(Evas_Object *popup) {
    elm_object_style_set(popup, "circle");
    uxt_popup_set_rotary_event_enabled(popup, true);
}

void decorateIconButton(Evas_Object *button, const char *nameId, const char *imageGroup) {
    elm_atspi_accessible_name_set(button, nameId);
    elm_atspi_accessible_translation_domain_set(button, ST_INFO_TEXT_DOMAIN);
    Evas_Object *image = elm_image_add(button);
    std::string file = resourceFile("edje/common_images.edj");
    // The button keeps its spoken name without its icon.
    elm_image_file_set(image, file.c_str(), imageGroup);
    evas_object_size_hint_weight_set(image, EVAS_HINT_EXPAND, EVAS_HINT_EXPAND);
    elm_object_part_content_set(button, "elm.swallow.content", image);
}
