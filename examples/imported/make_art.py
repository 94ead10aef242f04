#!/usr/bin/env python3
"""Draws the art of the imported example, as an artist's tools would leave it:

  knight.png + knight.json   an Aseprite sprite sheet (array form): 6 frames of
                             16x24, tags "idle" (pingpong) and "walk" (forward),
                             a "feet" slice whose pivot is the registration point
  terrain.png + terrain.tsx  a Tiled tileset of 16x16 tiles; water (tile 4)
                             is animated with tile 5
  meadow.tmx                 a 20x15 Tiled map using it: ground (CSV) and
                             details (base64, zlib) layers

Standard library only. The files land beside this script.
"""
import base64
import os
import struct
import zlib

HERE = os.path.dirname(os.path.abspath(__file__))


def write_png(name, w, h, pixel):
    raw = b"".join(b"\0" + bytes(c for x in range(w) for c in pixel(x, y)) for y in range(h))

    def chunk(kind, data):
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data) & 0xFFFFFFFF)

    with open(os.path.join(HERE, name), "wb") as f:
        f.write(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", w, h, 8, 6, 0, 0, 0)) +
                chunk(b"IDAT", zlib.compress(raw, 9)) + chunk(b"IEND", b""))


CLEAR = (0, 0, 0, 0)
GRASS, GRASS2 = (76, 160, 64, 255), (96, 184, 80, 255)
DIRT, DIRT2 = (150, 108, 60, 255), (128, 90, 48, 255)
WATER, WATER2 = (48, 96, 200, 255), (120, 170, 240, 255)
PETAL, TRUNK, LEAF = (240, 220, 60, 255), (110, 70, 30, 255), (40, 120, 40, 255)


def tile(t, x, y):
    """Tiles: 0 grass, 1 dirt, 2 flower, 3 bush, 4 and 5 water (two frames)."""
    if t == 0:
        return GRASS2 if (x * 7 + y * 3) % 11 == 0 else GRASS
    if t == 1:
        return DIRT2 if (x * 5 + y * 9) % 7 == 0 else DIRT
    if t == 2:
        d = (x - 8) ** 2 + (y - 8) ** 2
        return (200, 60, 40, 255) if d < 3 else PETAL if d < 14 else CLEAR
    if t == 3:
        return LEAF if (x - 8) ** 2 + (y - 9) ** 2 < 40 else CLEAR
    shift = 0 if t == 4 else 4
    return WATER2 if (x + shift) % 8 == 0 and y % 6 == 2 else WATER


write_png("terrain.png", 64, 32, lambda x, y: tile((y // 16) * 4 + x // 16, x % 16, y % 16))

with open(os.path.join(HERE, "terrain.tsx"), "w") as f:
    f.write('''<?xml version="1.0" encoding="UTF-8"?>
<tileset version="1.8" tiledversion="1.8.2" name="terrain" tilewidth="16" tileheight="16" tilecount="8" columns="4">
 <image source="terrain.png" width="64" height="32"/>
 <tile id="4">
  <animation>
   <frame tileid="4" duration="400"/>
   <frame tileid="5" duration="400"/>
  </animation>
 </tile>
</tileset>
''')

W, H = 20, 15
ground = []
for r in range(H):
    for c in range(W):
        ground.append(5 if 9 <= r <= 11 and 12 <= c <= 17 else 2 if c == 6 or r == 7 else 1)
details = [0] * (W * H)
for c, r, t in [(2, 2, 3), (4, 3, 3), (15, 2, 3), (17, 4, 3), (3, 11, 3), (9, 12, 3),
                (1, 5, 4), (8, 3, 4), (11, 5, 4), (14, 13, 4), (18, 8, 4), (2, 13, 4)]:
    details[r * W + c] = t | (0x80000000 if (c + r) % 2 else 0)
csv = ",\n".join(",".join(str(g) for g in ground[r * W:(r + 1) * W]) for r in range(H))
packed = base64.b64encode(zlib.compress(struct.pack("<%dI" % len(details), *details))).decode()
with open(os.path.join(HERE, "meadow.tmx"), "w") as f:
    f.write('''<?xml version="1.0" encoding="UTF-8"?>
<map version="1.8" tiledversion="1.8.2" orientation="orthogonal" renderorder="right-down" width="%d" height="%d" tilewidth="16" tileheight="16" infinite="0" nextlayerid="3" nextobjectid="1">
 <tileset firstgid="1" source="terrain.tsx"/>
 <layer id="1" name="ground" width="%d" height="%d">
  <data encoding="csv">
%s
</data>
 </layer>
 <layer id="2" name="details" width="%d" height="%d">
  <data encoding="base64" compression="zlib">
   %s
  </data>
 </layer>
</map>
''' % (W, H, W, H, csv, W, H, packed))

# The knight: 16x24 frames side by side; frames 0-1 idle, 2-5 walk.
SKIN, ARMOUR, DARK, PLUME = (240, 200, 160, 255), (180, 190, 200, 255), (60, 60, 80, 255), (200, 40, 40, 255)


def knight(f, x, y):
    bob = 1 if f == 1 else 0
    if f >= 2:
        step = [-2, 0, 2, 0][f - 2]
    else:
        step = 0
    y0 = y - bob
    if 1 <= y0 <= 2 and 6 <= x <= 9:
        return PLUME
    if 3 <= y0 <= 8 and 5 <= x <= 10:
        return SKIN if 6 <= y0 <= 7 and 6 <= x <= 9 else ARMOUR
    if 9 <= y0 <= 16 and 4 <= x <= 11:
        return DARK if y0 == 13 else ARMOUR
    if 17 <= y <= 23:
        if 5 + step <= x <= 6 + step or 9 - step <= x <= 10 - step:
            return DARK
    return CLEAR


write_png("knight.png", 96, 24, lambda x, y: knight(x // 16, x % 16, y))
frames = ",\n".join(
    '   { "filename": "knight %d.aseprite", "frame": { "x": %d, "y": 0, "w": 16, "h": 24 }, "rotated": false, '
    '"trimmed": false, "spriteSourceSize": { "x": 0, "y": 0, "w": 16, "h": 24 }, "sourceSize": { "w": 16, "h": 24 }, '
    '"duration": %d }' % (i, i * 16, 300 if i < 2 else 120) for i in range(6))
with open(os.path.join(HERE, "knight.json"), "w") as f:
    f.write('''{ "frames": [
%s
 ],
 "meta": {
  "app": "https://www.aseprite.org/", "version": "1.3", "image": "knight.png", "format": "RGBA8888",
  "size": { "w": 96, "h": 24 }, "scale": "1",
  "frameTags": [
   { "name": "idle", "from": 0, "to": 1, "direction": "pingpong", "color": "#000000ff" },
   { "name": "walk", "from": 2, "to": 5, "direction": "forward", "color": "#000000ff" }
  ],
  "layers": [ { "name": "Layer 1", "opacity": 255, "blendMode": "normal" } ],
  "slices": [
   { "name": "feet", "color": "#0000ffff", "keys": [{ "frame": 0, "bounds": {"x": 0, "y": 0, "w": 16, "h": 24 }, "pivot": {"x": 8, "y": 23 } }] }
  ]
 }
}
''' % frames)
