"""Jobs under a name: each is on paper once, or a person is asked, even if the program is killed at any moment."""

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

    #: Nothing of it was sent in any attempt.
    REFUSED = "refused"
    #: Nobody knows whether it is on paper.
    UNCONFIRMED = "unconfirmed"
    #: A process that lives prints it.
    PRINTING = "printing"
    #: The printer confirmed it.
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
    #: None if its end was not recorded.
    ended: datetime | None
    state: JobState
    #: Why it was not printed, for a person; "" if it was.
    reason: str


@dataclass(frozen=True)
class NamedResult(PrintResult):
    """The result of a job under a name."""

    #: The number of the attempt that decides; 0 before there is one.
    attempt: int
    #: The job was printed by an earlier call, and this one sent nothing.
    repeated: bool
    #: Why the outcome could not be recorded; "" if it was.
    not_recorded: str


def time_of(milliseconds_since_1970: int) -> datetime:
    """A time of the journal's."""
    return datetime.fromtimestamp(milliseconds_since_1970 / 1000, UTC)


def record_of(row: Any) -> JobRecord:
    """The record as a program of Python wants it."""
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
    """The file in which jobs are recorded under their names. Many processes may use one file at once.

        with Journal() as journal:
            result = journal.print("order-4217", receipt, Port("tcp:192.0.2.10:9100"))

    Raises JournalError if the file cannot be kept; nothing is sent then. One thread at a time may use a journal.
    """

    def __init__(self, file: str | os.PathLike[str] | None = None) -> None:
        """Opens the file and makes it if it is not there.

        Without one it is quorport/jobs.db in $XDG_STATE_HOME, or in ~/.local/state: that of the command `quorport`.
        """
        _journal.load()
        self._journal = c.HANDLE()
        path = None if file is None else os.fsencode(file)
        c.call("journal_open", path, ctypes.byref(self._journal))

    def __enter__(self) -> Self:
        """The journal is open already."""
        return self

    def __exit__(
        self, kind: type[BaseException] | None, error: BaseException | None, trace: TracebackType | None
    ) -> None:
        """Closes the file."""
        self.close()

    def close(self) -> None:
        """Closes the file; harmless if it was closed."""
        c.function("journal_free")(self._journal)
        self._journal = c.HANDLE()

    @property
    def file(self) -> str:
        """The path of the file, through all links."""
        return c.text_of("journal_file", self._raw)

    def jobs(self) -> list[JobRecord]:
        """What is known of each job, by name."""
        found: list[JobRecord] = []
        receive = _journal.ROW_FUNCTION(lambda _, row: found.append(record_of(row.contents)))
        c.call("journal_jobs", self._raw, receive, None)
        return found

    def forget(self, name: str) -> bool:
        """Takes a job out: a later call under its name prints it, even if it is on paper. False if there is none.

        Raises OperationError while a process prints it.
        """
        return c.call("journal_forget", self._raw, name.encode()) == 0

    def forget_older_than(self, days: int) -> int:
        """Takes out the jobs whose last attempt began more than so many days ago; returns how many."""
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
        """Prints the data under a name, once, and returns the result of this call or of an earlier one.

        "Begun" is on disk before the first byte goes out, and the outcome before this returns. A job of which nobody
        knows whether it is on paper stays unconfirmed, and nothing is sent, unless `again` says that somebody has
        looked. The port is opened when it is needed, and closed again if it was closed. Waits at most `timeout`
        seconds for another process that prints this job, and as long for another job on this printer.

        Raises UsageError if the name is none, or is known with other data; OperationError if the printer cannot be
        reached or another job has it; then nothing was sent, and the journal says so.
        """
        if len(port.configuration.devices) != 1:
            raise UsageError("a job under a name is for a port of one device")
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
    """One call under a name, for the thread of the port."""

    def __init__(self, journal: ctypes.c_void_p, name: str, device: str, again: bool, timeout: int) -> None:
        """`timeout` is in milliseconds."""
        self._journal = journal
        self._device = device.encode()
        self._timeout = timeout
        self._request = _journal.Request(
            name.encode(), self._device, int(again), timeout, _journal.WAITING(0), None
        )

    def run(self, handle: Handle, running: RunningJob, data: bytes) -> NamedResult:
        """Claims the name, and prints unless the journal knows the outcome."""
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
        """The library's port is there within the block; an answered job does not open it."""
        handle.create()
        try:
            yield
        finally:
            if not handle.is_open:
                handle.close()

    @contextmanager
    def _opened(self, job: ctypes.c_void_p, handle: Handle) -> Iterator[None]:
        """The port is open within the block, in its turn; the journal says if it cannot be opened."""
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
