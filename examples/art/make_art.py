#!/usr/bin/env python3
"""Draws the demo art: textures of every kind the library loads, and a
texture sheet (sheet.png with its description sheet.json).

Standard library only (zlib, struct). Run from anywhere; the files land
beside this script:

  ball_pal4.png        32x32   4-bit paletted, opaque (RGB565 entries)
  star_pal4_trns.png   64x64   4-bit paletted with tRNS (RGBA4444 entries)
  tree_pal8.png        64x64   8-bit paletted, opaque
  ghost_pal8_trns.png  64x64   8-bit paletted with tRNS, see-through body
  bricks_rgb.png      128x128  RGB direct colour
  glow_rgba.png        64x64   RGBA with soft alpha
  sheet.png           128x128  RGBA, four pictures: hero, heart, coin, mushroom
"""
import json
import math
import os
import struct
import zlib

HERE = os.path.dirname(os.path.abspath(__file__))
CLEAR = (0, 0, 0, 0)


# ---- PNG writing ----

def _chunk(kind, data):
    return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data) & 0xFFFFFFFF)


def write_png(name, width, height, colour_type, depth, rows, palette=None, trns=None):
    out = [b"\x89PNG\r\n\x1a\n",
           _chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, depth, colour_type, 0, 0, 0))]
    if palette is not None:
        out.append(_chunk(b"PLTE", bytes(c for rgb in palette for c in rgb)))
    if trns:
        out.append(_chunk(b"tRNS", bytes(trns)))
    out.append(_chunk(b"IDAT", zlib.compress(b"".join(b"\0" + r for r in rows), 9)))
    out.append(_chunk(b"IEND", b""))
    with open(os.path.join(HERE, name), "wb") as f:
        f.write(b"".join(out))


def save_direct(name, canvas, alpha):
    rows = []
    for y in range(canvas.h):
        row = bytearray()
        for x in range(canvas.w):
            px = canvas.px[y][x]
            row += bytes(px if alpha else px[:3])
        rows.append(bytes(row))
    write_png(name, canvas.w, canvas.h, 6 if alpha else 2, 8, rows)


def save_paletted(name, canvas, bits, transparent):
    """Quantises by exact colour, in order of first appearance: the canvas
    must hold few enough colours for the depth."""
    colours, index = [], {}
    for row in canvas.px:
        for px in row:
            if px not in index:
                index[px] = len(colours)
                colours.append(px)
    if len(colours) > (1 << bits):
        raise SystemExit("%s: %d colours do not fit %d bits" % (name, len(colours), bits))
    if not transparent and any(c[3] != 255 for c in colours):
        raise SystemExit("%s: opaque image has see-through pixels" % name)
    per = 8 // bits
    rows = []
    for row in canvas.px:
        packed = bytearray()
        for i in range(0, canvas.w, per):
            byte = 0
            for k, px in enumerate(row[i:i + per]):
                byte |= index[px] << (8 - bits * (k + 1))
            packed.append(byte)
        rows.append(bytes(packed))
    trns = None
    if transparent:
        last = max(i for i, c in enumerate(colours) if c[3] != 255)
        trns = [c[3] for c in colours[:last + 1]]
    write_png(name, canvas.w, canvas.h, 3, bits, rows, [c[:3] for c in colours], trns)


# ---- drawing ----

class Canvas:
    def __init__(self, w, h, background=CLEAR):
        self.w, self.h = w, h
        self.px = [[background] * w for _ in range(h)]

    def mask(self, inside):
        """Pixels whose centre satisfies inside(x, y), y down from the top row."""
        return {(x, y) for y in range(self.h) for x in range(self.w) if inside(x + 0.5, y + 0.5)}

    def paint(self, pixels, colour):
        for x, y in pixels:
            if 0 <= x < self.w and 0 <= y < self.h:
                self.px[y][x] = colour

    def shape(self, inside, fill, outline=None, width=1):
        """Fills a shape and rings it with an outline `width` pixels wide."""
        m = self.mask(inside)
        if outline is not None:
            ring = grow(m, width) - m
            self.paint(ring, outline)
        self.paint(m, fill)
        return m


