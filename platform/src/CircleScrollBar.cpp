#include "CircleScrollBar.h"

#include <algorithm>
#include <cmath>

namespace {

const char *const kStateKey = "_eext_bar_state";

// Sizes on a 360 px screen; other sizes scale them. The track reaches about 75 px up and down
// from 3 o'clock, as far as a thumb can travel while staying clear of the screen's corners.
const double kDesignSize = 360.0;
const double kStroke = 6.0;
const double kEdgeGap = 5.0;
const double kHalfSpan = 26.0 * M_PI / 180.0;
// Between the thumb and the track on either side of it.
const double kThumbGap = 4.0;
const double kMinThumb = 12.0;

struct Colour {
    double r, g, b, a;
};
const Colour kTrack{255, 255, 255, 0.26};
const Colour kThumb{235, 235, 235, 0.95};

struct BarState {
    int x = 0, y = 0, w = 0, h = 0;
    double start = -1, length = -1;
    Evas *canvas = nullptr;
    void (*update)(void *) = nullptr;
    void *data = nullptr;
};

void renderPreCb(void *data, Evas *, void *) {
    auto *state = static_cast<BarState *>(data);
    state->update(state->data);
}

void barDelCb(void *data, const Efl_Event *) {
    auto *state = static_cast<BarState *>(data);
    evas_event_callback_del_full(state->canvas, EVAS_CALLBACK_RENDER_PRE, renderPreCb, state);
    delete state;
}

// A segment of the arc from angle a0 to a1 (radians, 0 at 3 o'clock, growing clockwise),
// measured with its round caps. One shorter than its stroke shrinks to a fading dot.
struct Segment {
    double a0, a1;
    Colour colour;
};

double coverage(const Segment &s, double px, double py, double radius, double stroke) {
    double length = (s.a1 - s.a0) * radius;
    if (length <= 0.5)
        return 0.0;
    double half = stroke / 2;
    double fade = 1.0;
    double c0, c1;
    if (length < stroke) {
        half = length / 2;
        fade = length / stroke;
        c0 = c1 = (s.a0 + s.a1) / 2;
    } else {
        double cap = half / radius;
        c0 = s.a0 + cap;
        c1 = s.a1 - cap;
    }
    double theta = std::atan2(py, px);
    double d;
    if (theta >= c0 && theta <= c1) {
        d = std::fabs(std::hypot(px, py) - radius);
    } else {
        d = std::min(std::hypot(px - radius * std::cos(c0), py - radius * std::sin(c0)),
                     std::hypot(px - radius * std::cos(c1), py - radius * std::sin(c1)));
    }
    return std::clamp(half + 0.5 - d, 0.0, 1.0) * fade;
}

}  // namespace

Evas_Object *circleScrollBarAdd(Evas *canvas, void (*update)(void *data), void *data) {
    Evas_Object *bar = evas_object_image_filled_add(canvas);
    evas_object_image_alpha_set(bar, EINA_TRUE);
    auto *state = new BarState;
    state->canvas = canvas;
    state->update = update;
    state->data = data;
    evas_object_data_set(bar, kStateKey, state);
    efl_event_callback_add(bar, EFL_EVENT_INVALIDATE, barDelCb, state);
    // The list's content may grow or shrink with no scroll at all (a text set, rows added).
    evas_event_callback_add(canvas, EVAS_CALLBACK_RENDER_PRE, renderPreCb, state);
    return bar;
}

void circleScrollBarSet(Evas_Object *bar, int x, int y, int w, int h, double start, double length) {
    auto *state = static_cast<BarState *>(evas_object_data_get(bar, kStateKey));
    if (!state || w <= 0 || h <= 0)
        return;
    start = std::clamp(start, 0.0, 1.0);
    length = std::clamp(length, 0.0, 1.0 - start);
    if (state->x == x && state->y == y && state->w == w && state->h == h &&
        std::fabs(state->start - start) < 1e-4 && std::fabs(state->length - length) < 1e-4)
        return;
    state->x = x;
    state->y = y;
    state->w = w;
    state->h = h;
    state->start = start;
    state->length = length;

    double scale = std::min(w, h) / kDesignSize;
    double stroke = kStroke * scale;
    double radius = std::min(w, h) / 2.0 - kEdgeGap * scale - stroke / 2;
    double cx = x + w / 2.0, cy = y + h / 2.0;

    // The thumb is at least a short pill, placed so that its ends stay on the track.
    double span = 2 * kHalfSpan;
    double thumb = std::max(length * span, kMinThumb * scale / radius);
    thumb = std::min(thumb, span);
    double a0 = -kHalfSpan + start / std::max(1e-6, 1.0 - length) * (span - thumb);
    if (length >= 1.0)
        a0 = -kHalfSpan;
    a0 = std::clamp(a0, -kHalfSpan, kHalfSpan - thumb);
    double gap = kThumbGap * scale / radius;
    const Segment segments[] = {
        {-kHalfSpan, a0 - gap, kTrack},
        {a0, a0 + thumb, kThumb},
        {a0 + thumb + gap, kHalfSpan, kTrack},
    };

    // The box around the arc, its strokes included.
    int bx = static_cast<int>(std::floor(cx + (radius - stroke) * std::cos(kHalfSpan))) - 1;
    int bw = static_cast<int>(std::ceil(cx + radius + stroke)) + 1 - bx;
    int by = static_cast<int>(std::floor(cy - radius * std::sin(kHalfSpan) - stroke)) - 1;
    int bh = static_cast<int>(std::ceil(cy + radius * std::sin(kHalfSpan) + stroke)) + 1 - by;
    evas_object_image_size_set(bar, bw, bh);
    evas_object_move(bar, bx, by);
    evas_object_resize(bar, bw, bh);
    auto *pixels = static_cast<unsigned int *>(evas_object_image_data_get(bar, EINA_TRUE));
    if (!pixels)
        return;
    int stride = evas_object_image_stride_get(bar) / 4;
    for (int row = 0; row < bh; ++row) {
        for (int col = 0; col < bw; ++col) {
            double px = bx + col + 0.5 - cx, py = by + row + 0.5 - cy;
            // Premultiplied; the segments never overlap, so their sum is their union.
            double r = 0, g = 0, b = 0, a = 0;
            for (const Segment &s : segments) {
                double cover = coverage(s, px, py, radius, stroke) * s.colour.a;
                r += s.colour.r * cover;
                g += s.colour.g * cover;
                b += s.colour.b * cover;
                a += 255 * cover;
            }
            auto byte = [](double v) {
                return static_cast<unsigned int>(std::clamp(v + 0.5, 0.0, 255.0));
            };
            pixels[row * stride + col] = byte(a) << 24 | byte(r) << 16 | byte(g) << 8 | byte(b);
        }
    }
    evas_object_image_data_set(bar, pixels);
    evas_object_image_data_update_add(bar, 0, 0, bw, bh);
}
