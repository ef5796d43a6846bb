"""A client that asks a print scheduler by IPP. It gets the state of a job within a millisecond; to start a command for
each question would take longer."""

import http.client
import itertools
import socket
import struct
from pathlib import Path

OPERATION, JOB, END, PRINTER = 1, 2, 3, 4  # the groups of attributes
INTEGER, BOOLEAN, ENUM, TEXT, NAME, KEYWORD, URI, CHARSET, LANGUAGE, FORMAT = (
    0x21, 0x22, 0x23, 0x41, 0x42, 0x44, 0x45, 0x47, 0x48, 0x49)
FIRST_VALUE = 0x10  # smaller tags begin a group
NUMBERS = (INTEGER, ENUM)

PRINT_JOB, CREATE_JOB, SEND_DOCUMENT, CANCEL_JOB, GET_JOB, GET_JOBS, GET_PRINTER, HOLD_JOB, RELEASE_JOB, RESTART_JOB = (
    0x02, 0x05, 0x06, 0x08, 0x09, 0x0A, 0x0B, 0x0C, 0x0D, 0x0E)
PAUSE_PRINTER, RESUME_PRINTER, ADD_PRINTER, ADD_CLASS, MOVE_JOB = 0x10, 0x11, 0x4003, 0x4006, 0x400D

numbers = itertools.count(1)


class Refused(Exception):
    """The scheduler's answer is an error."""


class Connection(http.client.HTTPConnection):
    """HTTP over a local socket, by which the scheduler knows who asks."""

    def __init__(self, path: Path, seconds: float):
        super().__init__("localhost", timeout=seconds)
        self.path = path

    def connect(self):
        self.sock = socket.socket(socket.AF_UNIX)
        self.sock.settimeout(self.timeout)
        self.sock.connect(str(self.path))


def value_bytes(tag: int, value) -> bytes:
    if tag in NUMBERS:
        return struct.pack(">i", value)
    return bytes([value]) if tag == BOOLEAN else value.encode()


def attribute(tag: int, name: str, *values) -> bytes:
    encoded = b""
    for value in values:
        data = value_bytes(tag, value)
        encoded += struct.pack(">BH", tag, len(name)) + name.encode() + struct.pack(">H", len(data)) + data
        name = ""  # further values have no name
    return encoded


def request(operation: int, *operation_attributes: bytes, job: tuple = (), printer: tuple = ()) -> bytes:
    head = struct.pack(">BBHI", 2, 0, operation, next(numbers)) + bytes([OPERATION])
    head += attribute(CHARSET, "attributes-charset", "utf-8") + attribute(LANGUAGE, "attributes-natural-language", "en")
    groups = b"".join(bytes([tag]) + b"".join(group) for tag, group in ((JOB, job), (PRINTER, printer)) if group)
    return head + b"".join(operation_attributes) + groups + bytes([END])


def decoded(tag: int, data: bytes):
    if tag in NUMBERS:
        return struct.unpack(">i", data)[0]
    return bool(data[0]) if tag == BOOLEAN else data.decode(errors="replace")


def groups_of(answer: bytes) -> list[tuple[int, dict[str, list]]]:
    groups, place, name = [], 8, ""
    while answer[place] != END:
        if answer[place] < FIRST_VALUE:
            groups.append((answer[place], {}))
            place += 1
            continue
        tag, length = struct.unpack_from(">BH", answer, place)
        name = answer[place + 3:place + 3 + length].decode() or name
        place += 3 + length
        length, = struct.unpack_from(">H", answer, place)
        groups[-1][1].setdefault(name, []).append(decoded(tag, answer[place + 2:place + 2 + length]))
        place += 2 + length
    return groups


def groups_in(http_status: int, answer: bytes) -> list[dict[str, list]]:
    """The answer's groups of jobs and printers."""
    if http_status != 200:
        raise Refused(f"HTTP {http_status}")
    status, = struct.unpack_from(">H", answer, 2)
    groups = groups_of(answer)
    if status >= 0x100:
        raise Refused(f"IPP {status:#06x}: {groups[0][1].get('status-message')}")
    return [attributes for tag, attributes in groups if tag in (JOB, PRINTER)]


def ask(path: Path, message: bytes, data: bytes = b"", resource: str = "/", seconds: float = 30) -> list[dict[str, list]]:
    connection = Connection(path, seconds)
    try:
        connection.request("POST", resource, message + data, {"Content-Type": "application/ipp"})
        response = connection.getresponse()
        return groups_in(response.status, response.read())
    finally:
        connection.close()
