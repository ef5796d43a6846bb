"""One print job: its result, and its progress."""

from __future__ import annotations

import ctypes
import queue
import threading
from collections.abc import Callable, Iterator
from concurrent.futures import Future
from dataclasses import dataclass
from enum import Enum
from typing import TYPE_CHECKING

from quorioport import _library as c
from quorioport._handle import Handle
from quorioport.errors import NotPrintedError, UsageError
from quorioport.status import Status, StatusRecord, status_of

if TYPE_CHECKING:
    from quorioport.port import Port


class Outcome(Enum):
    """The outcome of a job."""

    #: The printer confirmed that it has printed all of the job.
    PRINTED = "printed"
    #: Bytes were sent, and nothing proves that they were printed. Sending them again may print twice.
    UNCONFIRMED = "unconfirmed"
    #: Nothing of the job was sent. Sending it again is safe.
    REFUSED = "refused"


class Proof(Enum):
    """How a printer confirms a job."""

    #: The printer is not asked for a confirmation, so the best outcome of a job is UNCONFIRMED.
    NONE = "none"
    #: The key `proof=` of the device decides. If this key is missing, the printer is asked before the job how it
    #: can confirm a job.
    AUTO = "auto"
    #: Two marks enclose the data. The printer counts these marks.
    BLOCK = "block"
    #: The job ends with a command that contains four random characters. The printer answers with these characters.
    #: Only in ESC/POS.
    PROCESS_ID = "process-id"
    #: A query follows the data. The printer answers the query after it has printed the data. Only in ESC/POS.
    IN_ORDER = "in-order"


class Obstacle(Enum):
    """Why a job was not printed."""

    NONE = "none"
    PRINTER_NOT_READY = "printer not ready"
    LINK_LOST = "link lost"
    CANCELLED = "cancelled"
    EXCHANGE_FAILED = "exchange failed"
    NO_PROOF = "no proof"


# In the order of their numbers in the C interface.
OUTCOMES = (Outcome.PRINTED, Outcome.UNCONFIRMED, Outcome.REFUSED)
OBSTACLES = tuple(Obstacle)
PROOFS = tuple(Proof)


@dataclass(frozen=True)
class Progress:
    """The progress of a job. It is reported at the beginning, after each piece, at the end, and when the printer pauses
    or continues.
    """

    #: How many bytes the link has accepted.
    bytes_accepted: int
    bytes_total: int
    #: Why the printer has paused, for example "cover open"; "" if it has not paused.
    waits_for: str


@dataclass(frozen=True)
class PrintResult:
    """The result of a job that has ended."""

    outcome: Outcome
    obstacle: Obstacle
    #: The proof that was used. NONE if there was no proof, AUTO if the printer was not asked yet.
    proof: Proof
    #: Why the job was not printed, for people; "" if it was printed.
    reason: str
    #: What to do next, for people; "" if the job was printed.
    advice: str
    #: The exact count of the job's bytes that the link accepted.
    bytes_accepted: int
    bytes_total: int
    #: The last status; None if there was none.
    status: Status | None

    @property
    def printed(self) -> bool:
        """True if the printer confirmed the job."""
        return self.outcome is Outcome.PRINTED

    def raise_unless_printed(self) -> None:
        """Raises NotPrintedError unless the job was printed."""
        if not self.printed:
            raise NotPrintedError(self)


def bytes_of(data: bytes | bytearray | memoryview) -> bytes:
    """The data as bytes. Raises TypeError for a str."""
    if isinstance(data, str):
        raise TypeError("a printer takes bytes: encode the text in the printer's code page")
    return bytes(data)


