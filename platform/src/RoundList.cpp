// Smart-object membership is asked through upstream's Eo API, which it marks as beta.
#define EFL_BETA_API_SUPPORT 1
#include "RoundList.h"

#include <Elementary.h>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

const char *const kScaleKey = "_eext_row_scale";
// Lines keep this far inside the circle; their boxes are taller than their glyphs.
const double kMargin = 4.0;
// Rows never shrink below this: a row further out is leaving the screen anyway.
const double kMinScale = 0.5;

bool isType(Evas_Object *obj, const char *type) {
    const char *t = evas_object_type_get(obj);
    return t && !strcmp(t, type);
}

struct Circle {
    double cx, cy, r;
    bool holds(double x, double y) const { return std::hypot(x - cx, y - cy) <= r; }
};

// The largest scale about (ox, oy), at most 1, at which the rectangle lies inside the circle.
double fitScale(const Circle &c, double ox, double oy, double x0, double y0, double x1, double y1) {
    auto fits = [&](double s) {
        double ax = ox + (x0 - ox) * s, bx = ox + (x1 - ox) * s;
        double ay = oy + (y0 - oy) * s, by = oy + (y1 - oy) * s;
        return c.holds(ax, ay) && c.holds(bx, ay) && c.holds(ax, by) && c.holds(bx, by);
    };
    if (fits(1.0))
        return 1.0;
    double lo = kMinScale, hi = 1.0;
    for (int i = 0; i < 12; ++i) {
        double mid = (lo + hi) / 2;
        (fits(mid) ? lo : hi) = mid;
    }
    return lo;
}

// The scale a row needs for every line of its texts.
double rowScale(const Circle &c, Evas_Object *view) {
    int vx, vy, vw, vh;
    evas_object_geometry_get(view, &vx, &vy, &vw, &vh);
    double ox = vx + vw / 2.0, oy = vy + vh / 2.0;
    double scale = 1.0;
    Eina_List *members = evas_object_smart_members_get(view);
    Eina_List *l;
    void *data;
    EINA_LIST_FOREACH(members, l, data) {
        auto *part = static_cast<Evas_Object *>(data);
        if (!isType(part, "textblock") || !evas_object_visible_get(part))
            continue;
        int tx, ty;
        evas_object_geometry_get(part, &tx, &ty, nullptr, nullptr);
        Evas_Coord lx, ly, lw, lh;
        for (int line = 0;
             evas_object_textblock_line_number_geometry_get(part, line, &lx, &ly, &lw, &lh);
             ++line) {
            if (lw <= 0)
                continue;
            scale =
                std::min(scale, fitScale(c, ox, oy, tx + lx, ty + ly, tx + lx + lw, ty + ly + lh));
        }
    }
    eina_list_free(members);
    return scale;
}

void applyScale(Evas_Object *view, double scale) {
    // Only a change is applied: a map set at every frame would ask for the next frame.
    int w, h;
    evas_object_geometry_get(view, nullptr, nullptr, &w, &h);
    intptr_t key = static_cast<intptr_t>(std::lround(scale * 1000)) * 100000000 + w * 10000 + h;
    intptr_t old = reinterpret_cast<intptr_t>(evas_object_data_get(view, kScaleKey));
    if (old == key || (old == 0 && scale >= 1.0))
        return;
    evas_object_data_set(view, kScaleKey, reinterpret_cast<void *>(scale >= 1.0 ? 0 : key));
    if (scale >= 1.0) {
        evas_object_map_enable_set(view, EINA_FALSE);
        return;
    }
    int x, y;
    evas_object_geometry_get(view, &x, &y, nullptr, nullptr);
    Evas_Map *map = evas_map_new(4);
    evas_map_util_points_populate_from_object(map, view);
    evas_map_util_zoom(map, scale, scale, x + w / 2, y + h / 2);
    // The list moves its rows as it scrolls; the map goes with them.
    evas_map_util_object_move_sync_set(map, EINA_TRUE);
    evas_object_map_set(view, map);
    evas_object_map_enable_set(view, EINA_TRUE);
    evas_map_free(map);
}

// The list's pan holds one object a row on screen; it sits in the list's own layout.
Evas_Object *panOf(Evas_Object *obj, int depth = 0) {
    if (isType(obj, "elm_pan"))
        return obj;
    if (depth > 3 || !efl_isa(obj, EFL_CANVAS_GROUP_CLASS))
        return nullptr;
    Evas_Object *found = nullptr;
    Eina_List *members = evas_object_smart_members_get(obj);
    Eina_List *l;
    void *data;
    EINA_LIST_FOREACH(members, l, data) {
        if ((found = panOf(static_cast<Evas_Object *>(data), depth + 1)))
            break;
    }
    eina_list_free(members);
    return found;
}

}  // namespace

void roundListFit(Evas_Object *genlist, int x, int y, int w, int h) {
    if (!genlist || w <= 0 || h <= 0)
        return;
    Circle circle{x + w / 2.0, y + h / 2.0, std::min(w, h) / 2.0 - kMargin};
    if (Evas_Object *pan = panOf(genlist)) {
        Eina_List *rows = evas_object_smart_members_get(pan);
        Eina_List *r;
        void *row;
        EINA_LIST_FOREACH(rows, r, row) {
            auto *view = static_cast<Evas_Object *>(row);
            if (isType(view, "edje") && evas_object_visible_get(view))
                applyScale(view, rowScale(circle, view));
        }
        eina_list_free(rows);
    }
}
