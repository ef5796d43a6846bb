#!/usr/bin/env python3
"""Writes an ESC/POS receipt to standard output: a logo, bold and large type, alignment, a paper cut.

    scripts/escpos_receipt.py | quorport --device virtual: --emulation escpos print -
"""

import sys

ESC, GS = b"\x1b", b"\x1d"

RESET = ESC + b"@"
LEFT, CENTRED, RIGHT = (ESC + b"a" + bytes([n]) for n in range(3))
BOLD, REGULAR = ESC + b"E\x01", ESC + b"E\x00"
LARGE, NORMAL = GS + b"!\x11", GS + b"!\x00"
FEED_AND_CUT = GS + b"VB\x30"

COLUMNS = 48

LOGO = """
................................
..........##....##....##........
.........##....##....##.........
.........##....##....##.........
..........##....##....##........
...........##....##....##.......
..........##....##....##........
................................
....######################......
....##########################..
....######################..##..
....######################..##..
....######################..##..
....##########################..
.....####################.......
......##################........
.......################.........
.........############...........
................................
..############################..
....########################....
................................
"""


def raster(picture: str, scale: int) -> bytes:
    """Converts the picture to a raster command. Each character of the picture is one dot, which is enlarged to `scale`
    by `scale` dots. The enlarged width must be a multiple of 8.
    """
    rows = picture.split()
    width, height = len(rows[0]) * scale // 8, len(rows) * scale
    data = b""
    for row in rows:
        bits = "".join(("1" if dot == "#" else "0") * scale for dot in row)
        data += int(bits, 2).to_bytes(width, "big") * scale
    return GS + b"v0\x00" + width.to_bytes(2, "little") + height.to_bytes(2, "little") + data


def line(text: str = "", amount: str = "") -> bytes:
    """Returns a line with the amount at the right edge."""
    return (text + amount.rjust(COLUMNS - len(text))).rstrip().encode("ascii") + b"\n"


def receipt() -> bytes:
    return b"".join([
        RESET, CENTRED, raster(LOGO, 6), line(),
        LARGE, BOLD, b"THE CORNER BAKERY\n", NORMAL, REGULAR,
        b"12 Mill Lane, Harbour\n", line(),
        LEFT,
        line("2 Sourdough loaf         4.20", "8.40"),
        line("1 Cinnamon bun           2.10", "2.10"),
        line("3 Espresso               1.80", "5.40"),
        line("-" * COLUMNS),
        BOLD, line("TOTAL", "15.90"), REGULAR,
        line("Cash", "20.00"),
        line("Change", "4.10"), line(),
        RIGHT, b"Receipt 004217  20.11.2026 10:42\n", line(),
        CENTRED, b"Thank you, and good day!\n",
        FEED_AND_CUT,
    ])


if __name__ == "__main__":
    sys.stdout.buffer.write(receipt())
