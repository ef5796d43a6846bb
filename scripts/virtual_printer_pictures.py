"""Makes the pictures in docs/printed.md with the virtual printer. Usage: virtual_printer_pictures.py QUORPORT"""

import json
import shutil
import socket
import subprocess
import sys
import tempfile
from pathlib import Path

DOCS = Path(__file__).parents[1] / "docs"

PAGES = {0: "437", 1: "katakana", 2: "850", 3: "860", 4: "863", 5: "865", 11: "851", 12: "853", 13: "857", 14: "737",
         15: "iso8859-7", 16: "1252", 17: "866", 18: "852", 19: "858", 21: "874", 32: "720", 33: "775", 34: "855",
         35: "861", 36: "862", 37: "864", 38: "869", 39: "iso8859-2", 40: "iso8859-15", 44: "1125", 45: "1250",
         46: "1251", 47: "1253", 48: "1254", 49: "1255", 50: "1256", 51: "1257", 52: "1258", 53: "kz1048"}


def code_pages() -> bytes:
    job = b""
    for number, name in PAGES.items():
        job += b"\x1bt%c\x1bE\1Page %d: %s\x1bE\0\n" % (number, number, name.encode())
        job += b"".join(bytes(range(first, first + 32)) + b"\n" for first in range(0x80, 0x100, 32)) + b"\x1bJ\x0c"
    return job


def symbol(kind: bytes, data: bytes) -> bytes:
    length = len(data) + 3
    return b"\x1d(k%c%c%sP0%s\x1d(k\3\0%sQ0" % (length % 256, length // 256, kind, data, kind)


def composite(part: bytes, data: bytes) -> bytes:
    return b"\x1d(k%c\0\x34P0%s%s" % (len(data) + 5, part, data)


def commands() -> bytes:
    square = b"\x1dv0\0\2\0\x10\0" + b"\xff\xff" + b"\x80\x01" * 14 + b"\xff\xff"
    return b"".join((
        b"\x1b!\x30Large\x1b!\0 \x1bE\1bold\x1bE\0 \x1b-\2underlined\x1b-\0 \x1dB\1inverse\x1dB\0\n",
        b"\x1bM\1small font\x1bM\0 \x1b \6spaced\x1b \0 \x1br\1grey\x1br\0 \x1bV\1turned\x1bV\0\n",
        b"\x1b{\1upside down\n\x1b{\0\x1ba\1centred\n\x1ba\2to the right\n\x1ba\0",
        b"\x1dL\x60\0a left margin\n\x1dL\0\0\x1bD\x0c\x18\0tabs\t12\t24\n\x1bD\0",
        b"\x1bR\2[\\]{|}~ \x1bR\3# \x1bR\7# \x1bR\0in three countries\n",
        b"\x1b&\3AA\x10" + b"\xff\xff\xff\xc0\0\3" * 8 + b"\x1b%\1A\x1b%\0 a character of the job's own\n",
        square, b"\x1bK\x10\x1dL\x20\0" + square + b"\x1dL\0\0",
        b"\x1bL\x1bW\0\0\0\0\x40\2\xc8\0page mode, as usual\n\x1bT\1upwards\n\x1bT\2upside down\n\x1bT\3downwards\n\x0c",
        b"\x1dH\2\x1dh\x40EAN-13\n\x1dkC\x0c400638133393Code 128\n\x1dkI\x0c{BBread 4.20GS1-128\n\x1dkJ\x12(01)04006381333931",
        b"GS1 DataBar\n\x1dkK\x0d0400638133393\x1dH\0",
        b"PDF417\n", symbol(b"0", b"Bread 4.20, milk 1.10"), b"QR code\n\x1d(k\3\0\x31C\4", symbol(b"1", b"https://example.org"),
        b"MaxiCode\n", symbol(b"2", b"Bread 4.20"), b"Aztec\n", symbol(b"5", b"Bread 4.20"),
        b"DataMatrix\n", symbol(b"6", b"Bread 4.20"), composite(b"\x30B", b"400638133393"),
        b"GS1 Composite\n", composite(b"\x31A", b"(10)BREAD"), b"\x1d(k\3\0\x34Q0", b"\x1dVA\0"))


def picture(quorport: str, job: bytes, name: str):
    with tempfile.TemporaryDirectory() as folder:
        with subprocess.Popen([quorport, "--json", "simulate", "--set", "profile=escpos-80", "--listen", "tcp:",
                               "--receipts", folder], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE) as printer:
            _, host, port = json.loads(printer.stdout.readline())["listening"][0].split(":")
            with socket.create_connection((host, int(port))) as connection:
                connection.sendall(job)
            record = json.loads(printer.stdout.readline())
            assert not record["unknown"], record
            shutil.copy(next(file for file in record["files"] if file.endswith(".png")), DOCS / name)
            printer.terminate()


picture(sys.argv[1], code_pages(), "code-pages.png")
picture(sys.argv[1], commands(), "commands.png")
