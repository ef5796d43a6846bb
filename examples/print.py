#!/usr/bin/env python3
"""Prints a text and reads the printer's state. Usage: print.py DEVICE TEXT

The exit status is 0 if the text was printed, 6 if nothing proves that it was printed, and 1 otherwise.
"""
import ctypes
import sys

quor = ctypes.CDLL("libQuorIOPort.so.0")
quor.quor_last_error.restype = ctypes.c_char_p


def check(code: int) -> None:
    if code < 0:
        sys.exit(quor.quor_last_error().decode())


if len(sys.argv) != 3:
    print("usage: print.py DEVICE TEXT", file=sys.stderr)
    sys.exit(2)
device, text = (argument.encode() for argument in sys.argv[1:])
port, job, online = ctypes.c_void_p(), ctypes.c_void_p(), ctypes.c_int32()
check(quor.quor_connect_devices((ctypes.c_char_p * 1)(device), ctypes.c_size_t(1)))
check(quor.quor_port_create(b"BT:", None, 10000, 1, ctypes.byref(port)))
check(quor.quor_port_open(port))

check(quor.quor_printer_is_online(port, ctypes.byref(online)))
print("on line" if online else "off line")

check(quor.quor_print_job_create(port, 1, None, None, ctypes.byref(job)))
check(quor.quor_print_job_run(job, text, ctypes.c_size_t(len(text))))
reason = ctypes.create_string_buffer(256)
check(quor.quor_print_job_reason(job, reason, ctypes.c_size_t(256), None))
outcome = quor.quor_print_job_outcome(job)
print(("printed", "unconfirmed", "refused")[outcome], reason.value.decode())
check(quor.quor_port_close(port))
sys.exit((0, 6, 1)[outcome])
