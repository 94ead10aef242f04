#!/usr/bin/env python3
"""Draws the art of the demo scene and writes the kid's costume description.

Standard library only (zlib, struct). Run from anywhere; the files land
beside this script:

  backdrop.png          256x256 RGB   sky, hills and grass (scaled to the screen)
  hero_walk0..3.png      64x64  RGBA  the hero's walk cycle, side view
  hero_wave0..1.png      64x64  RGBA  the hero waving
  critter_squash.png, critter.png, critter_stretch.png
                         32x32  RGBA  a bouncing blob
  flower.png             32x32  RGBA
  signpost.png           64x64  RGBA
  sparkle.png            16x16  RGBA  soft glow for the point sprites
  kid32.png, kid64.png, kid128.png
                                RGBA  the kid's pieces at three levels of detail
  kid-costume.json              the costume: where each piece lies in each texture

The kid is laid out on a 32x32 grid; the LOD of size N draws the same picture
N/32 times larger, so every rectangle and registration point scales with it.
"""
import json
import math
import os
import struct
import zlib

HERE = os.path.dirname(os.path.abspath(__file__))
CLEAR = (0, 0, 0, 0)
INK = (30, 24, 40, 255)
SKIN = (255, 205, 160, 255)


# ---- PNG writing ----

def _chunk(kind, data):
    return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data) & 0xFFFFFFFF)


def save(name, canvas, alpha=True):
    rows = []
    for row in canvas.px:
        rows.append(b"\0" + bytes(c for px in row for c in (px if alpha else px[:3])))
    header = struct.pack(">IIBBBBB", canvas.w, canvas.h, 8, 6 if alpha else 2, 0, 0, 0)
    png = [b"\x89PNG\r\n\x1a\n", _chunk(b"IHDR", header),
           _chunk(b"IDAT", zlib.compress(b"".join(rows), 9)), _chunk(b"IEND", b"")]
    with open(os.path.join(HERE, name), "wb") as f:
        f.write(b"".join(png))


# ---- drawing ----

class Canvas:
    """Shapes are tested at pixel centres, in units of `scale` pixels, y down."""

    def __init__(self, w, h, background=CLEAR, scale=1):
        self.w, self.h, self.scale = w, h, scale
        self.px = [[background] * w for _ in range(h)]
        self.clip = (0, 0, w, h)

    def mask(self, inside):
        x0, y0, x1, y1 = self.clip
        s = self.scale
        return {(x, y) for y in range(y0, y1) for x in range(x0, x1) if inside((x + 0.5) / s, (y + 0.5) / s)}

    def paint(self, pixels, colour):
        x0, y0, x1, y1 = self.clip
        for x, y in pixels:
            if x0 <= x < x1 and y0 <= y < y1:
                self.px[y][x] = colour

    def shape(self, inside, fill, outline=None, width=1):
        m = self.mask(inside)
        if outline is not None:
            self.paint(grow(m, width) - m, outline)
        self.paint(m, fill)


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


def capsule(x0, y0, x1, y1, r):
    """A thick line with round ends."""
    dx, dy = x1 - x0, y1 - y0
    length2 = dx * dx + dy * dy or 1

    def inside(x, y):
        t = max(0, min(1, ((x - x0) * dx + (y - y0) * dy) / length2))
        return (x - x0 - t * dx) ** 2 + (y - y0 - t * dy) ** 2 <= r * r
    return inside


def limb(x, y, length, degrees, r):
    """A capsule hanging from (x, y); 0 degrees points down, positive swings right."""
    a = math.radians(degrees)
    return capsule(x, y, x + length * math.sin(a), y + length * math.cos(a), r)


def union(*shapes):
    return lambda x, y: any(s(x, y) for s in shapes)


def minus(a, b):
    return lambda x, y: a(x, y) and not b(x, y)


# ---- backdrop ----

