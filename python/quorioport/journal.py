"""Jobs with names. Each job is printed once, or is left to a person's decision, even if the program is killed at any
moment.
"""

from __future__ import annotations

import ctypes
import os
from collections.abc import Callable, Iterator
from contextlib import contextmanager
from dataclasses import dataclass
from datetime import UTC, datetime
from enum import Enum
from types import TracebackType
from typing import Any, Self

from quorioport import _journal
from quorioport import _library as c
from quorioport._handle import Handle, milliseconds
from quorioport.errors import OperationError, QuorError, UsageError
from quorioport.job import PrintResult, Progress, Proof, RunningJob, bytes_of
from quorioport.port import Port


class JobState(Enum):
    """The state of a job in a journal."""

    #: Nothing of the job was sent in any attempt.
    REFUSED = "refused"
    #: Nobody knows whether the job is on paper.
    UNCONFIRMED = "unconfirmed"
    #: A running process is printing the job.
    PRINTING = "printing"
    #: The printer confirmed the job.
    PRINTED = "printed"


STATES = tuple(JobState)


@dataclass(frozen=True)
class JobRecord:
    """One job of a journal."""

    name: str
    device: str
    bytes: int
    attempts: int
    begun: datetime
    #: None if the end was not recorded.
    ended: datetime | None
    state: JobState
    #: Why the job was not printed, for people; "" if it was printed.
    reason: str


@dataclass(frozen=True)
class NamedResult(PrintResult):
    """The result of a job with a name."""

    #: The number of the attempt that this result belongs to, from 1; 0 if there was no attempt.
    attempt: int
    #: True if an earlier call printed the job; this call sent nothing.
    repeated: bool
    #: Why the outcome could not be recorded; "" if it was recorded.
    not_recorded: str


def time_of(milliseconds_since_1970: int) -> datetime:
    """Converts a time of the journal."""
    return datetime.fromtimestamp(milliseconds_since_1970 / 1000, UTC)


def record_of(row: Any) -> JobRecord:
    """Converts the library's record of a job."""
    return JobRecord(
        name=row.name.decode(),
        device=row.device.decode("utf-8", "replace"),
        bytes=row.bytes,
        attempts=row.attempts,
        begun=time_of(row.begun),
        ended=None if row.ended < 0 else time_of(row.ended),
        state=STATES[row.state],
        reason=row.reason.decode("utf-8", "replace"),
    )


