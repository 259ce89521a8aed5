/* Group and part names of the application's Edje files, shared by the .edc sources and
 * the code that loads them. Plain #defines so that edje_cc's preprocessor and C++ both
 * read this file. */
#ifndef QUILLSET_EDJE_NAMES_H
#define QUILLSET_EDJE_NAMES_H

/* edje/common_images.edj: glyphs of the round popup buttons. */
#define ST_EDJE_COMMON_IMAGES_FILE "edje/common_images.edj"
#define ST_EDJE_GROUP_POPUP_ICON_CANCEL "kv_ic_popup_btn_delete.png"
#define ST_EDJE_GROUP_POPUP_ICON_OK "kv_ic_popup_btn_check.png"

/* edje/info.edj: body of the diagnostic-consent popup. */
#define ST_EDJE_INFO_FILE "edje/info.edj"
#define ST_EDJE_GROUP_REPORT_POPUP "setting/popup/layout/report"
#define ST_EDJE_PART_REPORT_TEXT "elm.text"
#define ST_EDJE_PART_REPORT_BUTTON "elm.swallow.content"

/* edje/regulatory_info.edj: the regulatory information page. */
#define ST_EDJE_REGULATORY_FILE "edje/regulatory_info.edj"
#define ST_EDJE_GROUP_REGULATORY "regulatory_info_layout"

/* edje/help_layout.edj: the open-source licences help page. */
#define ST_EDJE_HELP_FILE "edje/help_layout.edj"
#define ST_EDJE_GROUP_HELP "setting/help/layout"
#define ST_EDJE_PART_PAGE_BODY "text.body"

/* Both pages. */
#define ST_EDJE_PART_PAGE_TITLE "text.title"

#endif
