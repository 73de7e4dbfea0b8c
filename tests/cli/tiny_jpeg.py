"""JPEG files made bit by bit: squares of 8 by 8 pixels, each of one colour, without an encoder."""

import struct


def jpeg(rows, parts=b""):
    """A file whose squares have the colours of `rows`, a list of lists of (red, green, blue)."""
    bits = []
    before = [128, 128, 128]
    for row in rows:
        for colour in row:
            levels = luma_and_chroma(colour)
            for channel, level in enumerate(levels):
                bits.append(square(level - before[channel]))
            before = levels
    frame = struct.pack(">BHHB", 8, 8 * len(rows), 8 * len(rows[0]), 3) + b"".join(
        bytes((number, 0x11, 0)) for number in (1, 2, 3))
    scan = b"\x03\x01\0\x02\0\x03\0\0\x3f\0"
    return (b"\xff\xd8" + parts + TABLES + segment(0xC0, frame) + segment(0xDA, scan) + packed("".join(bits)) +
            b"\xff\xd9")


def exif(orientation, time="2026:03:14 15:09:26"):
    """An APP1 segment: the orientation in the first directory, the time of taking in the second."""
    first = struct.pack("<HHHLHH", 2, 0x0112, 3, 1, orientation, 0) + struct.pack("<HHLLL", 0x8769, 4, 1, 38, 0)
    second = struct.pack("<HHHLLL", 1, 0x9003, 2, 20, 56, 0)
    return segment(0xE1, b"Exif\0\0II*\0\x08\0\0\0" + first + second + time.encode() + b"\0")


def exif_with(thumbnail, orientation=1, time="2026:03:14 15:09:26"):
    """As exif, and in a third directory behind the time a thumbnail, which is a JPEG file of its own."""
    first = struct.pack("<HHHLHH", 2, 0x0112, 3, 1, orientation, 0) + struct.pack("<HHLLL", 0x8769, 4, 1, 38, 76)
    second = struct.pack("<HHHLLL", 1, 0x9003, 2, 20, 56, 0)
    third = struct.pack("<HHHLLHHLLL", 2, 0x0201, 4, 1, 106, 0x0202, 4, 1, len(thumbnail), 0)
    return segment(0xE1, b"Exif\0\0II*\0\x08\0\0\0" + first + second + time.encode() + b"\0" + third + thumbnail)


def stored(rows, orientation):
    """The rows as a camera that was held in this way stores what a person sees as `rows`."""
    backwards = [list(reversed(row)) for row in rows]
    turned = {
        1: rows,
        2: backwards,
        3: backwards[::-1],
        4: rows[::-1],
        5: transposed(rows),
        6: transposed(backwards),
        7: transposed(backwards[::-1]),
        8: transposed(rows[::-1]),
    }
    # 6 is held so that the stored top is the right side of what is seen.
    return turned[orientation]


def transposed(rows):
    return [list(column) for column in zip(*rows)]


def luma_and_chroma(colour):
    red, green, blue = colour
    luma = 0.299 * red + 0.587 * green + 0.114 * blue
    levels = (luma, (blue - luma) / 1.772 + 128, (red - luma) / 1.402 + 128)
    return [min(255, max(0, round(level))) for level in levels]


def square(difference):
    """The number of bits of the difference in four bits, its bits, and the code for nothing else."""
    size = abs(difference).bit_length()
    value = difference if difference >= 0 else difference + (1 << size) - 1
    return f"{size:04b}" + (f"{value:0{size}b}" if size else "") + "0"


def packed(bits):
    bits += "1" * (-len(bits) % 8)
    content = int(bits, 2).to_bytes(len(bits) // 8, "big")
    return content.replace(b"\xff", b"\xff\0")


def segment(marker, content):
    return bytes((0xFF, marker)) + struct.pack(">H", len(content) + 2) + content


# All steps of quantisation are 8, so that a coefficient is a level; nine codes of four bits, and one of one bit.
TABLES = (segment(0xDB, b"\0" + b"\x08" * 64) +
          segment(0xC4, b"\0\0\0\0\x09" + bytes(12) + bytes(range(9))) +
          segment(0xC4, b"\x10\x01" + bytes(15) + b"\0"))