def grow(m, width):
    for _ in range(width):
        m = m | {(x + dx, y + dy) for x, y in m for dx in (-1, 0, 1) for dy in (-1, 0, 1)}
    return m


def circle(cx, cy, r):
    return lambda x, y: (x - cx) ** 2 + (y - cy) ** 2 <= r * r


def ellipse(cx, cy, rx, ry):
    return lambda x, y: ((x - cx) / rx) ** 2 + ((y - cy) / ry) ** 2 <= 1


def rect(x0, y0, x1, y1):
    return lambda x, y: x0 <= x < x1 and y0 <= y < y1


def polygon(points):
    def inside(x, y):
        hit = False
        for (x0, y0), (x1, y1) in zip(points, points[1:] + points[:1]):
            if (y0 > y) != (y1 > y) and x < x0 + (y - y0) * (x1 - x0) / (y1 - y0):
                hit = not hit
        return hit
    return inside


def star(cx, cy, outer, inner, spikes=5):
    pts = []
    for i in range(spikes * 2):
        r = outer if i % 2 == 0 else inner
        a = math.pi * i / spikes - math.pi / 2
        pts.append((cx + r * math.cos(a), cy + r * math.sin(a)))
    return polygon(pts)


def union(*shapes):
    return lambda x, y: any(s(x, y) for s in shapes)


def minus(a, b):
    return lambda x, y: a(x, y) and not b(x, y)


INK = (30, 24, 40, 255)


# ---- pictures ----

def ball():
    c = Canvas(32, 32, (135, 206, 235, 255))
    c.shape(ellipse(16, 28, 10, 2.5), (96, 150, 180, 255))
    c.shape(circle(16, 15, 11), (220, 40, 50, 255), INK)
    c.shape(minus(circle(16, 15, 11), circle(13, 12, 11)), (160, 20, 40, 255))
    c.shape(circle(11, 10, 3), (255, 255, 255, 255))
    save_paletted("ball_pal4.png", c, 4, False)


def star_face():
    c = Canvas(64, 64)
    c.shape(star(32, 34, 29, 13), (255, 215, 0, 255), (90, 50, 10, 255), 2)
    c.shape(star(32, 34, 18, 8), (255, 170, 30, 255))
    for ex in (27, 37):
        c.shape(ellipse(ex, 32, 2, 3.5), INK)
    c.shape(minus(ellipse(32, 39, 5, 3), rect(0, 0, 64, 39)), INK)
    save_paletted("star_pal4_trns.png", c, 4, True)


