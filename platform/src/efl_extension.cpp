// Circular UI extension of the watch: circle objects with a round scroll bar, rotary (bezel)
// input, the hardware back key and the round screen itself.
//
// On the host the bezel is the mouse wheel over a list, or Page Up / Page Down; the back key is
// Escape or BackSpace. Everything outside the 360x360 circle is masked black.

// The scrollable and accessibility interfaces are Eo APIs that upstream marks as beta.
#define EFL_BETA_API_SUPPORT 1
#include <efl_extension.h>

#include <dlog.h>
#include <strings.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "CircleScrollBar.h"
#include "PlatformState.h"
#include "RoundList.h"
#include "RoundScreen.h"

namespace {

const char *const kTag = "EFL_EXTENSION";
const char *const kCircleKey = "_eext_circle";
const char *const kWindowKey = "_eext_window";

enum class CircleKind { Genlist, Scroller };

struct CircleObject {
    CircleKind kind;
    Evas_Object *target;  // the genlist or scroller
    Evas_Object *bar;     // the round scroll bar, an arc along the bezel
    Elm_Scroller_Policy policyV;
    // Where the last detents took the list: quick detents step on from there, not from
    // wherever the glide has got to.
    int targetIndex = -1;
    double targetTime = 0;
    // The bar's deletion after its target's; dropped if the canvas takes the bar first.
    Ecore_Job *barDeleteJob = nullptr;
};

struct RotaryCallback {
    Evas_Object *obj;
    Eext_Rotary_Event_Cb func;
    void *data;
};

struct KeyCallback {
    Evas_Object *obj;
    Eext_Callback_Type type;
    Eext_Event_Cb func;
    void *data;
};

Evas_Object *g_rotaryObject = nullptr;
std::vector<RotaryCallback> g_rotaryCallbacks;
std::vector<KeyCallback> g_keyCallbacks;

}  // namespace

struct _Eext_Circle_Surface {
    Evas_Object *container;
};

