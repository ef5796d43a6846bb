"""A printer's status: the struct of the C library, and the class for Python programs."""

from __future__ import annotations

import ctypes
from dataclasses import dataclass

FLAGS = (
    "coverOpen",
    "offline",
    "compulsionSwitch",
    "overTemp",
    "unrecoverableError",
    "cutterError",
    "mechError",
    "headThermistorError",
    "receiveBufferOverflow",
    "pageModeCmdError",
    "paperDetectionError",
    "blackMarkError",
    "jamError",
    "presenterPaperJamError",
    "headUpError",
    "voltageError",
    "receiptBlackMarkDetection",
    "receiptPaperEmpty",
    "receiptPaperNearEmptyInner",
    "receiptPaperNearEmptyOuter",
    "paperPresent",
    "presenterPaperPresent",
    "peelerPaperPresent",
    "stackerFull",
    "slipTOF",
    "slipCOF",
    "slipBOF",
    "validationPaperPresent",
    "slipPaperPresent",
    "etbAvailable",
)
LONGEST_REPLY = 63


class StatusRecord(ctypes.Structure):
    """A printer's status as the C library stores it: the struct `QuorPrinterStatus_2`."""

    _fields_ = [
        *((flag, ctypes.c_uint32) for flag in FLAGS),
        ("etbCounter", ctypes.c_uint8),
        ("presenterState", ctypes.c_uint8),
        ("connectedInterface", ctypes.c_uint8),
        ("rawLength", ctypes.c_uint32),
        ("raw", ctypes.c_uint8 * LONGEST_REPLY),
    ]


@dataclass(frozen=True)
class Status:
    """The state of a printer at one moment. In ESC/POS most flags are unknown and therefore False."""

    #: True if the printer is ready to print.
    online: bool
    cover_open: bool
    paper_empty: bool
    paper_near_empty: bool
    #: True if paper was left in the exit.
    paper_present: bool
    #: The level of the signal at the drawer connector.
    drawer_switch: bool
    #: The names of all conditions that are true, as in the C interface.
    conditions: frozenset[str]
    #: The printer's reply, byte for byte.
    raw: bytes


def status_of(record: StatusRecord) -> Status:
    """Converts the struct of the C library."""
    conditions = frozenset(flag for flag in FLAGS if getattr(record, flag))
    return Status(
        online="offline" not in conditions,
        cover_open="coverOpen" in conditions,
        paper_empty="receiptPaperEmpty" in conditions,
        paper_near_empty=not conditions.isdisjoint({"receiptPaperNearEmptyInner", "receiptPaperNearEmptyOuter"}),
        paper_present="paperPresent" in conditions,
        drawer_switch="compulsionSwitch" in conditions,
        conditions=conditions,
        raw=bytes(record.raw[: record.rawLength]),
    )
