#!/usr/bin/env python3
"""Writes the PNG files the texture tests load: one small file per colour
type and depth, and a corpus of broken or unsupported files.

The pixel patterns are recomputed by tests/TexturePNGTest.cpp; change both
together. Run from anywhere: the files land beside this script.
"""
import os
import struct
import zlib

HERE = os.path.dirname(os.path.abspath(__file__))


def chunk(kind, data, crc=None):
    if crc is None:
        crc = zlib.crc32(kind + data) & 0xFFFFFFFF
    return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", crc)


def ihdr(width, height, depth, colour, interlace=0):
    return chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, depth, colour, 0, 0, interlace))


def pack_row(values, bits):
    """Packs samples of `bits` bits, most significant first, padding the last byte."""
    if bits == 8:
        return bytes(values)
    if bits == 16:
        return b"".join(struct.pack(">H", v) for v in values)
    out = bytearray()
    per = 8 // bits
    for i in range(0, len(values), per):
        byte = 0
        group = values[i:i + per]
        for k, v in enumerate(group):
            byte |= v << (8 - bits * (k + 1))
        out.append(byte)
    return bytes(out)


def idat(rows):
    return chunk(b"IDAT", zlib.compress(b"".join(b"\0" + r for r in rows)))


def png(*chunks):
    return b"\x89PNG\r\n\x1a\n" + b"".join(chunks) + chunk(b"IEND", b"")


# Patterns shared with the tests.
def palette(n):
    return [((i * 37 + 11) & 255, (i * 91 + 47) & 255, (i * 53 + 101) & 255) for i in range(n)]


def index(x, y, n):
    return (x * 3 + y * 5) % n


def rgb(x, y):
    return ((x * 16 + 3) & 255, (y * 16 + 5) & 255, ((x + y) * 8 + 7) & 255)


def alpha(x, y):
    return (x * y * 4 + 9) & 255


def plte(n):
    return chunk(b"PLTE", bytes(c for e in palette(n) for c in e))


def paletted(width, height, bits, entries, trns=None):
    rows = [pack_row([index(x, y, entries) for x in range(width)], bits) for y in range(height)]
    chunks = [ihdr(width, height, bits, 3), plte(entries)]
    if trns is not None:
        chunks.append(chunk(b"tRNS", bytes(trns)))
    chunks.append(idat(rows))
    return png(*chunks)


def direct(width, height, with_alpha, depth=8):
    rows = []
    for y in range(height):
        samples = []
        for x in range(width):
            px = list(rgb(x, y)) + ([alpha(x, y)] if with_alpha else [])
            samples += [v * 257 for v in px] if depth == 16 else px
        rows.append(pack_row(samples, depth))
    return png(ihdr(width, height, depth, 6 if with_alpha else 2), idat(rows))


def adam7(width, height):
    """An interlaced RGB image of the rgb() pattern."""
    passes = [(0, 0, 8, 8), (4, 0, 8, 8), (0, 4, 4, 8), (2, 0, 4, 4), (0, 2, 2, 4), (1, 0, 2, 2), (0, 1, 1, 2)]
    data = b""
    for x0, y0, dx, dy in passes:
        xs = range(x0, width, dx)
        for y in range(y0, height, dy):
            if len(xs):
                data += b"\0" + bytes(c for x in xs for c in rgb(x, y))
    return png(ihdr(width, height, 8, 2, interlace=1), chunk(b"IDAT", zlib.compress(data)))


def grey(width, height, with_alpha):
    rows = [bytes(v for x in range(width) for v in ([x * 20] + ([200] if with_alpha else [])))
            for y in range(height)]
    return png(ihdr(width, height, 8, 4 if with_alpha else 0), idat(rows))