def tree():
    c = Canvas(64, 64)
    for y in range(64):
        shade = (40 + y * 2, 90 + y * 2, 200 + y // 2, 255)
        c.paint([(x, y) for x in range(64)], shade)
    c.shape(circle(52, 12, 6), (255, 240, 120, 255), (240, 180, 40, 255))
    c.shape(ellipse(32, 70, 48, 20), (70, 160, 60, 255), (30, 90, 30, 255))
    c.shape(rect(28, 30, 36, 56), (120, 70, 30, 255), INK)
    crown = union(circle(32, 22, 13), circle(21, 30, 9), circle(43, 30, 9))
    c.shape(crown, (40, 140, 50, 255), (20, 70, 25, 255), 2)
    for fx, fy in ((26, 18), (38, 24), (30, 30)):
        c.shape(circle(fx, fy, 2), (220, 40, 50, 255))
    save_paletted("tree_pal8.png", c, 8, False)


def ghost():
    c = Canvas(64, 64)
    body = union(circle(32, 26, 20), rect(12, 26, 52, 50),
                 *[circle(17 + 10 * i, 50, 5) for i in range(4)])
    c.shape(body, (235, 240, 255, 170), (60, 60, 90, 255), 2)
    for ex in (25, 39):
        c.shape(ellipse(ex, 26, 4, 6), INK)
        c.shape(circle(ex - 1, 24, 1.5), (255, 255, 255, 255))
    for bx in (19, 45):
        c.shape(ellipse(bx, 35, 4, 2), (255, 140, 170, 200))
    c.shape(ellipse(32, 38, 4, 3), (80, 20, 40, 255))
    save_paletted("ghost_pal8_trns.png", c, 8, True)


def bricks():
    c = Canvas(128, 128, (190, 185, 170, 255))
    seed = 7
    for row in range(8):
        offset = 0 if row % 2 == 0 else 16
        for col in range(-1, 5):
            seed = (seed * 1103515245 + 12345) & 0x7FFFFFFF
            tint = (seed >> 16) % 40
            x0, y0 = col * 32 + offset + 2, row * 16 + 2
            base = (150 + tint, 60 + tint // 2, 40, 255)
            c.paint(c.mask(rect(x0, y0, x0 + 28, y0 + 12)), base)
            c.paint(c.mask(rect(x0, y0, x0 + 28, y0 + 2)), tuple(min(255, v + 40) for v in base[:3]) + (255,))
            c.paint(c.mask(rect(x0, y0 + 10, x0 + 28, y0 + 12)), tuple(v * 2 // 3 for v in base[:3]) + (255,))
    save_direct("bricks_rgb.png", c, False)


def glow():
    c = Canvas(64, 64)
    for y in range(64):
        for x in range(64):
            d = math.hypot(x + 0.5 - 32, y + 0.5 - 32) / 31
            if d < 1:
                a = int(255 * (1 - d) ** 1.2)
                white = 1 - min(1, d * 1.6)
                colour = (int(80 + 175 * white), int(220 + 35 * white), 255)
                c.px[y][x] = colour + (a,)
    save_direct("glow_rgba.png", c, True)


def sheet():
    c = Canvas(128, 128)
    # hero: a round face with a cap, cell (0, 0)
    c.shape(circle(32, 34, 20), (255, 205, 150, 255), INK, 2)
    c.shape(minus(circle(32, 30, 21), rect(0, 26, 64, 64)), (40, 90, 220, 255), INK, 2)
    c.shape(rect(30, 24, 58, 28), (40, 90, 220, 255), INK)
    for ex in (25, 39):
        c.shape(ellipse(ex, 36, 2.5, 4), INK)
    c.shape(minus(ellipse(32, 43, 8, 5), rect(0, 0, 64, 44)), (200, 40, 60, 255), INK)
    # heart, cell (64, 0)
    heart = union(circle(85, 24, 12), circle(107, 24, 12), polygon([(74, 29), (118, 29), (96, 54)]))
    c.shape(heart, (230, 30, 70, 255), INK, 2)
    c.shape(circle(81, 21, 3), (255, 200, 210, 255))
    # coin, cell (0, 64)
    c.shape(circle(32, 96, 18), (250, 200, 40, 255), (150, 100, 10, 255), 2)
    c.shape(circle(32, 96, 12), (255, 225, 90, 255), (200, 150, 20, 255))
    c.shape(rect(29, 86, 35, 106), (200, 150, 20, 255))
    # mushroom, cell (64, 64)
    c.shape(rect(88, 100, 104, 118), (245, 235, 215, 255), INK, 2)
    c.shape(minus(ellipse(96, 100, 24, 18), rect(64, 100, 128, 128)), (220, 30, 40, 255), INK, 2)
    for sx, sy, r in ((86, 91, 4), (104, 89, 5), (96, 96, 3)):
        c.shape(circle(sx, sy, r), (255, 255, 255, 255))
    save_direct("sheet.png", c, True)

    images = []
    for name, (cx, cy) in (("hero", (0, 0)), ("heart", (64, 0)), ("coin", (0, 64)), ("mushroom", (64, 64))):
        xs = [x for y in range(cy, cy + 64) for x in range(cx, cx + 64) if c.px[y][x][3]]
        ys = [y for y in range(cy, cy + 64) for x in range(cx, cx + 64) if c.px[y][x][3]]
        images.append({"Name": name, "P1": [min(xs), min(ys)], "P2": [max(xs) + 1, max(ys) + 1],
                       "RegPoint": [0, 0], "CropRect": [0, 0, 0, 0]})
    lines = ",\n".join("    " + json.dumps(image) for image in images)
    with open(os.path.join(HERE, "sheet.json"), "w") as f:
        f.write('{"ImageData": [\n  {"Bitmap": "sheet.png", "Images": [\n%s\n  ]}\n]}\n' % lines)


if __name__ == "__main__":
    ball()
    star_face()
    tree()
    ghost()
    bricks()
    glow()
    sheet()
