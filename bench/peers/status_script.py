"""Queries an ESC/POS status as a short script would. Usage: status_script.py PORT CYCLES

Prints the median time of one query in seconds.
"""

import socket
import statistics
import sys
import time

port, cycles = (int(argument) for argument in sys.argv[1:])
printer = socket.create_connection(("127.0.0.1", port))
printer.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)


def status() -> bytes:
    printer.sendall(b"\x1b\x1d\x03\x04\x00\x00")
    replies = b""
    for query in (b"\x10\x04\x01", b"\x10\x04\x02", b"\x10\x04\x04"):
        printer.sendall(query)
        replies += printer.recv(1)
    return replies


def seconds_of_one() -> float:
    start = time.perf_counter()
    if status() != b"\x12\x12\x12":
        sys.exit("the printer has answered nonsense")
    return time.perf_counter() - start


print(statistics.median(seconds_of_one() for _ in range(cycles)))
