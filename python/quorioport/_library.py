"""The C library: how it is found, its prototypes, and its error codes as exceptions.

The package calls the library by ctypes and not by a compiled module, so that one package serves every version of Python
and needs no compiler. A call by ctypes takes far less time than an exchange with a printer.
"""

from __future__ import annotations

import ctypes
import os
from collections.abc import Callable

from quorioport.errors import (
    JournalError,
    LinkLostError,
    NotReadyError,
    OperationError,
    QuorError,
    SystemFailureError,
    UnreadableAnswerError,
    UsageError,
)
from quorioport.status import StatusRecord

BUFFER_TOO_SMALL = -6
NO_MEMORY = -7
ERRORS: dict[int, type[QuorError]] = {
    -1: OperationError,
    -2: LinkLostError,
    -3: UnreadableAnswerError,
    -5: UsageError,
    -8: SystemFailureError,
    -9: NotReadyError,
    -10: JournalError,
}


class LogRecord(ctypes.Structure):
    """One diagnostic record."""

    _fields_ = [
        ("time", ctypes.c_int64),
        ("thread", ctypes.c_int32),
        ("type", ctypes.c_int32),
        ("level", ctypes.c_int32),
        ("line", ctypes.c_int64),
        ("file", ctypes.c_char_p),
        ("method", ctypes.c_char_p),
        ("object", ctypes.c_char_p),
        ("message", ctypes.c_char_p),
    ]


PROGRESS = ctypes.CFUNCTYPE(None, ctypes.c_void_p, ctypes.c_uint64, ctypes.c_uint64)
LOG_FUNCTION = ctypes.CFUNCTYPE(None, ctypes.c_void_p, ctypes.POINTER(LogRecord))

HANDLE = ctypes.c_void_p
INT, UNSIGNED, LONG = ctypes.c_int32, ctypes.c_uint32, ctypes.c_uint64
SIZE, TEXT, BYTES = ctypes.c_size_t, ctypes.c_char_p, ctypes.c_char_p
LENGTH = ctypes.POINTER(SIZE)
TEXT_OUT = (TEXT, SIZE, LENGTH)
STATUS = ctypes.POINTER(StatusRecord)

# The functions that return a code, and their arguments.
CODES: dict[str, tuple[object, ...]] = {
    "connect_devices": (ctypes.POINTER(TEXT), SIZE),
    "port_create": (TEXT, TEXT, UNSIGNED, INT, ctypes.POINTER(HANDLE)),
    "port_open": (HANDLE,),
    "port_close": (HANDLE,),
    "port_write": (HANDLE, BYTES, SIZE, LENGTH),
    "port_read": (HANDLE, BYTES, SIZE, LENGTH),
    "port_write_with_retry": (HANDLE, BYTES, SIZE, LENGTH),
    "port_set_end_checked_block_timeout": (HANDLE, UNSIGNED),
    "port_set_hold_print_timeout": (HANDLE, UNSIGNED),
    "port_set_data_timeout_seconds": (HANDLE, ctypes.c_int64),
    "port_name": (HANDLE, *TEXT_OUT),
    "port_serial_number": (HANDLE, *TEXT_OUT),
    "printer_status": (HANDLE, STATUS, UNSIGNED),
    "printer_is_online": (HANDLE, ctypes.POINTER(INT)),
    "printer_firmware": (HANDLE, *TEXT_OUT),
    "printer_dip_switches": (HANDLE, ctypes.c_uint8 * 4),
    "printer_button_security_timeout": (HANDLE, ctypes.POINTER(UNSIGNED)),
    "printer_drop_all": (HANDLE,),
    "printer_disconnect": (HANDLE,),
    "print_job_create": (HANDLE, INT, PROGRESS, HANDLE, ctypes.POINTER(HANDLE)),
    "print_job_run": (HANDLE, BYTES, SIZE),
    "print_job_status": (HANDLE, STATUS),
    "print_job_waits_for": (HANDLE, *TEXT_OUT),
    "print_job_reason": (HANDLE, *TEXT_OUT),
    "print_job_advice": (HANDLE, *TEXT_OUT),
    "log_add_function": (LOG_FUNCTION, HANDLE, ctypes.POINTER(HANDLE)),
    "log_remove_sink": (HANDLE,),
    "log_set_target_levels": (ctypes.POINTER(INT), SIZE),
}

# The functions that do not return a code: the type of their result, and their arguments.
OTHERS: dict[str, tuple[object, tuple[object, ...]]] = {
    "last_error": (TEXT, ()),
    "version": (TEXT, ()),
    "port_free": (None, (HANDLE,)),
    "port_is_connected": (INT, (HANDLE,)),
    "port_connection_id": (LONG, (HANDLE,)),
    "print_job_free": (None, (HANDLE,)),
    "print_job_cancel": (None, (HANDLE,)),
    "print_job_outcome": (INT, (HANDLE,)),
    "print_job_obstacle": (INT, (HANDLE,)),
    "print_job_proof": (INT, (HANDLE,)),
    "print_job_bytes_total": (LONG, (HANDLE,)),
    "print_job_bytes_accepted": (LONG, (HANDLE,)),
    "log_set_logging": (None, (INT,)),
}


functions: dict[str, Callable[..., object]] = {}


def add(
    library: ctypes.CDLL, codes: dict[str, tuple[object, ...]], others: dict[str, tuple[object, tuple[object, ...]]]
) -> None:
    """Declares functions of the library. The functions in `codes` return a code; those in `others` do not."""
    results: dict[str, tuple[object, tuple[object, ...]]] = {name: (INT, types) for name, types in codes.items()}
    for name, (result, arguments) in (results | others).items():
        found = getattr(library, f"quor_{name}")
        found.argtypes, found.restype = arguments, result
        functions[name] = found


def load() -> None:
    """Loads the library that the variable QUORIOPORT_LIBRARY names; without the variable, the system's library."""
    name = os.environ.get("QUORIOPORT_LIBRARY", "libQuorIOPort.so.0")
    try:
        add(ctypes.CDLL(name), CODES, OTHERS)
    except OSError as error:
        raise SystemFailureError(
            f"{error}; install the package libquorioport0, or name the library in QUORIOPORT_LIBRARY"
        ) from error


load()


def function(name: str) -> Callable[..., object]:
    """The function `quor_NAME`."""
    return functions[name]


def integer(name: str, *arguments: object) -> int:
    """Calls a function that returns a number."""
    result = function(name)(*arguments)
    assert isinstance(result, int)
    return result


def check(code: int) -> int:
    """Raises the error of a negative code, with the library's text. Returns any other code."""
    if code >= 0:
        return code
    said = function("last_error")()
    text = said.decode("utf-8", "replace") if isinstance(said, bytes) else ""
    if code == NO_MEMORY:
        raise MemoryError(text)
    raise ERRORS.get(code, QuorError)(text)


def call(name: str, *arguments: object) -> int:
    """Calls a function that returns a code. Raises the error of a negative code."""
    return check(integer(name, *arguments))


def text_of(name: str, handle: ctypes.c_void_p) -> str:
    """The text that a function returns; "" if there is none."""
    length = SIZE()
    capacity = 256
    while True:
        buffer = ctypes.create_string_buffer(capacity)
        code = integer(name, handle, buffer, capacity, ctypes.byref(length))
        if code != BUFFER_TOO_SMALL:
            check(code)
            return buffer.value.decode("utf-8", "replace")
        capacity = length.value + 1
