#!/usr/bin/env python3
"""Writes the seeds of PngFuzz anew: small pictures of every kind."""

import pathlib
import struct
import zlib

GRAY, COLOR, PALETTE, GRAY_ALPHA, COLOR_ALPHA = 0, 2, 3, 4, 6
CHANNELS = {GRAY: 1, COLOR: 3, PALETTE: 1, GRAY_ALPHA: 2, COLOR_ALPHA: 4}
PASSES = [(0, 0, 8, 8), (4, 0, 8, 8), (0, 4, 4, 8), (2, 0, 4, 4), (0, 2, 2, 4), (1, 0, 2, 2), (0, 1, 1, 2)]


def chunk(kind, contents):
    checked = kind + contents
    return struct.pack(">I", len(contents)) + checked + struct.pack(">I", zlib.crc32(checked))


def rows(width, height, bits, kind, first_filter):
    size = (width * bits * CHANNELS[kind] + 7) // 8
    for y in range(height if width else 0):
        # Indexes stay inside of the two colours of a palette.
        values = bytes((x + y) % 2 if kind == PALETTE else (x * 37 + y * 11) % 256 for x in range(size))
        yield bytes([(first_filter + y) % 5]) + values


def picture(width, height, bits, kind, extra=b"", interlaced=False):
    header = struct.pack(">IIBBBBB", width, height, bits, kind, 0, 0, interlaced)
    if interlaced:
        sizes = [(-(-(width - x) // dx), -(-(height - y) // dy)) for x, y, dx, dy in PASSES]
    else:
        sizes = [(width, height)]
    data = b"".join(row for w, h in sizes for row in rows(w, h, bits, kind, 0))
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + extra + chunk(b"IDAT", zlib.compress(data, 9)) +
            chunk(b"IEND", b""))


palette = chunk(b"PLTE", bytes([1, 2, 3, 250, 251, 252]))
seeds = {
    "gray-1": picture(9, 3, 1, GRAY),
    "gray-2-transparent": picture(5, 3, 2, GRAY, chunk(b"tRNS", b"\0\1")),
    "gray-8-interlaced": picture(9, 9, 8, GRAY, interlaced=True),
    "gray-16": picture(3, 3, 16, GRAY),
    "color-8": picture(4, 6, 8, COLOR),
    "color-8-transparent": picture(2, 2, 8, COLOR, chunk(b"tRNS", b"\0\0\0\x25\0\x4a")),
    "color-16": picture(3, 2, 16, COLOR),
    "palette-1": picture(8, 1, 1, PALETTE, palette),
    "palette-8-transparent": picture(3, 3, 8, PALETTE, palette + chunk(b"tRNS", b"\x7f")),
    "gray-alpha-8": picture(3, 2, 8, GRAY_ALPHA),
    "gray-alpha-16-interlaced": picture(9, 9, 16, GRAY_ALPHA, interlaced=True),
    "color-alpha-8": picture(5, 5, 8, COLOR_ALPHA, chunk(b"gAMA", struct.pack(">I", 45455))),
    "color-alpha-16": picture(2, 2, 16, COLOR_ALPHA),
    "one-pixel": picture(1, 1, 8, COLOR_ALPHA),
    "cut": picture(4, 4, 8, COLOR_ALPHA)[:-20],
}
folder = pathlib.Path(__file__).parent / "Seeds" / "Png"
folder.mkdir(parents=True, exist_ok=True)
for name, contents in seeds.items():
    (folder / name).write_bytes(contents)
