#ifndef UXT_POPUP_H
#define UXT_POPUP_H

#include <stdbool.h>
#include <Elementary.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Lets the bezel scroll the popup's content while it is shown. */
void uxt_popup_set_rotary_event_enabled(Evas_Object *popup, bool enabled);

#ifdef __cplusplus
}
#endif

#endif