namespace {

void surfaceContainerDelCb(void *data, const Efl_Event *) {
    delete static_cast<_Eext_Circle_Surface *>(data);
}

// A surface is made on the kind of container its constructor is named for, and no other.
Eext_Circle_Surface *surfaceAdd(Evas_Object *container, const char *kind) {
    if (platform::fault("eext_circle_surface_add", nullptr, nullptr))
        return nullptr;
    if (!container) {
        dlog_print(DLOG_ERROR, kTag, "circle surface: no container");
        return nullptr;
    }
    const char *type = evas_object_type_get(container);
    if (!type || strcasecmp(type, kind) != 0) {
        dlog_print(DLOG_ERROR, kTag, "circle surface: %s is not an %s", type ? type : "(none)",
                   kind);
        return nullptr;
    }
    auto *surface = new _Eext_Circle_Surface{container};
    // The platform frees a surface with the object that carries it. Deletions are heard at the
    // object level throughout: the toolkit skips the EVAS_CALLBACK_DEL of an object whose input
    // is frozen, as a launch freezes a list.
    efl_event_callback_add(container, EFL_EVENT_INVALIDATE, surfaceContainerDelCb, surface);
    return surface;
}

// ---- the window ------------------------------------------------------------------------

void keyDownCb(void *data, Evas *, Evas_Object *, void *eventInfo);

void ensureWindow(Evas_Object *obj) {
    Evas_Object *win = elm_object_top_widget_get(obj);
    if (!win || evas_object_data_get(win, kWindowKey))
        return;
    evas_object_data_set(win, kWindowKey, roundScreenAdd(win));

    for (const char *key : {"Next", "Prior", "Escape", "BackSpace", "XF86Back"}) {
        if (!evas_object_key_grab(win, key, 0, 0, EINA_FALSE))
            dlog_print(DLOG_WARN, kTag, "key %s could not be grabbed", key);
    }
    evas_object_event_callback_add(win, EVAS_CALLBACK_KEY_DOWN, keyDownCb, nullptr);
}

// ---- circle objects ---------------------------------------------------------------------

void updateBar(CircleObject *circle) {
    if (!circle->bar || !circle->target)
        return;
    Evas_Coord x = 0, y = 0, w = 0, h = 0, cw = 0, ch = 0;
    elm_interface_scrollable_content_region_get(circle->target, &x, &y, &w, &h);
    elm_interface_scrollable_content_size_get(circle->target, &cw, &ch);
    bool show = circle->policyV != ELM_SCROLLER_POLICY_OFF && ch > h && h > 0;
    if (!show) {
        evas_object_hide(circle->bar);
        return;
    }
    Evas_Object *win = elm_object_top_widget_get(circle->target);
    int wx = 0, wy = 0, ww = 360, wh = 360;
    if (win)
        evas_object_geometry_get(win, &wx, &wy, &ww, &wh);
    circleScrollBarSet(circle->bar, wx, wy, ww, wh, static_cast<double>(y) / ch,
                       static_cast<double>(h) / ch);
    // The bar sits above everything but shows only with its list: a page the naviframe has
    // hidden under a newer one hides its bar too.
    Evas_Object *clip = evas_object_clip_get(circle->target);
    if (evas_object_clip_get(circle->bar) != clip)
        evas_object_clip_set(circle->bar, clip);
    evas_object_show(circle->bar);
}

void scrollCb(void *data, Evas_Object *, void *) {
    updateBar(static_cast<CircleObject *>(data));
}

void barUpdate(void *data) {
    auto *circle = static_cast<CircleObject *>(data);
    if (circle->kind == CircleKind::Genlist && circle->target) {
        Evas_Object *win = elm_object_top_widget_get(circle->target);
        int wx = 0, wy = 0, ww = 360, wh = 360;
        if (win)
            evas_object_geometry_get(win, &wx, &wy, &ww, &wh);
        roundListFit(circle->target, wx, wy, ww, wh);
    }
    updateBar(circle);
}

void circleBarDeleteJob(void *data) {
    auto *circle = static_cast<CircleObject *>(data);
    circle->barDeleteJob = nullptr;
    evas_object_del(circle->bar);
}

// The watch's lists show a new language at once: their rows' texts come from callbacks, which
// upstream's genlist does not ask again when the language changes. A language that reads the
// other way re-applies the theme, after which upstream's genlist in compress mode realises no
// row until its size changes: it is given a change of size that ends where it began.
void languageChangedCb(void *, Evas_Object *genlist, void *) {
    Evas_Coord w = 0, h = 0;
    evas_object_geometry_get(genlist, nullptr, nullptr, &w, &h);
    if (w > 1) {
        evas_object_resize(genlist, w - 1, h);
        evas_object_resize(genlist, w, h);
    }
    elm_genlist_realized_items_update(genlist);
}

void circleTargetDelCb(void *data, const Efl_Event *) {
    auto *circle = static_cast<CircleObject *>(data);
    circle->target = nullptr;
    if (circle->bar) {
        // Owners of the circle object may still name it while the rest of their screen goes
        // away in this same deletion; it goes right after.
        evas_object_hide(circle->bar);
        if (!circle->barDeleteJob)
            circle->barDeleteJob = ecore_job_add(circleBarDeleteJob, circle);
    }
}

void circleBarDelCb(void *data, const Efl_Event *event) {
    Evas_Object *obj = event->object;
    auto *circle = static_cast<CircleObject *>(data);
    if (g_rotaryObject == obj)
        g_rotaryObject = nullptr;
    if (circle->target) {
        efl_event_callback_del(circle->target, EFL_EVENT_INVALIDATE, circleTargetDelCb, circle);
        evas_object_smart_callback_del_full(circle->target, "scroll", scrollCb, circle);
        evas_object_smart_callback_del_full(circle->target, "realized", scrollCb, circle);
    }
    if (circle->barDeleteJob)
        ecore_job_del(circle->barDeleteJob);
    delete circle;
}

Evas_Object *circleAdd(Evas_Object *target, CircleKind kind) {
    if (platform::fault(kind == CircleKind::Genlist ? "eext_circle_object_genlist_add"
                                                    : "eext_circle_object_scroller_add",
                        nullptr, nullptr))
        return nullptr;
    if (!target) {
        dlog_print(DLOG_ERROR, kTag, "circle object: no target");
        return nullptr;
    }
    // The circle object is the scroll bar itself; it lives as long as its target.
    auto *circle = new CircleObject{kind, target, nullptr, ELM_SCROLLER_POLICY_AUTO};
    Evas_Object *bar = circleScrollBarAdd(evas_object_evas_get(target), barUpdate, circle);
    evas_object_pass_events_set(bar, EINA_TRUE);
    // Above its page, under the popups that come later and cover the page.
    evas_object_raise(bar);
    circle->bar = bar;
    evas_object_data_set(bar, kCircleKey, circle);
    efl_event_callback_add(bar, EFL_EVENT_INVALIDATE, circleBarDelCb, circle);
    efl_event_callback_add(target, EFL_EVENT_INVALIDATE, circleTargetDelCb, circle);
    evas_object_smart_callback_add(target, "scroll", scrollCb, circle);
    evas_object_smart_callback_add(target, "realized", scrollCb, circle);
    if (kind == CircleKind::Genlist)
        evas_object_smart_callback_add(target, "language,changed", languageChangedCb, nullptr);
    ensureWindow(target);
    return bar;
}

CircleObject *circleOf(Evas_Object *obj) {
    return obj ? static_cast<CircleObject *>(evas_object_data_get(obj, kCircleKey)) : nullptr;
}

// A popup whose text scrolls shows the same round scroll bar as a list. Its scroller exists
// once its content is set, after the popup has been made rotary.
const char *const kPopupBarJobKey = "_eext_popup_bar_job";

void popupBarJobCancelCb(void *data, const Efl_Event *) {
    ecore_job_del(static_cast<Ecore_Job *>(data));
}

Evas_Object *findScroller(Evas_Object *obj, int depth = 0);

void popupBarJob(void *data) {
    auto *popup = static_cast<Evas_Object *>(data);
    auto *job = static_cast<Ecore_Job *>(evas_object_data_del(popup, kPopupBarJobKey));
    efl_event_callback_del(popup, EFL_EVENT_INVALIDATE, popupBarJobCancelCb, job);
    Evas_Object *scroller = findScroller(popup);
    if (scroller && !evas_object_data_get(scroller, kPopupBarJobKey)) {
        evas_object_data_set(scroller, kPopupBarJobKey, scroller);
        circleAdd(scroller, CircleKind::Scroller);
    }
}

void popupBarAdd(Evas_Object *popup) {
    const char *type = evas_object_type_get(popup);
    if (!type || strcmp(type, "elm_popup") || evas_object_data_get(popup, kPopupBarJobKey))
        return;
    Ecore_Job *job = ecore_job_add(popupBarJob, popup);
    evas_object_data_set(popup, kPopupBarJobKey, job);
    efl_event_callback_add(popup, EFL_EVENT_INVALIDATE, popupBarJobCancelCb, job);
}

// ---- rotary -----------------------------------------------------------------------------

void rotateGenlist(CircleObject *circle, bool clockwise) {
    // One detent moves the row at the centre of the screen by one.
    Evas_Object *genlist = circle->target;
    Elm_Object_Item *item = nullptr;
    double now = ecore_time_get();
    if (circle->targetIndex >= 0 && now - circle->targetTime < 0.5)
        item = elm_genlist_nth_item_get(genlist, static_cast<unsigned int>(circle->targetIndex));
    if (!item) {
        Evas_Coord x, y, w, h;
        evas_object_geometry_get(genlist, &x, &y, &w, &h);
        int pos = 0;
        item = elm_genlist_at_xy_item_get(genlist, x + w / 2, y + h / 2, &pos);
    }
    if (!item)
        item = clockwise ? elm_genlist_first_item_get(genlist) : elm_genlist_last_item_get(genlist);
    if (!item)
        return;
    Elm_Object_Item *next =
        clockwise ? elm_genlist_item_next_get(item) : elm_genlist_item_prev_get(item);
    if (!next)
        next = item;
    circle->targetIndex = elm_genlist_item_index_get(next) - 1;
    circle->targetTime = now;
    elm_genlist_item_bring_in(next, ELM_GENLIST_ITEM_SCROLLTO_MIDDLE);
}

struct ScrollTarget {
    int y;
    double time;
};

void scrollTargetFree(void *data, const Efl_Event *) {
    delete static_cast<ScrollTarget *>(data);
}

void rotateScroller(Evas_Object *scroller, bool clockwise) {
    // One detent scrolls a third of the view; quick detents add up.
    const char *const key = "_eext_scroll_target";
    auto *target = static_cast<ScrollTarget *>(evas_object_data_get(scroller, key));
    if (!target) {
        target = new ScrollTarget{0, 0};
        evas_object_data_set(scroller, key, target);
        efl_event_callback_add(scroller, EFL_EVENT_INVALIDATE, scrollTargetFree, target);
    }
    Evas_Coord x = 0, y = 0, w = 0, h = 0, cw = 0, ch = 0;
    elm_interface_scrollable_content_region_get(scroller, &x, &y, &w, &h);
    elm_interface_scrollable_content_size_get(scroller, &cw, &ch);
    double now = ecore_time_get();
    int from = now - target->time < 0.5 ? target->y : y;
    int step = std::max(40, h / 3);
    int to = std::clamp(clockwise ? from + step : from - step, 0, std::max(0, ch - h));
    target->y = to;
    target->time = now;
    elm_interface_scrollable_region_bring_in(scroller, x, to, w, h);
}

Evas_Object *findScroller(Evas_Object *obj, int depth) {
    if (!obj || depth > 8)
        return nullptr;
    if (efl_isa(obj, ELM_INTERFACE_SCROLLABLE_MIXIN) && evas_object_visible_get(obj))
        return obj;
    // Only smart objects have members.
    if (!efl_isa(obj, EFL_CANVAS_GROUP_CLASS))
        return nullptr;
    Eina_List *children = evas_object_smart_members_get(obj);
    Evas_Object *found = nullptr;
    Eina_List *l;
    void *child;
    EINA_LIST_FOREACH(children, l, child) {
        found = findScroller(static_cast<Evas_Object *>(child), depth + 1);
        if (found)
            break;
    }
    eina_list_free(children);
    return found;
}

void deliverRotary(bool clockwise) {
    Evas_Object *obj = g_rotaryObject;
    if (!obj)
        return;
    Eext_Rotary_Event_Info info{
        clockwise ? EEXT_ROTARY_DIRECTION_CLOCKWISE : EEXT_ROTARY_DIRECTION_COUNTER_CLOCKWISE,
        static_cast<unsigned int>(ecore_time_get() * 1000)};
    for (const RotaryCallback &cb : std::vector<RotaryCallback>(g_rotaryCallbacks)) {
        if (cb.obj == obj && cb.func(cb.data, obj, &info) == EINA_FALSE)
            return;
    }
    if (CircleObject *circle = circleOf(obj)) {
        if (!circle->target)
            return;
        if (circle->kind == CircleKind::Genlist)
            rotateGenlist(circle, clockwise);
        else
            rotateScroller(circle->target, clockwise);
        return;
    }
    // A popup or any other object: scroll whatever it scrolls.
    if (Evas_Object *scroller = findScroller(obj))
        rotateScroller(scroller, clockwise);
}

// ---- hardware keys ----------------------------------------------------------------------

bool deliverBack() {
    // The most recently registered visible object gets the key: a popup before its page.
    for (auto it = g_keyCallbacks.rbegin(); it != g_keyCallbacks.rend(); ++it) {
        if (it->type != EEXT_CALLBACK_BACK || !evas_object_visible_get(it->obj))
            continue;
        KeyCallback cb = *it;
        cb.func(cb.data, cb.obj, nullptr);
        return true;
    }
    return false;
}

void keyDownCb(void *, Evas *, Evas_Object *, void *eventInfo) {
    auto *ev = static_cast<Evas_Event_Key_Down *>(eventInfo);
    if (!ev || !ev->key || (ev->event_flags & EVAS_EVENT_FLAG_ON_HOLD))
        return;
    const char *key = ev->key;
    if (!strcmp(key, "Next")) {
        deliverRotary(true);
    } else if (!strcmp(key, "Prior")) {
        deliverRotary(false);
    } else if (!strcmp(key, "Escape") || !strcmp(key, "BackSpace") || !strcmp(key, "XF86Back")) {
        deliverBack();
    } else {
        return;
    }
    ev->event_flags = static_cast<Evas_Event_Flags>(ev->event_flags | EVAS_EVENT_FLAG_ON_HOLD);
}

void keyObjectDelCb(void *, const Efl_Event *event) {
    Evas_Object *obj = event->object;
    g_keyCallbacks.erase(std::remove_if(g_keyCallbacks.begin(), g_keyCallbacks.end(),
                                        [obj](const KeyCallback &cb) { return cb.obj == obj; }),
                         g_keyCallbacks.end());
    g_rotaryCallbacks.erase(
        std::remove_if(g_rotaryCallbacks.begin(), g_rotaryCallbacks.end(),
                       [obj](const RotaryCallback &cb) { return cb.obj == obj; }),
        g_rotaryCallbacks.end());
    if (g_rotaryObject == obj)
        g_rotaryObject = nullptr;
}

void watchDeletion(Evas_Object *obj) {
    efl_event_callback_del(obj, EFL_EVENT_INVALIDATE, keyObjectDelCb, nullptr);
    efl_event_callback_add(obj, EFL_EVENT_INVALIDATE, keyObjectDelCb, nullptr);
}

}  // namespace

