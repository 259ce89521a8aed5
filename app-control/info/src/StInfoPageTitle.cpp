#include "StInfoPageTitle.h"

#include "StInfoDefines.h"

void useTitleInsidePage(app_assist::WContentViewController *view, Elm_Object_Item *naviItem) {
    elm_naviframe_item_title_enabled_set(naviItem, EINA_FALSE, EINA_FALSE);
    elm_object_item_domain_part_text_translatable_set(naviItem, nullptr, ST_INFO_TEXT_DOMAIN,
                                                      EINA_TRUE);
    // The page a screen reader meets is the naviframe's frame around the view, which upstream
    // names after the untranslated title.
    Evas_Object *page = elm_object_parent_widget_get(view->getEvasObject());
    elm_atspi_accessible_name_set(page, view->getTitle());
    elm_atspi_accessible_translation_domain_set(page, ST_INFO_TEXT_DOMAIN);
}
