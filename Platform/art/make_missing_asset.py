#!/usr/bin/env python3
"""Writes missingAsset.png: the picture shown in place of art that cannot be
found. A 64x64 opaque magenta and black checkerboard with a white question
mark outlined in black, so that it cannot be mistaken for real art."""
import os
import struct
import sys
import zlib

SIZE = 64
CELL = 8
SCALE = 6
QUESTION = [
    ".###.",
    "#...#",
    "....#",
    "...#.",
    "..#..",
    ".....",
    "..#..",
]


def glyph_mask():
    width, height = len(QUESTION[0]) * SCALE, len(QUESTION) * SCALE
    left, top = (SIZE - width) // 2, (SIZE - height) // 2
    mask = [[False] * SIZE for _ in range(SIZE)]
    for gy, row in enumerate(QUESTION):
        for gx, ch in enumerate(row):
            if ch != "#":
                continue
            for y in range(top + gy * SCALE, top + (gy + 1) * SCALE):
                for x in range(left + gx * SCALE, left + (gx + 1) * SCALE):
                    mask[y][x] = True
    return mask


def pixels():
    mask = glyph_mask()

    def near(x, y):
        return any(0 <= x + dx < SIZE and 0 <= y + dy < SIZE and mask[y + dy][x + dx]
                   for dx in (-2, -1, 0, 1, 2) for dy in (-2, -1, 0, 1, 2))

    rows = []
    for y in range(SIZE):
        row = bytearray()
        for x in range(SIZE):
            if mask[y][x]:
                rgba = (255, 255, 255, 255)
            elif near(x, y):
                rgba = (0, 0, 0, 255)
            elif (x // CELL + y // CELL) % 2 == 0:
                rgba = (255, 0, 255, 255)
            else:
                rgba = (0, 0, 0, 255)
            row.extend(rgba)
        rows.append(bytes(row))
    return rows


def chunk(kind, data):
    body = kind + data
    return struct.pack(">I", len(data)) + body + struct.pack(">I", zlib.crc32(body) & 0xFFFFFFFF)


def png(rows):
    raw = b"".join(b"\x00" + row for row in rows)
    header = struct.pack(">IIBBBBB", SIZE, SIZE, 8, 6, 0, 0, 0)
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) +
            chunk(b"IDAT", zlib.compress(raw, 9)) + chunk(b"IEND", b""))


def main():
    out = sys.argv[1] if len(sys.argv) > 1 else os.path.join(os.path.dirname(os.path.abspath(__file__)),
                                                             "missingAsset.png")
    with open(out, "wb") as f:
        f.write(png(pixels()))


if __name__ == "__main__":
    main()
