"""Shared by the tests of the back end: a private scheduler, queues, and printers that count every byte."""

import os
import shutil
import time
from collections.abc import Callable
from pathlib import Path

import ipp
from harness import Case, Simulator, eventually
from scheduler import ENDED, Scheduler

QUOR = Path(os.environ["QUOR"])
RECEIPT = b"Espresso  2.20\nCake  3.80\n"
SETTLED = (*ENDED, "held", "stopped")


def printed(printer: Simulator) -> int:
    """Waits until the printer has no data left; returns how many bytes it has printed."""
    return eventually(lambda: (now := printer.state())["buffered"] == 0 and now, "the printer has printed")["printedBytes"]


def least(measure: Callable[[], float], limit: float) -> float:
    """Repeats the measurement a few times at most, until it is below the limit, and returns the shortest: other
    programs on the machine only make it longer."""
    times = []
    while not times or (min(times) >= limit and len(times) < 5):
        times.append(measure())
    return min(times)


class QueueCase(Case):
    """`self.scheduler` runs, and has no queue yet."""

    back_ends = {"quor": QUOR}

    def setUp(self):
        super().setUp()
        self.folder.chmod(0o755)
        self.scheduler = Scheduler(self.folder / "cups", self.back_ends)
        self.addCleanup(self.end_scheduler)

    def end_scheduler(self):
        """Ends the scheduler. Copies its log to the file that QUOR_CUPS_LOG names, if this variable is set."""
        self.scheduler.end()
        if (log := os.environ.get("QUOR_CUPS_LOG")) is not None:
            shutil.copy(self.scheduler.folder / "error_log", log)

    def queue(self, printer: Simulator | str, name: str = "till", query: str = "", policy: str = "retry-job") -> str:
        """Makes a queue for the printer, or for an address."""
        place = printer if isinstance(printer, str) else printer.place
        self.scheduler.add_queue(name, f"quor:/tcp/{place.removeprefix('tcp:')}{query}", policy)
        return name

    def print_job(self, queue: str, data: bytes = RECEIPT, *attributes: bytes) -> int:
        return self.scheduler.print_job(queue, data, *attributes)

    def assertSettles(self, job: int, state: str):
        """Waits until the job has ended, is held or is stopped, and checks that its state is `state`."""
        settled = self.scheduler.await_state(job, *SETTLED)
        self.assertEqual(settled, state, self.story(job))

    def assertWaits(self, job: int, queue: str, message: str, *reasons: str):
        """The job is neither printed nor aborted, and the queue gives the reason."""
        eventually(lambda: self.scheduler.message(queue) == message, f"the queue says {message}")
        self.assertEqual(self.scheduler.state(job), "processing", self.story(job))
        self.assertEqual(self.scheduler.reasons(queue), set(reasons))

    def story(self, job: int) -> str:
        """The scheduler's log of the job."""
        return "\n".join(line for line in self.scheduler.log().splitlines() if f"[Job {job}]" in line and "envp" not in line)

    def back_end_is_gone(self) -> bool:
        return not self.children(self.scheduler.process.pid)

    @staticmethod
    def children(process: int) -> list[int]:
        found = []
        for entry in Path("/proc").iterdir():
            try:
                fields = (entry / "stat").read_text().rsplit(")", 1)[1].split() if entry.name.isdigit() else []
            except (FileNotFoundError, ProcessLookupError):
                continue  # the process has ended meanwhile
            if fields and int(fields[1]) == process and fields[0] != "Z":
                found.append(int(entry.name))
        return found

    def copies(self, printer: Simulator, size: int = len(RECEIPT)) -> float:
        """How many copies of a job of that size are on paper."""
        return printed(printer) / size

    def seconds_to_cancel(self, job: int) -> float:
        """How long the back end still runs after a person has canceled its job."""
        began = time.monotonic()
        self.scheduler.on_job(ipp.CANCEL_JOB, job)
        eventually(self.back_end_is_gone, "the back end ends")
        seconds = time.monotonic() - began
        self.assertSettles(job, "canceled")
        return seconds


__all__ = ["QUOR", "RECEIPT", "SETTLED", "QueueCase", "eventually", "ipp", "least", "printed"]