def files():
    good_rgb = direct(8, 8, False)
    yield "pal1.png", paletted(16, 4, 1, 2)
    yield "pal2.png", paletted(8, 4, 2, 4)
    yield "pal4.png", paletted(16, 16, 4, 16)
    yield "pal4_trns3.png", paletted(16, 16, 4, 16, trns=[0, 128, 200])
    yield "pal8.png", paletted(16, 8, 8, 200)
    yield "pal8_trns.png", paletted(16, 8, 8, 200, trns=[i * 25 for i in range(10)])
    yield "pal2_trns.png", paletted(8, 4, 2, 3, trns=[64])
    yield "rgb.png", good_rgb
    yield "rgba.png", direct(8, 4, True)
    yield "rgb_interlaced.png", adam7(8, 8)
    yield "rgb_12x5.png", direct(12, 5, False)
    yield "rgb_2048x1.png", direct(2048, 1, False)
    yield "pal4_odd_width.png", paletted(3, 2, 4, 16)

    # Refused: unsupported types and depths.
    yield "grey.png", grey(8, 8, False)
    yield "grey_alpha.png", grey(8, 8, True)
    yield "rgb16.png", direct(4, 4, False, depth=16)
    yield "rgba16.png", direct(4, 4, True, depth=16)
    yield "rgb_4096x1.png", direct(4096, 1, False)
    yield "rgb_1x4096.png", direct(1, 4096, False)
    # Only the header claims the size: the data is one byte.
    yield "huge_100000.png", png(ihdr(100000, 100000, 8, 2), chunk(b"IDAT", zlib.compress(b"\0")))
    yield "huge_30000.png", png(ihdr(30000, 30000, 8, 6), chunk(b"IDAT", zlib.compress(b"\0")))
    yield "huge_16000.png", png(ihdr(16000, 16000, 8, 2), chunk(b"IDAT", zlib.compress(b"\0" * 48001)))
    # The tools take 16-bit files, reduced to 8 bits without gamma: (70, 160, 70) stays.
    yield "rgb16_gamma.png", png(ihdr(1, 1, 16, 2), chunk(b"gAMA", struct.pack(">I", 45455)),
                                 idat([pack_row([70 * 257, 160 * 257, 70 * 257], 16)]))

    # Broken.
    cut = good_rgb.index(b"IDAT") + 20
    yield "truncated.png", good_rgb[:cut]
    yield "truncated_header.png", good_rgb[:20]
    yield "empty.png", b""
    yield "not_a_png.png", b"This is a text file, not an image.\n"
    i = good_rgb.index(b"IHDR")
    yield "bad_crc_ihdr.png", good_rgb[:i + 17] + b"\xde\xad\xbe\xef" + good_rgb[i + 21:]
    rows = [bytes(c for x in range(8) for c in rgb(x, y)) for y in range(8)]
    body = zlib.compress(b"".join(b"\0" + r for r in rows))
    yield "bad_crc_idat.png", png(ihdr(8, 8, 8, 2), chunk(b"IDAT", body, crc=0x12345678))
    text = chunk(b"tEXt", b"Comment\0corrupted", crc=0)
    yield "bad_crc_text.png", png(ihdr(8, 8, 8, 2), text, chunk(b"IDAT", body))
    yield "bad_zlib.png", png(ihdr(8, 8, 8, 2), chunk(b"IDAT", b"\x78\x9c" + b"\xff" * 40))
    yield "short_data.png", png(ihdr(8, 8, 8, 2), chunk(b"IDAT", zlib.compress(b"".join(b"\0" + r for r in rows[:3]))))
    pal_rows = [pack_row([index(x, y, 16) for x in range(8)], 8) for y in range(8)]
    yield "plte_after_idat.png", png(ihdr(8, 8, 8, 3), idat(pal_rows), plte(16))
    yield "idat_before_ihdr.png", png(idat(rows), ihdr(8, 8, 8, 2))
    yield "pal1_3_entries.png", png(ihdr(8, 2, 1, 3), plte(3), idat([pack_row([x & 1 for x in range(8)], 1)] * 2))
    yield "pal8_257_entries.png", png(ihdr(8, 2, 8, 3), plte(257), idat([bytes(8)] * 2))
    yield "pal_bad_index.png", png(ihdr(8, 2, 8, 3), plte(4), idat([bytes([250] * 8)] * 2))


def main():
    for name, data in files():
        with open(os.path.join(HERE, name), "wb") as f:
            f.write(data)


if __name__ == "__main__":
    main()
