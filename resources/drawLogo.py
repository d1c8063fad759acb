#!/usr/bin/env python3
"""Draws logoKelvar.png: a K folded from three faces of a cube, on white.

White is the color that the logo is shown without, so edges are hard: no pixel is nearly white.
Run once after a change here: python3 resources/drawLogo.py
"""
import pathlib
import struct
import zlib

SIZE = 128
WHITE = (255, 255, 255)
# Corners in hundredths of the edge, x to the right, y downwards; later faces lie over earlier ones.
FACES = [
    ((23, 86, 132), [(14, 22), (34, 12), (34, 88), (14, 78)]),     # stem, the face to the left
    ((64, 156, 196), [(40, 46), (66, 12), (88, 22), (52, 68)]),    # upper arm, the face in the light
    ((232, 132, 40), [(51, 47), (88, 78), (66, 88), (40, 62)]),    # lower arm, the face in front
]


def inside(corners, x, y):
    """Even-odd rule."""
    odd = False
    for (x0, y0), (x1, y1) in zip(corners, corners[1:] + corners[:1]):
        if (y0 > y) != (y1 > y) and x < x0 + (y - y0) * (x1 - x0) / (y1 - y0):
            odd = not odd
    return odd


def pixel(column, row):
    x, y = (column + 0.5) * 100 / SIZE, (row + 0.5) * 100 / SIZE
    color = WHITE
    for face, corners in FACES:
        if inside(corners, x, y):
            color = face
    return bytes(color)


def chunk(kind, data):
    return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))


rows = b"".join(b"\0" + b"".join(pixel(x, y) for x in range(SIZE)) for y in range(SIZE))
png = b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", SIZE, SIZE, 8, 2, 0, 0, 0))
png += chunk(b"IDAT", zlib.compress(rows, 9)) + chunk(b"IEND", b"")
(pathlib.Path(__file__).parent / "logoKelvar.png").write_bytes(png)