class Journal:
    """A file that records jobs by their names. Many processes may use the same file at the same time.

        with Journal() as journal:
            result = journal.print("order-4217", receipt, Port("tcp:192.0.2.10:9100"))

    Raises JournalError, and sends nothing, if the file cannot be used. A journal may be used by one thread at a time.
    """

    def __init__(self, file: str | os.PathLike[str] | None = None) -> None:
        """Opens the file, and creates it if it does not exist.

        The default is quorport/jobs.db in $XDG_STATE_HOME, or in ~/.local/state; the command `quorport` uses the same
        file.
        """
        _journal.load()
        self._journal = c.HANDLE()
        path = None if file is None else os.fsencode(file)
        c.call("journal_open", path, ctypes.byref(self._journal))

    def __enter__(self) -> Self:
        """Does nothing: the journal is open already."""
        return self

    def __exit__(
        self, kind: type[BaseException] | None, error: BaseException | None, trace: TracebackType | None
    ) -> None:
        """Closes the file."""
        self.close()

    def close(self) -> None:
        """Closes the file. Does nothing if the file is closed already."""
        c.function("journal_free")(self._journal)
        self._journal = c.HANDLE()

    @property
    def file(self) -> str:
        """The path of the file, with all links resolved."""
        return c.text_of("journal_file", self._raw)

    def jobs(self) -> list[JobRecord]:
        """All recorded jobs, sorted by name."""
        found: list[JobRecord] = []
        receive = _journal.ROW_FUNCTION(lambda _, row: found.append(record_of(row.contents)))
        c.call("journal_jobs", self._raw, receive, None)
        return found

    def forget(self, name: str) -> bool:
        """Removes a job: a later call with its name prints it again, even if it is on paper. Returns False if there is
        no such job.

        Raises OperationError while a process prints the job.
        """
        return c.call("journal_forget", self._raw, name.encode()) == 0

    def forget_older_than(self, days: int) -> int:
        """Removes the jobs whose last attempt began more than `days` days ago. Returns their count."""
        if not 0 <= days < 2**32:
            raise UsageError(f"the number of days is {days}; it must be 0 or more")
        count = c.LONG()
        c.call("journal_forget_older_than", self._raw, days, ctypes.byref(count))
        return count.value

    def print(
        self,
        name: str,
        data: bytes | bytearray | memoryview,
        port: Port,
        *,
        again: bool = False,
        proof: Proof = Proof.AUTO,
        progress: Callable[[Progress], object] | None = None,
        timeout: float = 10,
    ) -> NamedResult:
        """Prints the data once under a name. Returns the result of this call, or of an earlier one.

        The beginning of the attempt is on disk before the first byte is sent, and the outcome is on disk before this
        method returns. If nobody knows whether a job is on paper, it remains unconfirmed and nothing is sent, unless
        `again` says that a person has looked at the paper. If the port is closed, it is opened when it is needed, and
        closed afterwards. Waits at most `timeout` seconds for another process that prints this job, and at most
        `timeout` seconds for another job on this printer.

        Raises UsageError if the name is invalid or belongs to other data. Raises OperationError if the printer cannot
        be reached or another job uses it; in that case nothing was sent, and the journal records the failure.
        """
        if len(port.configuration.devices) != 1:
            raise UsageError("a job under a name needs a port with exactly one device")
        running = RunningJob(progress, proof)
        job = Named(self._raw, name, port.configuration.devices[0], again, milliseconds(timeout, "timeout"))
        future = port.worker.submit(job.run, port.handle, running, bytes_of(data))
        try:
            return future.result()
        except KeyboardInterrupt:
            running.cancel()
            future.exception()
            raise

    @property
    def _raw(self) -> ctypes.c_void_p:
        if not self._journal:
            raise OperationError("the journal is closed")
        return self._journal


class Named:
    """One call that prints data under a name. `run` must be called on the port's thread."""

    def __init__(self, journal: ctypes.c_void_p, name: str, device: str, again: bool, timeout: int) -> None:
        """`timeout` is in milliseconds."""
        self._journal = journal
        self._device = device.encode()
        self._timeout = timeout
        self._request = _journal.Request(
            name.encode(), self._device, int(again), timeout, _journal.WAITING(0), None
        )

    def run(self, handle: Handle, running: RunningJob, data: bytes) -> NamedResult:
        """Reserves the name, and prints unless the journal already knows the outcome."""
        job = c.HANDLE()
        c.call("named_job_create", self._journal, ctypes.byref(self._request), data, len(data), ctypes.byref(job))
        try:
            is_answered = c.integer("named_job_is_answered", job) == 1
            with self._created(handle) if is_answered else self._opened(job, handle):
                return self._print(job, handle, running)
        finally:
            c.function("named_job_free")(job)

    def _print(self, job: ctypes.c_void_p, handle: Handle, running: RunningJob) -> NamedResult:
        result = running.run_with(handle, lambda print_job: c.call("named_job_run", job, print_job))
        return NamedResult(
            **vars(result),
            attempt=c.integer("named_job_attempt", job),
            repeated=c.integer("named_job_is_repeated", job) == 1,
            not_recorded=c.text_of("named_job_not_recorded", job),
        )

    @contextmanager
    def _created(self, handle: Handle) -> Iterator[None]:
        """Creates the port for a `with` statement, but does not open it, because the journal knows the outcome and
        nothing is sent.
        """
        handle.create()
        try:
            yield
        finally:
            if not handle.is_open:
                handle.close()

    @contextmanager
    def _opened(self, job: ctypes.c_void_p, handle: Handle) -> Iterator[None]:
        """Waits until no other job uses the printer, and opens the port for a `with` statement. If the port cannot be
        opened, records this in the journal.
        """
        if handle.is_open:
            yield
            return
        turn = c.HANDLE()
        try:
            try:
                c.call("turn_take", self._device, self._timeout, _journal.WAITING(0), None, ctypes.byref(turn))
                handle.open()
            except QuorError as error:
                c.call("named_job_refuse", job, str(error).encode())
                raise
            yield
        finally:
            handle.close()
            c.function("turn_free")(turn)
