#ifndef EFL_EXTENSION_H
#define EFL_EXTENSION_H

#include <Elementary.h>

#ifdef __cplusplus
extern "C" {
#endif

/* The surface on which circle objects (round scroll bars, rotary indicators) are drawn. */
typedef struct _Eext_Circle_Surface Eext_Circle_Surface;

typedef enum {
    EEXT_CALLBACK_BACK,
    EEXT_CALLBACK_MORE,
    EEXT_CALLBACK_LAST,
} Eext_Callback_Type;

typedef void (*Eext_Event_Cb)(void *data, Evas_Object *obj, void *event_info);

typedef enum {
    EEXT_ROTARY_DIRECTION_CLOCKWISE,
    EEXT_ROTARY_DIRECTION_COUNTER_CLOCKWISE,
} Eext_Rotary_Event_Direction;

typedef struct {
    Eext_Rotary_Event_Direction direction;
    unsigned int time_stamp;
} Eext_Rotary_Event_Info;

typedef Eina_Bool (*Eext_Rotary_Event_Cb)(void *data, Evas_Object *obj,
                                          Eext_Rotary_Event_Info *info);

Eext_Circle_Surface *eext_circle_surface_conformant_add(Evas_Object *conformant);
Eext_Circle_Surface *eext_circle_surface_naviframe_add(Evas_Object *naviframe);
Eext_Circle_Surface *eext_circle_surface_layout_add(Evas_Object *layout);
void eext_circle_surface_del(Eext_Circle_Surface *surface);

/* Circle objects wrap a genlist or scroller: a round scroll bar and rotary (bezel) scrolling.
 * A null surface gives the object a private one. */
Evas_Object *eext_circle_object_genlist_add(Evas_Object *genlist, Eext_Circle_Surface *surface);
void eext_circle_object_genlist_scroller_policy_set(Evas_Object *obj, Elm_Scroller_Policy policy_h,
                                                    Elm_Scroller_Policy policy_v);
Evas_Object *eext_circle_object_scroller_add(Evas_Object *scroller, Eext_Circle_Surface *surface);
void eext_circle_object_scroller_policy_set(Evas_Object *obj, Elm_Scroller_Policy policy_h,
                                            Elm_Scroller_Policy policy_v);

/* Only one object receives rotary events at a time: the one activated last. */
void eext_rotary_object_event_activated_set(Evas_Object *obj, Eina_Bool activated);
Eina_Bool eext_rotary_object_event_callback_add(Evas_Object *obj, Eext_Rotary_Event_Cb func,
                                                void *data);
void *eext_rotary_object_event_callback_del(Evas_Object *obj, Eext_Rotary_Event_Cb func);

/* Hardware keys: the back key goes to the most recently registered visible object. */
void eext_object_event_callback_add(Evas_Object *obj, Eext_Callback_Type type, Eext_Event_Cb func,
                                    void *data);
void *eext_object_event_callback_del(Evas_Object *obj, Eext_Callback_Type type, Eext_Event_Cb func);
void eext_naviframe_back_cb(void *data, Evas_Object *obj, void *event_info);
void eext_popup_back_cb(void *data, Evas_Object *obj, void *event_info);

#ifdef __cplusplus
}
#endif

#endif
