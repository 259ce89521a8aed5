#include "RoundScreen.h"

#include <algorithm>
#include <cmath>

namespace {

void maskResizeCb(void *data, Evas *, Evas_Object *win, void *) {
    auto *mask = static_cast<Evas_Object *>(data);
    int w = 0, h = 0;
    evas_object_geometry_get(win, nullptr, nullptr, &w, &h);
    if (w <= 0 || h <= 0)
        return;
    evas_object_image_size_set(mask, w, h);
    evas_object_image_fill_set(mask, 0, 0, w, h);
    evas_object_resize(mask, w, h);
    auto *pixels = static_cast<unsigned int *>(evas_object_image_data_get(mask, EINA_TRUE));
    if (!pixels)
        return;
    int stride = evas_object_image_stride_get(mask) / 4;
    double cx = w / 2.0, cy = h / 2.0, r = std::min(w, h) / 2.0;
    // Premultiplied black is just the alpha byte. Each row is clear inside the circle and
    // black outside it; only the pixels of its one-pixel anti-aliased edge need a square root.
    const unsigned int black = 0xffu << 24;
    double inner = r > 0.5 ? (r - 0.5) * (r - 0.5) : 0.0, outer = (r + 0.5) * (r + 0.5);
    for (int y = 0; y < h; ++y) {
        unsigned int *row = pixels + static_cast<size_t>(y) * stride;
        double dy = y + 0.5 - cy;
        double dy2 = dy * dy;
        // Columns [clearFrom, clearTo) are surely inside, those outside [edgeFrom, edgeTo)
        // surely outside.
        double halfIn = dy2 < inner ? std::sqrt(inner - dy2) : -1.0;
        double halfOut = dy2 < outer ? std::sqrt(outer - dy2) : -1.0;
        int edgeFrom = std::clamp(static_cast<int>(std::floor(cx - halfOut - 0.5)), 0, w);
        int edgeTo = std::clamp(static_cast<int>(std::ceil(cx + halfOut + 0.5)), edgeFrom, w);
        int clearFrom =
            std::clamp(static_cast<int>(std::ceil(cx - halfIn - 0.5)), edgeFrom, edgeTo);
        int clearTo =
            std::clamp(static_cast<int>(std::floor(cx + halfIn - 0.5)) + 1, clearFrom, edgeTo);
        if (halfIn < 0)
            clearFrom = clearTo = edgeFrom;
        std::fill(row, row + edgeFrom, black);
        std::fill(row + clearFrom, row + clearTo, 0u);
        std::fill(row + edgeTo, row + w, black);
        for (int x = edgeFrom; x < edgeTo; ++x) {
            if (x == clearFrom && clearTo > clearFrom) {
                x = clearTo - 1;
                continue;
            }
            double dx = x + 0.5 - cx;
            double d2 = dx * dx + dy2;
            double a = d2 <= inner   ? 0.0
                       : d2 >= outer ? 1.0
                                     : std::clamp(std::sqrt(d2) - r + 0.5, 0.0, 1.0);
            row[x] = static_cast<unsigned int>(a * 255.0 + 0.5) << 24;
        }
    }
    evas_object_image_data_set(mask, pixels);
    evas_object_image_data_update_add(mask, 0, 0, w, h);
}

}  // namespace

Evas_Object *roundScreenAdd(Evas_Object *win) {
    Evas_Object *mask = evas_object_image_filled_add(evas_object_evas_get(win));
    evas_object_image_alpha_set(mask, EINA_TRUE);
    evas_object_pass_events_set(mask, EINA_TRUE);
    evas_object_layer_set(mask, EVAS_LAYER_MAX);
    evas_object_show(mask);
    evas_object_event_callback_add(win, EVAS_CALLBACK_RESIZE, maskResizeCb, mask);
    maskResizeCb(mask, nullptr, win, nullptr);
    return mask;
}
