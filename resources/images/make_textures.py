#!/usr/bin/env python3
"""Draws the four background textures as small greyscale PNGs.

Each is a base tone with seeded noise, streaked along one axis for the
brushed steel. Run from this folder to write them again; the output is the
same every time.
"""
import random
import struct
import zlib

SIZE = 128

TEXTURES = {
    # name: (base grey, noise amplitude, horizontal streaks, blue tint)
    "gbg_steele_05": (150, 18, True, 10),
    "gbg_white_02": (236, 6, False, 0),
    "gbg_grey_03": (196, 9, False, 0),
    "grey_05": (170, 7, False, 0),
}


def png(width, height, rows):
    def chunk(kind, data):
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data) & 0xFFFFFFFF)

    raw = b"".join(b"\x00" + bytes(row) for row in rows)
    header = struct.pack(">IIBBBBB", width, height, 8, 2, 0, 0, 0)
    return b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", zlib.compress(raw, 9)) + chunk(b"IEND", b"")


def texture(name, base, amplitude, streaked, tint):
    generator = random.Random(name)
    streaks = [generator.uniform(-amplitude, amplitude) for _ in range(SIZE)]
    rows = []
    for y in range(SIZE):
        row = []
        for _ in range(SIZE):
            grain = generator.uniform(-amplitude, amplitude) / (2 if streaked else 1)
            level = base + grain + (streaks[y] if streaked else 0)
            grey = max(0, min(255, round(level)))
            row += [grey, grey, max(0, min(255, grey + tint))]
        rows.append(row)
    return png(SIZE, SIZE, rows)


if __name__ == "__main__":
    for name, (base, amplitude, streaked, tint) in TEXTURES.items():
        with open(name + ".png", "wb") as out:
            out.write(texture(name, base, amplitude, streaked, tint))