def backdrop():
    c = Canvas(256, 256)
    for y in range(256):
        t = y / 192
        c.paint([(x, y) for x in range(256)], (int(90 + 110 * t), int(160 + 70 * t), 250, 255))
    c.shape(circle(210, 40, 18), (255, 240, 140, 255), (250, 200, 80, 255), 2)
    for cx, cy in ((50, 50), (130, 30)):
        c.shape(union(circle(cx, cy, 12), circle(cx + 14, cy - 4, 14), circle(cx + 28, cy, 11),
                      rect(cx, cy, cx + 28, cy + 12)), (250, 252, 255, 255))
    c.shape(lambda x, y: y > 170 - 30 * math.sin(x / 40.0 + 1), (120, 170, 120, 255))
    c.shape(lambda x, y: y > 185 - 18 * math.sin(x / 25.0), (80, 150, 80, 255))
    c.shape(rect(0, 192, 256, 256), (90, 180, 70, 255))
    c.shape(rect(0, 192, 256, 195), (60, 140, 50, 255))
    seed = 11
    for _ in range(60):
        seed = (seed * 1103515245 + 12345) & 0x7FFFFFFF
        x, y = (seed >> 8) % 254, 198 + (seed >> 20) % 54
        c.paint(c.mask(rect(x, y, x + 2, y + 3)), (70, 150, 60, 255))
    save("backdrop.png", c, alpha=False)


# ---- the hero: a kid in a cap, seen from the side, feet on the bottom row ----

def hero(name, legs, arms, bob=0):
    c = Canvas(64, 64)
    hip, shoulder = 44 - bob, 28 - bob
    for angle in (-legs, legs):
        shade = (40, 50, 120, 255) if angle == -legs else (60, 70, 160, 255)
        c.shape(limb(32, hip, 14 + bob, angle, 3.5), shade, INK)
        a = math.radians(angle)
        fx, fy = 32 + (14 + bob) * math.sin(a), hip + (14 + bob) * math.cos(a)
        c.shape(ellipse(fx + 3, min(fy + 2, 61), 5, 2.5), (90, 50, 30, 255), INK)
    back, front = arms
    c.shape(limb(32, shoulder, 14, back, 3), (200, 160, 120, 255), INK)
    c.shape(rect(25, shoulder - 2, 39, hip + 2), (60, 170, 80, 255), INK)
    c.shape(limb(32, shoulder, 14, front, 3), SKIN, INK)
    c.shape(limb(32, shoulder, 5, front, 3.4), (60, 170, 80, 255))
    head = 16 - bob
    c.shape(circle(32, head, 10), SKIN, INK)
    c.shape(minus(circle(32, head - 1, 11), rect(0, head - 2, 64, 64)), (220, 50, 50, 255), INK)
    c.shape(rect(32, head - 4, 46, head - 1), (220, 50, 50, 255), INK)
    c.shape(ellipse(36, head + 1, 1.5, 2.5), INK)
    c.shape(minus(ellipse(35, head + 5, 4, 2.5), rect(0, 0, 64, head + 5)), INK)
    save(name, c)


# ---- the critter: a green blob that squashes and stretches ----

def critter(name, rx, ry):
    c = Canvas(32, 32)
    cy = 31 - ry
    c.shape(ellipse(16, cy, rx, ry), (90, 200, 90, 255), (30, 90, 40, 255))
    c.shape(ellipse(16, cy + ry * 0.45, rx * 0.6, ry * 0.35), (150, 230, 140, 255))
    for ex in (16 - rx * 0.35, 16 + rx * 0.35):
        c.shape(ellipse(ex, cy - ry * 0.25, 2.5, 3), (255, 255, 255, 255), INK)
        c.shape(circle(ex + 0.5, cy - ry * 0.2, 1.2), INK)
    save(name, c)


def flower():
    c = Canvas(32, 32)
    c.shape(rect(15, 14, 17, 32), (40, 130, 40, 255))
    c.shape(ellipse(21, 24, 4, 2), (60, 160, 60, 255))
    c.shape(union(*[circle(16 + 6 * math.cos(a), 10 + 6 * math.sin(a), 4.5)
                    for a in (i * math.pi * 2 / 5 for i in range(5))]), (240, 110, 180, 255), INK)
    c.shape(circle(16, 10, 3.5), (255, 220, 60, 255), INK)
    save("flower.png", c)


