"""Encodes FIGURE, a picture of the letter F, in every format that a client sends, and finds the letter on the paper.

The code follows the rules of the formats, and shares nothing with the product.
"""

import struct
import zlib

FIGURE = ("#######",
          "#      ",
          "#####  ",
          "#      ",
          "#      ",
          "#      ")
CELL = 16  # dots
WIDTH, HEIGHT = len(FIGURE[0]) * CELL, len(FIGURE) * CELL


def is_black(x: int, y: int) -> bool:
    return 0 <= x < WIDTH and 0 <= y < HEIGHT and FIGURE[y // CELL][x // CELL] == "#"


def page(width: int, height: int, left: int, top: int) -> list[bytes]:
    """The rows of a grey picture: FIGURE in black on white."""
    return [bytes(0 if is_black(x - left, y - top) else 255 for x in range(width)) for y in range(height)]


# -- Pictures -----------------------------------------------------------------------------------------------------------


def chunk(name: bytes, data: bytes) -> bytes:
    return struct.pack(">I", len(data)) + name + data + struct.pack(">I", zlib.crc32(name + data))


def png(rows: list[bytes], size: tuple[int, int] | None = None) -> bytes:
    """A grey picture. `size` is the size in the file's header if it differs from the real size."""
    width, height = size or (len(rows[0]), len(rows))
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, 8, 0, 0, 0, 0))
            + chunk(b"IDAT", zlib.compress(b"".join(b"\0" + row for row in rows))) + chunk(b"IEND", b""))


