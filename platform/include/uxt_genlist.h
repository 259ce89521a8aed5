#ifndef UXT_GENLIST_H
#define UXT_GENLIST_H

#include <stdbool.h>
#include <Elementary.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Adds room under the last item so that it can be scrolled to the middle of a round screen. */
void uxt_genlist_set_bottom_margin_enabled(Evas_Object *genlist, bool enabled);

#ifdef __cplusplus
}
#endif

#endif
