#ifndef QUILLSET_PLATFORM_CIRCLE_SCROLL_BAR_H
#define QUILLSET_PLATFORM_CIRCLE_SCROLL_BAR_H

#include <Evas.h>

// The round scroll indicator: an arc along the bezel at 3 o'clock, a dim track with the thumb
// drawn as its own brighter segment. It stands in the same place on every screen of a window.
// Before each frame of the canvas it calls update(data), which places it with
// circleScrollBarSet; it stops when the bar is deleted.
Evas_Object *circleScrollBarAdd(Evas *canvas, void (*update)(void *data), void *data);

// Draws the arc for a round screen at (x, y) of size w x h, the thumb covering the fraction
// [start, start + length] of the track (both in 0..1). Redraws only what changed.
void circleScrollBarSet(Evas_Object *bar, int x, int y, int w, int h, double start, double length);

#endif
