"""Compares pictures of paper by the distribution of their ink, not dot by dot."""

import re
import struct
import zlib
from pathlib import Path

DARK = 128  # a smaller brightness is ink

Picture = list[bytes]  # rows, in which 1 is ink


def of_receipt(file: Path) -> Picture:
    """A receipt that the virtual printer drew. In the file, a dot is one byte: a colour's number in the palette."""
    data, place, chunks = file.read_bytes(), 8, {}
    while place < len(data):
        length, name = struct.unpack_from(">I4s", data, place)
        chunks[name] = chunks.get(name, b"") + data[place + 8:place + 8 + length]
        place += length + 12
    width, height, depth, kind = struct.unpack_from(">IIBB", chunks[b"IHDR"])
    assert (depth, kind) == (8, 3), "another form of picture"
    rows, colours = zlib.decompress(chunks[b"IDAT"]), chunks[b"PLTE"].ljust(768, b"\xff")
    ink = bytes(sum(colours[3 * index:3 * index + 3]) < 3 * DARK for index in range(256))
    return [rows[row * (width + 1) + 1:(row + 1) * (width + 1)].translate(ink) for row in range(height)]


def of_grey_map(data: bytes) -> Picture:
    """A portable grey map in its raw (binary) form."""
    head = re.match(rb"P5\s+(?:#.*\s+)?(\d+)\s+(\d+)\s+255\s", data)
    width, height = int(head[1]), int(head[2])
    ink = bytes(grey < DARK for grey in range(256))
    return [data[head.end() + row * width:head.end() + (row + 1) * width].translate(ink) for row in range(height)]


def inked(picture: Picture) -> Picture:
    """The part of the picture that contains all its ink."""
    rows = [row for row, dots in enumerate(picture) if 1 in dots]
    left = min(picture[row].find(1) for row in rows)
    right = max(picture[row].rfind(1) for row in rows)
    return [dots[left:right + 1] for dots in picture[rows[0]:rows[-1] + 1]]


def shares(picture: Picture, across: int, down: int) -> list[float]:
    """For each cell of a grid over the picture, the share of ink."""
    height, width = len(picture), len(picture[0])
    found = []
    for y in range(down):
        rows = picture[y * height // down:(y + 1) * height // down]
        for x in range(across):
            cells = [row[x * width // across:(x + 1) * width // across] for row in rows]
            found.append(sum(map(sum, cells)) / max(1, sum(map(len, cells))))
    return found