def signpost():
    c = Canvas(64, 64)
    c.shape(rect(28, 24, 36, 64), (140, 90, 50, 255), INK)
    c.shape(rect(4, 4, 60, 30), (210, 170, 110, 255), INK, 2)
    for y, x1 in ((11, 50), (17, 44), (23, 34)):
        c.shape(rect(12, y, x1, y + 2), (120, 80, 40, 255))
    save("signpost.png", c)


def sparkle():
    c = Canvas(16, 16)
    for y in range(16):
        for x in range(16):
            dx, dy = abs(x + 0.5 - 8), abs(y + 0.5 - 8)
            d = math.hypot(dx, dy) / 8
            ray = max(0.0, 1 - min(dx, dy) / 1.5) * max(0.0, 1 - max(dx, dy) / 8)
            a = max(0.0, 1 - d) ** 2 + ray
            if a > 0.02:
                c.px[y][x] = (255, 250, 200, min(255, int(255 * a)))
    save("sparkle.png", c)


# ---- the kid's costume ----

# Grid units (the LOD of size 32 has one pixel per unit): rectangle (left, top,
# right, bottom) and registration point measured from the rectangle's top-left.
PIECES = [
    ("head", "round", (0, 0, 10, 10), (5, 10)),
    ("head", "cap", (10, 0, 20, 10), (5, 10)),
    ("body", "red", (0, 10, 10, 22), (5, 0)),
    ("body", "blue", (10, 10, 20, 22), (5, 0)),
    ("arm", "down", (20, 0, 24, 10), (2, 1)),
    ("arm", "up", (24, 0, 28, 10), (2, 9)),
    ("legs", "stand", (20, 10, 28, 20), (4, 0)),
    ("legs", "step", (0, 22, 8, 32), (4, 0)),
]


def head(c, x, y, cap):
    c.shape(circle(x + 5, y + 5.5, 4.3), SKIN, INK)
    if cap:
        c.shape(minus(circle(x + 5, y + 5, 4.6), rect(x, y + 4.2, x + 10, y + 10)), (40, 90, 220, 255), INK)
        c.shape(rect(x + 5, y + 3.4, x + 9.8, y + 4.6), (40, 90, 220, 255))
    else:
        c.shape(minus(circle(x + 5, y + 5, 4.6), rect(x, y + 3.6, x + 10, y + 10)), (120, 70, 30, 255), INK)
    for ex in (x + 3.5, x + 6.5):
        c.shape(ellipse(ex, y + 5.6, 0.55, 0.8), INK)
    c.shape(minus(ellipse(x + 5, y + 7.2, 1.8, 1.1), rect(x, y, x + 10, y + 7.3)), (180, 40, 60, 255))


def body(c, x, y, colour, straps):
    c.shape(union(rect(x + 1, y + 1, x + 9, y + 12), circle(x + 2, y + 2, 1.5), circle(x + 8, y + 2, 1.5)),
            colour, INK)
    if straps:
        for sx in (x + 2.5, x + 6.5):
            c.shape(rect(sx, y + 1, sx + 1, y + 6), (250, 220, 80, 255))
        c.shape(rect(x + 2, y + 6, x + 8, y + 12), (30, 60, 150, 255))
    c.shape(minus(ellipse(x + 5, y + 0.6, 2, 1.6), rect(x, y, x + 10, y + 0.6)), SKIN)


def arm(c, x, y, up):
    top, bottom = (y + 1.6, y + 8.4) if not up else (y + 8.4, y + 1.6)
    c.shape(capsule(x + 2, top, x + 2, bottom, 1.3), SKIN, INK)
    c.shape(circle(x + 2, top, 1.5), (220, 50, 50, 255))
    c.shape(circle(x + 2, bottom, 1.4), SKIN)


