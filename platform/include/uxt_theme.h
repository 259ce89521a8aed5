#ifndef UXT_THEME_H
#define UXT_THEME_H

#include <stdbool.h>
#include <Elementary.h>

#ifdef __cplusplus
extern "C" {
#endif

/* A colour table: named colour codes ("AT013", "T022", ...) mapped to RGBA values. */
typedef struct _Uxt_Theme_Color_Table Uxt_Theme_Color_Table;

void uxt_theme_set_changeable_ui_enabled(bool enabled);
bool uxt_theme_get_changeable_ui_enabled(void);
/* Loads a colour table file; NULL when it is missing or malformed (logged). */
Uxt_Theme_Color_Table *uxt_theme_add_color_table(const char *file_path);
void uxt_theme_delete_color_table(Uxt_Theme_Color_Table *table);
void uxt_theme_set_color_table(Uxt_Theme_Color_Table *table);
bool uxt_theme_get_color(const char *code, int *r, int *g, int *b, int *a);
/* Recolours the colour class of a genlist item with the current table's colour for code. */
void uxt_theme_object_item_replace_color(Elm_Object_Item *item, const char *color_class,
                                         const char *code);

#ifdef __cplusplus
}
#endif

#endif
