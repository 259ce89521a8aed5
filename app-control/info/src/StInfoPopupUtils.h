#ifndef _ST_INFO_POPUP_UTILS_H_
#define _ST_INFO_POPUP_UTILS_H_

#include <Elementary.h>

#include <string>

// The application's resource directory followed by file ("" when the platform gives none).
std::string resourceFile(const char *file);

// Round popup style with the bezel scrolling the popup.
void setCirclePopupProperties(Evas_Object *popup);

// Fills an icon-only popup button: its spoken name (a text id) and its image group from
// edje/common_images.edj.
void decorateIconButton(Evas_Object *button, const char *nameId, const char *imageGroup);

#define ST_INFO_CANCEL_ICON "kv_ic_popup_btn_delete.png"
#define ST_INFO_OK_ICON "kv_ic_popup_btn_check.png"

#endif