def legs(c, x, y, step):
    c.shape(rect(x + 1, y, x + 7, y + 2), (40, 60, 130, 255))
    if step:
        c.shape(capsule(x + 2.6, y + 1, x + 1.6, y + 8, 1.2), (40, 60, 130, 255), INK)
        c.shape(capsule(x + 5.4, y + 1, x + 6.6, y + 8, 1.2), (50, 70, 150, 255), INK)
        c.shape(ellipse(x + 1.8, y + 8.8, 1.7, 1), (90, 50, 30, 255))
        c.shape(ellipse(x + 6.6, y + 8.8, 1.7, 1), (90, 50, 30, 255))
    else:
        for lx in (x + 2.6, x + 5.4):
            c.shape(capsule(lx, y + 1, lx, y + 8, 1.2), (40, 60, 130, 255), INK)
            c.shape(ellipse(lx, y + 8.8, 1.7, 1), (90, 50, 30, 255))


DRAW = {
    ("head", "round"): lambda c, x, y: head(c, x, y, False),
    ("head", "cap"): lambda c, x, y: head(c, x, y, True),
    ("body", "red"): lambda c, x, y: body(c, x, y, (220, 50, 50, 255), False),
    ("body", "blue"): lambda c, x, y: body(c, x, y, (250, 250, 250, 255), True),
    ("arm", "down"): lambda c, x, y: arm(c, x, y, False),
    ("arm", "up"): lambda c, x, y: arm(c, x, y, True),
    ("legs", "stand"): lambda c, x, y: legs(c, x, y, False),
    ("legs", "step"): lambda c, x, y: legs(c, x, y, True),
}


def kid_costume():
    lods = []
    for size in (32, 64, 128):
        s = size // 32
        c = Canvas(size, size, scale=s)
        components = {}
        for component, variation, (l, t, r, b), (rx, ry) in PIECES:
            c.clip = (l * s, t * s, r * s, b * s)
            DRAW[component, variation](c, l, t)
            components.setdefault(component, []).append(
                {"Name": variation, "RectLeft": l * s, "RectTop": t * s, "RectRight": r * s,
                 "RectBottom": b * s, "RegPointX": rx * s, "RegPointY": ry * s})
        save("kid%d.png" % size, c)
        lods.append({"Size": size, "TextureURI": "kid%d.png" % size,
                     "ComponentList": [{"Name": n, "Variations": v} for n, v in components.items()]})

    lines = ['{"LODList": [']
    for i, lod in enumerate(lods):
        lines.append('  {"Size": %d, "TextureURI": "%s", "ComponentList": [' % (lod["Size"], lod["TextureURI"]))
        comps = lod["ComponentList"]
        for j, comp in enumerate(comps):
            lines.append('    {"Name": "%s", "Variations": [' % comp["Name"])
            vs = comp["Variations"]
            for k, v in enumerate(vs):
                lines.append("      " + json.dumps(v) + ("," if k + 1 < len(vs) else ""))
            lines.append("    ]}" + ("," if j + 1 < len(comps) else ""))
        lines.append("  ]}" + ("," if i + 1 < len(lods) else ""))
    lines.append(' ],')
    lines.append(' "AudioList": [{"Name": "giggle", "URI": "giggle.wav"}, {"Name": "boing", "URI": "boing.wav"}]}')
    with open(os.path.join(HERE, "kid-costume.json"), "w") as f:
        f.write("\n".join(lines) + "\n")


if __name__ == "__main__":
    backdrop()
    for i, (legs_angle, arms_angles, bob) in enumerate(((28, (-30, 30), 0), (8, (-8, 8), 1),
                                                       (-28, (30, -30), 0), (-8, (8, -8), 1))):
        hero("hero_walk%d.png" % i, legs_angle, arms_angles, bob)
    hero("hero_wave0.png", 4, (10, 150), 0)
    hero("hero_wave1.png", 4, (10, 200), 0)
    critter("critter_squash.png", 14, 8)
    critter("critter.png", 11, 11)
    critter("critter_stretch.png", 9, 14)
    flower()
    signpost()
    sparkle()
    kid_costume()