extern "C" {

Eext_Circle_Surface *eext_circle_surface_conformant_add(Evas_Object *conformant) {
    return surfaceAdd(conformant, "elm_conformant");
}

Eext_Circle_Surface *eext_circle_surface_naviframe_add(Evas_Object *naviframe) {
    return surfaceAdd(naviframe, "elm_naviframe");
}

Eext_Circle_Surface *eext_circle_surface_layout_add(Evas_Object *layout) {
    return surfaceAdd(layout, "elm_layout");
}

void eext_circle_surface_del(Eext_Circle_Surface *surface) {
    if (!surface)
        return;
    efl_event_callback_del(surface->container, EFL_EVENT_INVALIDATE, surfaceContainerDelCb,
                           surface);
    delete surface;
}

Evas_Object *eext_circle_object_genlist_add(Evas_Object *genlist, Eext_Circle_Surface *) {
    return circleAdd(genlist, CircleKind::Genlist);
}

void eext_circle_object_genlist_scroller_policy_set(Evas_Object *obj, Elm_Scroller_Policy policy_h,
                                                    Elm_Scroller_Policy policy_v) {
    CircleObject *circle = circleOf(obj);
    if (!circle) {
        dlog_print(DLOG_ERROR, kTag, "scroller policy: not a circle object");
        return;
    }
    circle->policyV = policy_v;
    // The round bar replaces the toolkit's own bars.
    elm_scroller_policy_set(circle->target, policy_h, ELM_SCROLLER_POLICY_OFF);
    updateBar(circle);
}

Evas_Object *eext_circle_object_scroller_add(Evas_Object *scroller, Eext_Circle_Surface *) {
    return circleAdd(scroller, CircleKind::Scroller);
}

void eext_circle_object_scroller_policy_set(Evas_Object *obj, Elm_Scroller_Policy policy_h,
                                            Elm_Scroller_Policy policy_v) {
    eext_circle_object_genlist_scroller_policy_set(obj, policy_h, policy_v);
}

void eext_rotary_object_event_activated_set(Evas_Object *obj, Eina_Bool activated) {
    if (!obj || platform::fault(__func__, nullptr, nullptr))
        return;
    if (activated) {
        g_rotaryObject = obj;
        watchDeletion(obj);
        CircleObject *circle = circleOf(obj);
        if (!circle || circle->target)
            ensureWindow(circle ? circle->target : obj);
        if (!circle)
            popupBarAdd(obj);
    } else if (g_rotaryObject == obj) {
        g_rotaryObject = nullptr;
    }
}

Eina_Bool eext_rotary_object_event_callback_add(Evas_Object *obj, Eext_Rotary_Event_Cb func,
                                                void *data) {
    if (!obj || !func)
        return EINA_FALSE;
    g_rotaryCallbacks.push_back(RotaryCallback{obj, func, data});
    watchDeletion(obj);
    return EINA_TRUE;
}

void *eext_rotary_object_event_callback_del(Evas_Object *obj, Eext_Rotary_Event_Cb func) {
    for (auto it = g_rotaryCallbacks.begin(); it != g_rotaryCallbacks.end(); ++it) {
        if (it->obj == obj && it->func == func) {
            void *data = it->data;
            g_rotaryCallbacks.erase(it);
            return data;
        }
    }
    return nullptr;
}

void eext_object_event_callback_add(Evas_Object *obj, Eext_Callback_Type type, Eext_Event_Cb func,
                                    void *data) {
    if (!obj || !func || type >= EEXT_CALLBACK_LAST) {
        dlog_print(DLOG_ERROR, kTag, "event callback: invalid arguments");
        return;
    }
    g_keyCallbacks.push_back(KeyCallback{obj, type, func, data});
    watchDeletion(obj);
    ensureWindow(obj);
}

void *eext_object_event_callback_del(Evas_Object *obj, Eext_Callback_Type type,
                                     Eext_Event_Cb func) {
    for (auto it = g_keyCallbacks.begin(); it != g_keyCallbacks.end(); ++it) {
        if (it->obj == obj && it->type == type && it->func == func) {
            void *data = it->data;
            g_keyCallbacks.erase(it);
            return data;
        }
    }
    return nullptr;
}

void eext_naviframe_back_cb(void *, Evas_Object *obj, void *) {
    elm_naviframe_item_pop(obj);
}

void eext_popup_back_cb(void *, Evas_Object *obj, void *) {
    elm_popup_dismiss(obj);
}

}  // extern "C"
