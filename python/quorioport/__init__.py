"""Prints on receipt printers, and knows whether the receipt was printed.

    from quorioport import Port

    with Port("tcp:192.0.2.10:9100") as port:
        print(port.print(b"THE CORNER BAKERY\\n\\n\\n").outcome)

Times are in seconds. Each port has a thread of its own, which runs its operations. So a port may be used from any
thread, and Ctrl-C ends a wait. `AsyncPort` has the same operations for asyncio.
"""

from quorioport.aio import AsyncPort, AsyncPrintJob
from quorioport.errors import (
    JournalError,
    LinkLostError,
    NotPrintedError,
    NotReadyError,
    OperationError,
    QuorError,
    SystemFailureError,
    UnreadableAnswerError,
    UsageError,
)
from quorioport.job import Obstacle, Outcome, PrintJob, PrintResult, Progress, Proof
from quorioport.journal import JobRecord, JobState, Journal, NamedResult
from quorioport.logs import forward_log
from quorioport.port import Emulation, Port
from quorioport.status import Status
from quorioport.virtual import Receipt, VirtualPrinter

__version__ = "0.1.0"

__all__ = [
    "AsyncPort",
    "AsyncPrintJob",
    "Emulation",
    "JobRecord",
    "JobState",
    "Journal",
    "JournalError",
    "LinkLostError",
    "NamedResult",
    "NotPrintedError",
    "NotReadyError",
    "Obstacle",
    "OperationError",
    "Outcome",
    "Port",
    "PrintJob",
    "PrintResult",
    "Progress",
    "Proof",
    "QuorError",
    "Receipt",
    "Status",
    "SystemFailureError",
    "UnreadableAnswerError",
    "UsageError",
    "VirtualPrinter",
    "forward_log",
]
