#!/usr/bin/env python3
"""Draws the loose pictures of the pipeline example into art/ (RGBA PNGs
with transparent borders, as a drawing program saves them). Standard
library only; run from anywhere.

  art/sky.png           256x64  the backdrop
  art/tree.png           48x64  a tree, centred in a larger canvas
  art/sun.png            40x40  a sun with a transparent ring around it
  art/critter/0..2.png   32x32  three walking frames, each drawn at another
                                height in its canvas
"""
import math
import os
import struct
import zlib

HERE = os.path.dirname(os.path.abspath(__file__))
CLEAR = (0, 0, 0, 0)
# Every channel a multiple of 17: the colours survive a 16-bit palette.
SKY, GRASS, DIRT = (0x88, 0xCC, 0xFF, 255), (0x44, 0xAA, 0x33, 255), (0x77, 0x55, 0x33, 255)
LEAF, DARK_LEAF, TRUNK = (0x22, 0x88, 0x33, 255), (0x11, 0x66, 0x22, 255), (0x66, 0x44, 0x22, 255)
SUN, SUN_EDGE = (0xFF, 0xDD, 0x33, 255), (0xFF, 0xAA, 0x22, 255)
BODY, BELLY, EYE, FOOT = (0xCC, 0x33, 0x55, 255), (0xFF, 0x99, 0xAA, 255), (0x11, 0x11, 0x11, 255), (0x88, 0x22, 0x33, 255)


def write_png(path, width, height, pixel):
    rows = b"".join(b"\0" + bytes(c for x in range(width) for c in pixel(x, y)) for y in range(height))
    def chunk(kind, data):
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data) & 0xFFFFFFFF)
    with open(os.path.join(HERE, "art", path), "wb") as f:
        f.write(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, 8, 6, 0, 0, 0)) +
                chunk(b"IDAT", zlib.compress(rows, 9)) + chunk(b"IEND", b""))


def sky(x, y):
    ground = 48 + int(3 * math.sin(x / 20.0))
    return SKY if y < ground else (GRASS if y < ground + 5 else DIRT)


def tree(x, y):
    if 20 <= x < 28 and 40 <= y < 60:
        return TRUNK
    d = math.hypot(x - 24, y - 26)
    if d < 16:
        return DARK_LEAF if (x + y) % 7 == 0 or d > 14 else LEAF
    return CLEAR


def sun(x, y):
    d = math.hypot(x - 19.5, y - 19.5)
    return SUN if d < 11 else (SUN_EDGE if d < 13 else CLEAR)


def critter(lift):
    def pixel(x, y):
        y += lift
        if 12 <= y < 26 and 7 <= x < 25:
            if 19 <= y and 11 <= x < 21:
                return BELLY
            if y == 15 and x in (12, 19):
                return EYE
            return BODY
        if 26 <= y < 29 and (8 <= x < 13 or 19 <= x < 24):
            return FOOT
        return CLEAR
    return pixel


os.makedirs(os.path.join(HERE, "art", "critter"), exist_ok=True)
write_png("sky.png", 256, 64, sky)
write_png("tree.png", 48, 64, tree)
write_png("sun.png", 40, 40, sun)
for i, lift in enumerate((0, 2, 1)):
    write_png("critter/%d.png" % i, 32, 32, critter(lift))
