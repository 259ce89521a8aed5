#!/usr/bin/env python3
"""Draws the images of the watch theme and of the application's Edje files.

Every image is white on transparent: Edje tints it with a colour class, so one image
serves every colour of the palette. Shapes are signed distance functions; the coverage of
a pixel is taken from its distance to the edge, which anti-aliases the outline without
supersampling. Only the standard library is used (zlib + struct for PNG).

Usage: draw_images.py {theme|app} OUTPUT_DIR
"""

import math
import os
import struct
import sys
import zlib


def write_png(path, width, height, pixels):
    """pixels: list of rows, each a bytearray of RGBA bytes (non-premultiplied)."""
    raw = bytearray()
    for row in pixels:
        raw.append(0)  # filter type: none
        raw.extend(row)

    def chunk(kind, data):
        body = kind + data
        return struct.pack(">I", len(data)) + body + struct.pack(">I", zlib.crc32(body) & 0xFFFFFFFF)

    png = b"\x89PNG\r\n\x1a\n"
    png += chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, 8, 6, 0, 0, 0))
    png += chunk(b"IDAT", zlib.compress(bytes(raw), 9))
    png += chunk(b"IEND", b"")
    tmp = path + ".tmp"
    with open(tmp, "wb") as f:
        f.write(png)
    os.replace(tmp, path)


def render(width, height, coverage, grey=255):
    """Renders an image whose opacity at each pixel centre is coverage(x, y) in [0, 1]."""
    rows = []
    for y in range(height):
        row = bytearray()
        for x in range(width):
            cover = min(1.0, max(0.0, coverage(x + 0.5, y + 0.5)))
            row.extend((grey, grey, grey, int(round(cover * 255))))
        rows.append(row)
    return rows


def shape(sdf):
    """Coverage of a shape given by its signed distance (negative inside)."""
    return lambda x, y: 0.5 - sdf(x, y)


def fade_down(height):
    """Opaque at the top, transparent at the bottom, easing out."""
    return lambda x, y: (1.0 - y / height) ** 2


def fade_up(height):
    """Transparent at the top, opaque at the bottom, easing in."""
    return lambda x, y: (y / height) ** 2


# ---- distance functions ---------------------------------------------------------------------

def disk(cx, cy, r):
    return lambda x, y: math.hypot(x - cx, y - cy) - r


def ring(cx, cy, r, width):
    return lambda x, y: abs(math.hypot(x - cx, y - cy) - r) - width / 2.0


def segment_distance(px, py, ax, ay, bx, by):
    dx, dy = bx - ax, by - ay
    t = ((px - ax) * dx + (py - ay) * dy) / float(dx * dx + dy * dy)
    t = min(1.0, max(0.0, t))
    return math.hypot(px - (ax + t * dx), py - (ay + t * dy))


def stroke(points, width):
    """A polyline with round caps and joins."""
    segments = list(zip(points, points[1:]))

    def sdf(x, y):
        return min(segment_distance(x, y, a[0], a[1], b[0], b[1]) for a, b in segments) - width / 2.0

    return sdf


def round_box(cx, cy, half_w, half_h, radius):
    def sdf(x, y):
        qx = abs(x - cx) - (half_w - radius)
        qy = abs(y - cy) - (half_h - radius)
        outside = math.hypot(max(qx, 0.0), max(qy, 0.0))
        return outside + min(max(qx, qy), 0.0) - radius

    return sdf


def outline(sdf, width):
    return lambda x, y: abs(sdf(x, y)) - width / 2.0


def arc(cx, cy, r, width, start_deg, end_deg):
    """A ring sector with round ends; angles in degrees, 0 pointing right, counter-clockwise."""
    a0, a1 = math.radians(start_deg), math.radians(end_deg)
    ends = [(cx + r * math.cos(a), cy - r * math.sin(a)) for a in (a0, a1)]

    def sdf(x, y):
        angle = math.atan2(-(y - cy), x - cx)
        if a0 <= angle <= a1:
            return abs(math.hypot(x - cx, y - cy) - r) - width / 2.0
        return min(math.hypot(x - ex, y - ey) for ex, ey in ends) - width / 2.0

    return sdf


def union(*shapes):
    return lambda x, y: min(s(x, y) for s in shapes)


# ---- the images -----------------------------------------------------------------------------

def theme_images():
    # Corner pieces: a disk one pixel wider than twice its radius, used with an Edje border of
    # the radius so the middle pixel stretches into pills, bubbles and rounded highlights.
    yield "corner_r28.png", 57, 57, shape(disk(28.5, 28.5, 28.5))
    yield "corner_r20.png", 41, 41, shape(disk(20.5, 20.5, 20.5))
    yield "corner_r17.png", 35, 35, shape(disk(17.5, 17.5, 17.5))
    # Round buttons and the switch knob.
    yield "disk.png", 128, 128, shape(disk(64, 64, 63))
    # Soft edges where popup text scrolls under the title and behind the buttons.
    yield "fade_down.png", 4, 32, fade_down(32)
    yield "fade_up.png", 4, 32, fade_up(32)


def app_images():
    # Popup button icons, 64x64, drawn with round caps like the rest of the watch's glyphs.
    yield "ic_popup_cross.png", 64, 64, shape(union(
        stroke([(19, 19), (45, 45)], 6.5), stroke([(45, 19), (19, 45)], 6.5)))
    yield "ic_popup_check.png", 64, 64, shape(stroke([(15, 33), (27, 45), (50, 20)], 6.5))
    # Certification marks of the regulatory page (the letters are Edje text over them).
    yield "mark_ring.png", 128, 128, shape(ring(64, 64, 58, 7))
    yield "mark_square.png", 128, 128, shape(outline(round_box(64, 64, 58, 58, 22), 7))
    yield "mark_waves.png", 128, 128, shape(union(
        disk(64, 92, 9),
        arc(64, 92, 28, 7, 45, 135),
        arc(64, 92, 48, 7, 45, 135),
        outline(round_box(64, 64, 60, 60, 14), 5)))


def main(argv):
    if len(argv) != 3 or argv[1] not in ("theme", "app"):
        sys.stderr.write("usage: draw_images.py {theme|app} OUTPUT_DIR\n")
        return 2
    out = argv[2]
    os.makedirs(out, exist_ok=True)
    images = theme_images() if argv[1] == "theme" else app_images()
    for name, w, h, coverage in images:
        write_png(os.path.join(out, name), w, h, render(w, h, coverage))
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