class Bits:
    def __init__(self):
        self.value, self.count = 0, 0

    def add(self, value: int, count: int):
        self.value, self.count = self.value << count | value, self.count + count

    def bytes(self) -> bytes:
        padding = -self.count % 8
        data = (self.value << padding | (1 << padding) - 1).to_bytes((self.count + padding) // 8, "big")
        return data.replace(b"\xff", b"\xff\0")


def jpeg(rows: list[bytes]) -> bytes:
    """A grey picture. The file stores one grey for each square of 8 by 8 pixels, whose pixels must all be equal."""

    def segment(marker: int, data: bytes) -> bytes:
        return struct.pack(">BBH", 0xFF, marker, len(data) + 2) + data

    bits, before = Bits(), 0
    for y in range(0, len(rows), 8):
        for x in range(0, len(rows[0]), 8):
            mean = 8 * (rows[y][x] - 128)
            step, before = mean - before, mean
            size = abs(step).bit_length()
            bits.add(size, 4)  # the code of a size is the size itself
            bits.add(step if step > 0 else step + (1 << size) - 1, size)
            bits.add(0, 1)  # no coefficients except the mean
    means = bytes([0, 0, 0, 12] + [0] * 12) + bytes(range(12))
    rest = bytes([1] + [0] * 15) + b"\0"
    return (b"\xff\xd8" + segment(0xDB, b"\0" + b"\1" * 64)
            + segment(0xC0, struct.pack(">BHHB", 8, len(rows), len(rows[0]), 1) + b"\1\x11\0")
            + segment(0xC4, b"\0" + means) + segment(0xC4, b"\x10" + rest)
            + segment(0xDA, b"\1\1\0\0\x3f\0") + bits.bytes() + b"\xff\xd9")


# -- Raster -------------------------------------------------------------------------------------------------------------


def packed(row: bytes) -> bytes:
    """The row in the coded form: each run of equal bytes as a count and a byte."""
    data, at = b"", 0
    while at < len(row):
        end = at + 1
        while end < len(row) and end - at < 128 and row[end] == row[at]:
            end += 1
        data += bytes([end - at - 1, row[at]])
        at = end
    return data


def lines(rows: list[bytes]) -> bytes:
    """The rows in the coded form: each run of equal rows as a count and a row."""
    data, at = b"", 0
    while at < len(rows):
        end = at + 1
        while end < len(rows) and end - at < 256 and rows[end] == rows[at]:
            end += 1
        data += bytes([end - at - 1]) + packed(rows[at])
        at = end
    return data


GREY, RED_GREEN_BLUE = 18, 19  # colour spaces


def pwg_page(rows: list[bytes], height: int, bits: int) -> bytes:
    width = len(rows[0]) * 8 // bits
    header = bytearray(1796)
    header[:10] = b"PwgRaster\0"
    colours = GREY if bits == 8 else RED_GREEN_BLUE
    for place, value in ((276, 203), (280, 203), (352, width * 72 // 203), (356, height * 72 // 203), (372, width), (376, height),
                         (384, 8), (388, bits), (392, len(rows[0])), (400, colours), (420, bits // 8)):
        struct.pack_into(">I", header, place, value)
    return bytes(header) + lines(rows)


def pwg(*pages: list[bytes], height: int = 0, bits: int = 8) -> bytes:
    """Pages with `bits` bits a pixel; 8 means grey. `height` is the height in each page's header; 0 means the real
    height."""
    return b"RaS2" + b"".join(pwg_page(rows, height or len(rows), bits) for rows in pages)


def apple(*pages: list[bytes]) -> bytes:
    """Pages in grey, with 8 bits a pixel."""
    return b"UNIRAST\0" + struct.pack(">I", len(pages)) + b"".join(
        struct.pack(">BBBBII", 8, 0, 1, 4, 0, 0) + struct.pack(">III8x", len(rows[0]), len(rows), 203) + lines(rows)
        for rows in pages)


# -- Paper --------------------------------------------------------------------------------------------------------------


def greys(picture: bytes) -> list[bytes]:
    """The rows of a PNG file. Only the first colour of each pixel is read."""
    place, data, colours = 8, b"", b""
    while place < len(picture):
        length, = struct.unpack_from(">I", picture, place)
        name, content = picture[place + 4:place + 8], picture[place + 8:place + 8 + length]
        if name == b"IHDR":
            width, _, depth, kind = struct.unpack_from(">IIBB", content)
        colours = content[::3] if name == b"PLTE" else colours
        data += content if name == b"IDAT" else b""
        place += 12 + length
    samples = {0: 1, 2: 3, 3: 1, 6: 4}[kind]
    data, size, pixel = zlib.decompress(data), (width * samples * depth + 7) // 8, max(1, samples * depth // 8)
    rows, above = [], bytearray(size)
    for start in range(0, len(data), size + 1):
        above = unfiltered(data[start], bytearray(data[start + 1:start + 1 + size]), above, pixel)
        rows.append(bytes(samples_of(above, depth)[:width * samples:samples]).translate(table_of(colours, depth)))
    return rows


def samples_of(row: bytearray, depth: int) -> bytes:
    return bytes(byte >> shift & (1 << depth) - 1 for byte in row for shift in range(8 - depth, -1, -depth))


def table_of(colours: bytes, depth: int) -> bytes:
    """The colour of each sample; a grey if the file has no palette."""
    return (colours or bytes(value * 255 // ((1 << depth) - 1) for value in range(1 << depth))).ljust(256, b"\0")


def unfiltered(kind: int, row: bytearray, above: bytearray, pixel: int) -> bytearray:
    for x in range(len(row)):
        left = row[x - pixel] if x >= pixel else 0
        corner = above[x - pixel] if x >= pixel else 0
        nearest = min((left, above[x], corner), key=lambda value: abs(left + above[x] - corner - value))
        row[x] = (row[x] + (0, left, above[x], (left + above[x]) // 2, nearest)[kind]) % 256
    return row


def figures(picture: bytes) -> list[tuple[int, list[str]]]:
    """For each copy of FIGURE on the paper, from the top: its left edge in dots, and its cells."""
    rows = [[grey < 128 for grey in row] for row in greys(picture)]
    found, at = [], 0
    while at < len(rows):
        if not any(rows[at]):
            at += 1
            continue
        left = min(row.index(True) for row in rows[at:at + HEIGHT] if any(row))
        cells = ["".join("#" if rows[at + y * CELL + CELL // 2][left + x * CELL + CELL // 2] else " "
                         for x in range(len(FIGURE[0]))) for y in range(len(FIGURE)) if at + HEIGHT <= len(rows)]
        found.append((left, cells))
        at += HEIGHT
    return found
