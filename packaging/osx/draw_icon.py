#!/usr/bin/env python3
"""Draws the project's icon as an icon of macOS. Needs nothing but Python, and runs only when the drawing changes.

Usage: draw_icon.py ../kelva.svg KelvaHelper.icns
"""

import pathlib
import struct
import sys
import xml.etree.ElementTree
import zlib

# The names that an .icns file has for its PNG pictures, and how many pixels wide and high each is.
SIZES = {"ic11": 32, "ic12": 64, "ic07": 128, "ic08": 256, "ic09": 512}
SVG = "{http://www.w3.org/2000/svg}"


def shapes(drawing):
    """The shapes of a drawing, from the lowest up, each as (function that gives a point's distance to its edge, colour)."""
    found = []
    for element in xml.etree.ElementTree.parse(drawing).getroot():
        if element.tag not in (SVG + "rect", SVG + "circle"):
            continue
        value = {name: float(text) for name, text in element.items() if name != "fill"}
        if element.tag == SVG + "circle":
            value = {"width": 2 * value["r"], "height": 2 * value["r"], "rx": value["r"], "x": value["cx"] - value["r"], "y": value["cy"] - value["r"]}
        colour = bytes.fromhex(element.attrib["fill"].lstrip("#"))
        found.append((rounded_rectangle(**value), colour))
    return found


def rounded_rectangle(x, y, width, height, rx):
    """A function of a point: its distance to the rectangle's edge, negative inside."""
    middle_x, middle_y, reach_x, reach_y = x + width / 2, y + height / 2, width / 2 - rx, height / 2 - rx

    def distance(point_x, point_y):
        beyond_x, beyond_y = abs(point_x - middle_x) - reach_x, abs(point_y - middle_y) - reach_y
        outside = (max(beyond_x, 0) ** 2 + max(beyond_y, 0) ** 2) ** 0.5
        return outside + min(max(beyond_x, beyond_y), 0) - rx

    return distance


def draw(drawing, size):
    """The drawing as rows of red, green, blue and opacity."""
    unit, parts, rows = 512 / size, shapes(drawing), []
    for row in range(size):
        line = bytearray()
        for column in range(size):
            pixel = (0.0, 0.0, 0.0, 0.0)  # the colours times the opacity
            for distance, colour in parts:
                # A pixel that the edge crosses is covered in part.
                cover = min(max(0.5 - distance((column + 0.5) * unit, (row + 0.5) * unit) / unit, 0), 1)
                pixel = tuple(old * (1 - cover) + new * cover for old, new in zip(pixel, (*colour, 255)))
            opacity = pixel[3]
            line += bytes(round(value * 255 / opacity) if opacity else 0 for value in pixel[:3]) + bytes([round(opacity)])
        rows.append(bytes(line))
    return rows


def png(rows):
    def chunk(name, data):
        return struct.pack(">I", len(data)) + name + data + struct.pack(">I", zlib.crc32(name + data))

    header = struct.pack(">IIBBBBB", len(rows[0]) // 4, len(rows), 8, 6, 0, 0, 0)
    pixels = zlib.compress(b"".join(b"\0" + row for row in rows), 9)
    return b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", pixels) + chunk(b"IEND", b"")


def icns(drawing):
    pictures = b""
    for name, size in SIZES.items():
        picture = png(draw(drawing, size))
        pictures += name.encode() + struct.pack(">I", 8 + len(picture)) + picture
    return b"icns" + struct.pack(">I", 8 + len(pictures)) + pictures


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    pathlib.Path(sys.argv[2]).write_bytes(icns(sys.argv[1]))
