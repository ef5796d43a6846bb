"""The C library of the journal. The first Journal loads it, so programs without a journal need not install it."""

from __future__ import annotations

import ctypes
import functools
import os

from quorioport import _library as c
from quorioport.errors import SystemFailureError


class JobRow(ctypes.Structure):
    """One job of a journal."""

    _fields_ = [
        ("name", ctypes.c_char_p),
        ("device", ctypes.c_char_p),
        ("bytes", ctypes.c_uint64),
        ("attempts", ctypes.c_int64),
        ("begun", ctypes.c_int64),
        ("ended", ctypes.c_int64),
        ("state", ctypes.c_int32),
        ("reason", ctypes.c_char_p),
    ]


ROW_FUNCTION = ctypes.CFUNCTYPE(None, ctypes.c_void_p, ctypes.POINTER(JobRow))
WAITING = ctypes.CFUNCTYPE(None, ctypes.c_void_p)


class Request(ctypes.Structure):
    """The name of a job, and how it is to be printed."""

    _fields_ = [
        ("name", ctypes.c_char_p),
        ("device", ctypes.c_char_p),
        ("again", ctypes.c_int32),
        ("timeout", ctypes.c_uint32),
        ("waiting", WAITING),
        ("context", ctypes.c_void_p),
    ]


CODES: dict[str, tuple[object, ...]] = {
    "journal_open": (c.TEXT, ctypes.POINTER(c.HANDLE)),
    "journal_file": (c.HANDLE, *c.TEXT_OUT),
    "journal_jobs": (c.HANDLE, ROW_FUNCTION, c.HANDLE),
    "journal_forget": (c.HANDLE, c.TEXT),
    "journal_forget_older_than": (c.HANDLE, c.UNSIGNED, ctypes.POINTER(c.LONG)),
    "named_job_create": (c.HANDLE, ctypes.POINTER(Request), c.BYTES, c.SIZE, ctypes.POINTER(c.HANDLE)),
    "named_job_run": (c.HANDLE, c.HANDLE),
    "named_job_refuse": (c.HANDLE, c.TEXT),
    "named_job_not_recorded": (c.HANDLE, *c.TEXT_OUT),
    "turn_take": (c.TEXT, c.UNSIGNED, WAITING, c.HANDLE, ctypes.POINTER(c.HANDLE)),
}
OTHERS: dict[str, tuple[object, tuple[object, ...]]] = {
    "journal_free": (None, (c.HANDLE,)),
    "named_job_free": (None, (c.HANDLE,)),
    "named_job_is_answered": (c.INT, (c.HANDLE,)),
    "named_job_attempt": (ctypes.c_int64, (c.HANDLE,)),
    "named_job_is_repeated": (c.INT, (c.HANDLE,)),
    "turn_free": (None, (c.HANDLE,)),
}


@functools.cache
def load() -> None:
    """Loads the journal's library, from the same folder as the port's library, and declares its functions."""
    name = os.environ.get("QUORIOPORT_LIBRARY", "libQuorIOPort.so.0").replace("QuorIOPort", "QuorJournal")
    try:
        c.add(ctypes.CDLL(name), CODES, OTHERS)
    except OSError as error:
        raise SystemFailureError(f"{error}; install the package libquorjournal0") from error
