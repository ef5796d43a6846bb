"""Reads the pictures that browsers and the virtual printer make: PNG of eight bits, not interlaced."""

import struct
import zlib

SIGNATURE = b"\x89PNG\r\n\x1a\n"
CHANNELS = {0: 1, 2: 3, 4: 2, 6: 4}  # the number of channels of each colour type


class Picture:
    """`rows` has the bytes of each row. A pixel is `channels` bytes, which begin with grey, or with red, green and blue."""

    def __init__(self, data: bytes):
        assert data.startswith(SIGNATURE), "no PNG"
        header, packed, at = b"", b"", len(SIGNATURE)
        while at < len(data):
            size, kind = struct.unpack_from(">I4s", data, at)
            content = data[at + 8:at + 8 + size]
            header = content if kind == b"IHDR" else header
            packed += content if kind == b"IDAT" else b""
            at += size + 12
        self.width, self.height, depth, colour, _, _, interlace = struct.unpack(">IIBBBBB", header)
        assert depth == 8 and colour in CHANNELS and interlace == 0, (depth, colour, interlace)
        self.channels = CHANNELS[colour]
        self.rows = self.unfiltered(zlib.decompress(packed))

    def unfiltered(self, data: bytes) -> list[bytes]:
        step, stride = self.channels, self.width * self.channels
        above, rows = bytes(stride), []
        for at in range(0, len(data), stride + 1):
            above = FILTERS[data[at]](bytearray(data[at + 1:at + 1 + stride]), above, step)
            rows.append(above)
        return rows

    def brightness(self, x: int, y: int) -> int:
        """The brightness of a pixel, 0 to 255."""
        pixel = self.rows[y][x * self.channels:(x + 1) * self.channels]
        return sum(pixel[:3]) // 3 if self.channels > 2 else pixel[0]


def sub(row: bytearray, above: bytes, step: int) -> bytes:
    for i in range(step, len(row)):
        row[i] = (row[i] + row[i - step]) & 255
    return bytes(row)


def up(row: bytearray, above: bytes, step: int) -> bytes:
    return bytes((one + other) & 255 for one, other in zip(row, above))


def average(row: bytearray, above: bytes, step: int) -> bytes:
    for i, higher in enumerate(above):
        row[i] = (row[i] + ((row[i - step] if i >= step else 0) + higher) // 2) & 255
    return bytes(row)


def paeth(row: bytearray, above: bytes, step: int) -> bytes:
    for i, b in enumerate(above):
        a, c = (row[i - step], above[i - step]) if i >= step else (0, 0)
        p = a + b - c
        distances = abs(p - a), abs(p - b), abs(p - c)
        row[i] = (row[i] + (a, b, c)[distances.index(min(distances))]) & 255
    return bytes(row)


FILTERS = (lambda row, above, step: bytes(row), sub, up, average, paeth)
