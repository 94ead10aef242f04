#!/usr/bin/env python3
"""Draws the samples of a soak run (the CSV of zephrin2d-soak) as a PNG.

    scripts/plot_soak.py SOAK.csv OUT.png

Top panel: resident memory (red) and heap in use (blue), MiB. Bottom panel:
draw lists (green), draw entries / 10 (orange) and texture-cache entries
(purple). The axes are labelled with their ranges. Standard library only.
"""
import csv
import struct
import sys
import zlib

W, H = 800, 480
MARGIN_L, MARGIN_R, MARGIN_T, MARGIN_B = 70, 20, 20, 30
GAP = 40

# 3x5 digits, '.', 'k', 'M' and a space, enough to label the axes.
FONT = {
    '0': '111101101101111', '1': '010110010010111', '2': '111001111100111', '3': '111001111001111',
    '4': '101101111001001', '5': '111100111001111', '6': '111100111101111', '7': '111001001001001',
    '8': '111101111101111', '9': '111101111001111', '.': '000000000000010', ' ': '000000000000000',
    'k': '100101110101101', 'M': '101111111101101', '-': '000000111000000',
}


class Canvas:
    def __init__(self, w, h):
        self.w, self.h = w, h
        self.px = bytearray(b'\xff' * (w * h * 3))

    def set(self, x, y, c):
        if 0 <= x < self.w and 0 <= y < self.h:
            i = (y * self.w + x) * 3
            self.px[i:i + 3] = bytes(c)

    def line(self, x0, y0, x1, y1, c):
        dx, dy = abs(x1 - x0), -abs(y1 - y0)
        sx, sy = (1 if x0 < x1 else -1), (1 if y0 < y1 else -1)
        err = dx + dy
        while True:
            self.set(x0, y0, c)
            if x0 == x1 and y0 == y1:
                return
            e2 = 2 * err
            if e2 >= dy:
                err += dy
                x0 += sx
            if e2 <= dx:
                err += dx
                y0 += sy

    def text(self, x, y, s, c, scale=2):
        for ch in s:
            bits = FONT.get(ch, FONT[' '])
            for r in range(5):
                for col in range(3):
                    if bits[r * 3 + col] == '1':
                        for a in range(scale):
                            for b in range(scale):
                                self.set(x + col * scale + a, y + r * scale + b, c)
            x += 4 * scale

    def png(self):
        raw = b''.join(b'\x00' + bytes(self.px[y * self.w * 3:(y + 1) * self.w * 3]) for y in range(self.h))

        def chunk(kind, data):
            body = kind + data
            return struct.pack('>I', len(data)) + body + struct.pack('>I', zlib.crc32(body) & 0xffffffff)

        return (b'\x89PNG\r\n\x1a\n' + chunk(b'IHDR', struct.pack('>IIBBBBB', self.w, self.h, 8, 2, 0, 0, 0)) +
                chunk(b'IDAT', zlib.compress(raw, 9)) + chunk(b'IEND', b''))


def label(v):
    if v >= 10000:
        return '%dk' % round(v / 1000)
    return '%d' % round(v)


def panel(cv, top, bottom, frames, series):
    lo = min(min(v) for v, _ in series)
    hi = max(max(v) for v, _ in series)
    if hi == lo:
        hi = lo + 1
    pad = (hi - lo) * 0.05
    lo, hi = lo - pad, hi + pad
    left, right = MARGIN_L, W - MARGIN_R
    grey = (180, 180, 180)
    cv.line(left, top, left, bottom, grey)
    cv.line(left, bottom, right, bottom, grey)
    cv.text(4, top, label(hi), (0, 0, 0))
    cv.text(4, bottom - 10, label(lo), (0, 0, 0))
    f0, f1 = frames[0], frames[-1] if frames[-1] != frames[0] else frames[0] + 1
    for values, colour in series:
        prev = None
        for f, v in zip(frames, values):
            x = left + round((f - f0) * (right - left) / (f1 - f0))
            y = bottom - round((v - lo) * (bottom - top) / (hi - lo))
            if prev:
                cv.line(prev[0], prev[1], x, y, colour)
            prev = (x, y)


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    rows = list(csv.DictReader(open(sys.argv[1])))
    if not rows:
        sys.exit('no samples in ' + sys.argv[1])
    frames = [int(r['frame']) for r in rows]
    col = lambda k, scale=1.0: [int(r[k]) * scale for r in rows]
    cv = Canvas(W, H)
    split = MARGIN_T + (H - MARGIN_T - MARGIN_B - GAP) // 2
    panel(cv, MARGIN_T, split, frames,
          [(col('resident_kib', 1 / 1024), (200, 30, 30)), (col('heap_kib', 1 / 1024), (30, 60, 200))])
    panel(cv, split + GAP, H - MARGIN_B, frames,
          [(col('draw_lists'), (30, 150, 30)), (col('draw_entries', 0.1), (230, 130, 0)),
           (col('texture_entries'), (130, 40, 160))])
    cv.text(MARGIN_L, H - 18, label(frames[0]), (0, 0, 0))
    last = label(frames[-1])
    cv.text(W - MARGIN_R - 8 * len(last), H - 18, last, (0, 0, 0))
    open(sys.argv[2], 'wb').write(cv.png())


if __name__ == '__main__':
    main()