class RunningJob:
    """A job of the library. It runs once, on the port's thread; any thread may cancel it."""

    def __init__(self, progress: Callable[[Progress], object] | None, proof: Proof) -> None:
        """`progress` is called on the thread that runs the job."""
        self._proof = PROOFS.index(Proof(proof))
        self._progress = progress
        self._failure: BaseException | None = None
        self._lock = threading.Lock()
        self._job = c.HANDLE()
        self._is_cancelled = False

    def cancel(self) -> None:
        """Cancels the job, even before it runs."""
        with self._lock:
            self._is_cancelled = True
            if self._job:
                c.function("print_job_cancel")(self._job)

    def run(self, handle: Handle, data: bytes) -> PrintResult:
        """Prints the data over an open port.

        If the progress function raises an error, the job is cancelled. After the end of the job, this error is raised.
        """
        handle.require_open()
        return self.run_with(handle, lambda job: c.call("print_job_run", job, data, len(data)))

    def run_with(self, handle: Handle, run: Callable[[ctypes.c_void_p], object]) -> PrintResult:
        """Calls `run` with the library's job, which `run` must print."""
        observer = c.PROGRESS(self._report)
        self._create(handle, observer)
        try:
            run(self._job)
            if self._failure is not None:
                raise self._failure
            return self._result()
        finally:
            self._free()

    def _create(self, handle: Handle, observer: object) -> None:
        with self._lock:
            if self._job:
                raise UsageError("the job runs already")
            c.call("print_job_create", handle.created, self._proof, observer, None, ctypes.byref(self._job))
            if self._is_cancelled:
                c.function("print_job_cancel")(self._job)

    def _free(self) -> None:
        with self._lock:
            c.function("print_job_free")(self._job)
            self._job = c.HANDLE()

    def _report(self, _context: object, accepted: int, total: int) -> None:
        if self._progress is None or self._failure is not None:
            return
        try:
            self._progress(Progress(accepted, total, c.text_of("print_job_waits_for", self._job)))
        except BaseException as failure:  # noqa: B902 - nothing may be raised through the library
            self._failure = failure
            self.cancel()

    def _result(self) -> PrintResult:
        record = StatusRecord()
        has_status = c.call("print_job_status", self._job, ctypes.byref(record)) == 0
        return PrintResult(
            outcome=OUTCOMES[c.integer("print_job_outcome", self._job)],
            obstacle=OBSTACLES[c.integer("print_job_obstacle", self._job)],
            proof=PROOFS[c.integer("print_job_proof", self._job)],
            reason=c.text_of("print_job_reason", self._job),
            advice=c.text_of("print_job_advice", self._job),
            bytes_accepted=c.integer("print_job_bytes_accepted", self._job),
            bytes_total=c.integer("print_job_bytes_total", self._job),
            status=status_of(record) if has_status else None,
        )


class PrintJob:
    """A job for an open port. It is sent once, and never repeated automatically.

        job = PrintJob(port)
        for progress in job.steps(receipt):
            print(progress.bytes_accepted, "of", progress.bytes_total)
        print(job.result.outcome)
    """

    def __init__(
        self, port: Port, *, proof: Proof = Proof.AUTO, progress: Callable[[Progress], object] | None = None
    ) -> None:
        """`proof` sets how the printer confirms the job.

        `progress` is called on the port's thread. If it raises an error, the job is cancelled.
        """
        self._port = port
        self._proof = proof
        self._progress = progress
        self._running: RunningJob | None = None
        self._is_cancelled = False
        #: The result of the job; None until it ends.
        self.result: PrintResult | None = None

    def run(self, data: bytes | bytearray | memoryview) -> PrintResult:
        """Prints the data and returns the result, within the time-outs of the port.

        Ctrl-C cancels the job. KeyboardInterrupt is raised after the job has ended and `result` is set. Raises
        OperationError if the port is not open, and UsageError if the job has run before.
        """
        return self._finish(self._start(data, self._progress))

    def steps(self, data: bytes | bytearray | memoryview) -> Iterator[Progress]:
        """Prints the data and yields its progress; afterwards `result` is set.

        If the program leaves its loop over the progress before the job has ended, the job is cancelled. Ctrl-C also
        cancels the job.
        """
        told: queue.SimpleQueue[Progress | None] = queue.SimpleQueue()

        def report(progress: Progress) -> None:
            told.put(progress)
            if self._progress is not None:
                self._progress(progress)

        job = self._start(data, report)
        job.add_done_callback(lambda _: told.put(None))
        try:
            while (progress := told.get()) is not None:
                yield progress
        except BaseException:  # the caller has left its loop over the progress, or Ctrl-C ends the wait
            self.cancel()
            raise
        finally:
            self._finish(job)

    def cancel(self) -> None:
        """Cancels the job, even before it runs. Any thread may call this.

        A running job notices this within 0.3 s. It then sends the printer a command to drop the data that is not yet
        printed, and closes the link. If the link does not accept this command within 0.5 s, the data remains in the
        printer.
        """
        self._is_cancelled = True
        if self._running is not None:
            self._running.cancel()

    def _start(
        self, data: bytes | bytearray | memoryview, progress: Callable[[Progress], object] | None
    ) -> Future[PrintResult]:
        if self._running is not None:
            raise UsageError("the job was run already: a job is sent once")
        self._running = RunningJob(progress, self._proof)
        if self._is_cancelled:
            self._running.cancel()
        return self._port.start_job(self._running, bytes_of(data))

    def _finish(self, job: Future[PrintResult]) -> PrintResult:
        try:
            self.result = job.result()
        except KeyboardInterrupt:
            self.cancel()
            self.result = job.result()
            raise
        return self.result
