"""Each process that works on a job is killed at many moments of the job, under each error policy of the queue.

QUOR_CRASH_MOMENTS is the number of moments of a job that are tried for each process and policy; 20 at night.
"""

import collections
import concurrent.futures
import os
import signal
import tempfile
import time
import unittest
from pathlib import Path

import ipp
from harness import Simulator, eventually, main
from queues import QUOR, SETTLED, printed
from scheduler import SOCKET, Scheduler

MOMENTS = int(os.environ.get("QUOR_CRASH_MOMENTS", "2"))
POLICIES = ("retry-job", "retry-current-job", "abort-job", "stop-printer")
VICTIMS = ("worker", "guard", "both", "scheduler stopped", "scheduler killed")
COPY = b"".join(b"%03d a receipt that takes its time\n" % line for line in range(12))
SPEED = 1000  # bytes a second
LENGTH = 0.8  # seconds of a job, from its beginning to its end


class Lane:
    """A scheduler, a queue and a printer. Cases are tried on them, one after another."""

    def __init__(self, policy: str, back_end: str, program: Path):
        self.folder = tempfile.TemporaryDirectory()
        folder = Path(self.folder.name)
        folder.chmod(0o755)
        self.scheduler = Scheduler(folder / "cups", {back_end: program}, settings="DirtyCleanInterval 0")
        self.printer = Simulator("tcp:0", "--set", f"speed={SPEED}")
        place = self.printer.place.removeprefix("tcp:")
        self.scheduler.add_queue("till", f"quor:/tcp/{place}" if back_end == "quor" else f"socket://{place}", policy)
        self.exe = folder / "cups/bin/backend" / back_end

    def close(self):
        self.scheduler.end(signal.SIGKILL)
        for process in self.back_ends():
            os.kill(process, signal.SIGKILL)
        self.printer.kill()
        self.printer.err.close()
        self.folder.cleanup()

    def back_ends(self) -> list[int]:
        found = []
        for entry in Path("/proc").iterdir():
            try:
                if entry.name.isdigit() and os.readlink(entry / "exe") == str(self.exe):
                    found.append(int(entry.name))
            except OSError:
                continue  # the process has ended meanwhile, or belongs to another user
        return found

    def guard_and_worker(self) -> tuple[int | None, int | None]:
        parents = {process: parent_of(process) for process in self.back_ends()}
        guard = next((process for process, parent in parents.items() if parent == self.scheduler.process.pid), None)
        worker = next((process for process, parent in parents.items() if guard is not None and parent == guard), None)
        return guard, worker

    def strike(self, victim: str):
        if victim.startswith("scheduler"):
            self.scheduler.end(signal.SIGTERM if victim.endswith("stopped") else signal.SIGKILL)
            self.scheduler.start()
            return
        guard, worker = self.guard_and_worker()
        for process in {"guard": (guard,), "worker": (worker or guard,), "both": (guard, worker)}[victim]:
            if process is not None:
                try:
                    os.kill(process, signal.SIGKILL)
                except ProcessLookupError:
                    continue  # the process has just ended

    def state(self, job: int) -> str | None:
        """The state of the job if only a person can change this state now; otherwise null."""
        state = self.scheduler.state(job)
        if self.back_ends():
            return None
        if state == "pending":
            if self.scheduler.printer("till")["printer-state"] == [5]:
                return "queue stopped"
            # A scheduler that was killed before it recorded the end of a job checks the job again only after some other
            # event.
            self.scheduler.resume("till")
        return state if state in SETTLED else None

    def tidy(self, job: int, state: str):
        """Does what a person would do to free the queue for the next case: cancels the job unless it has ended, and
        resumes the queue if it is stopped. Waits until no back end runs."""
        if state not in ("completed", "canceled", "aborted"):
            self.scheduler.on_job(ipp.CANCEL_JOB, job)
        if self.scheduler.printer("till")["printer-state"] == [5]:
            self.scheduler.resume("till")
        eventually(lambda: not self.back_ends(), "no back end runs")

    def settled(self, job: int) -> str:
        """The last state of the job. The back end `socket` may wait for its printer for ever. If so, it is killed,
        and the result is `hung`."""
        try:
            return eventually(lambda: self.state(job), f"job {job} stays as it is")
        except AssertionError:
            if self.exe.name == "quor":
                raise
        for process in self.back_ends():
            os.kill(process, signal.SIGKILL)
        return "hung"

    def crash(self, victim: str, moment: float) -> tuple[str, float]:
        """The last state of the job, and the number of copies on paper."""
        before = printed(self.printer)
        job = self.scheduler.print_job("till", COPY)
        if self.exe.name == "quor" and not victim.startswith("scheduler"):
            # Nothing can notice that a process was killed before its first instruction.
            eventually(lambda: self.guard_and_worker()[1] or self.state(job), "the back end has begun")
        began = time.monotonic()
        time.sleep(max(0.0, began + moment - time.monotonic()))  # waits until the job has reached the given moment
        self.strike(victim)
        state = self.settled(job)
        copies = (printed(self.printer) - before) / len(COPY)
        self.tidy(job, state)
        return state, copies


def parent_of(process: int) -> int:
    try:
        return int(Path(f"/proc/{process}/stat").read_text().rsplit(")", 1)[1].split()[1])
    except (FileNotFoundError, ProcessLookupError):
        return 0


def moments(count: int) -> list[float]:
    return [LENGTH * (number + 0.5) / count for number in range(count)]


def report(back_end: str, ends: list[tuple[str, float]]):
    """Prints two counts, each on a line that scripts read. The test runner prints a dot for each test without ending
    the line, so the line of dots is ended first."""
    print()
    for meaning, is_so in (("jobs more than once on paper", lambda state, copies: copies > 1),
                           ("jobs completed without all of it on paper", lambda state, copies: state == "completed" and copies < 1)):
        print(f"{back_end}: {sum(is_so(*end) for end in ends)} of {len(ends)} {meaning}")


class Crashes(unittest.TestCase):
    def run_lane(self, policy: str, back_end: str, program: Path, victims: tuple, count: int) -> list[tuple[str, float, str, float]]:
        lane = Lane(policy, back_end, program)
        try:
            return [(victim, moment, *lane.crash(victim, moment)) for victim in victims for moment in moments(count)]
        finally:
            lane.close()

    def test_no_job_is_printed_twice_and_no_job_is_completed_without_paper(self):
        ends = []
        with concurrent.futures.ThreadPoolExecutor(len(POLICIES)) as lanes:
            results = lanes.map(lambda policy: self.run_lane(policy, "quor", QUOR, VICTIMS, MOMENTS), POLICIES)
            for policy, cases in zip(POLICIES, results):
                for victim, moment, state, copies in cases:
                    with self.subTest(policy=policy, victim=victim, moment=moment):
                        self.assertLessEqual(copies, 1, f"{state}, and {copies} copies")
                        if state == "completed":
                            self.assertEqual(copies, 1, "completed without paper")
                    ends.append((state, copies))
        states = collections.Counter(state for state, _ in ends)
        self.assertGreater(states["completed"], 0)
        self.assertGreater(states["held"], 0, "nothing was struck in its middle")
        report("quor", ends)
        print(f"{len(ends)} cases: jobs that are {dict(states)}")

    def test_outcomes_of_crashes_of_the_cups_socket_back_end_are_measured(self):
        """This test asserts nothing: we compare its figures with those of `quor`. It tries half as many
        moments of a job as the test of `quor`."""
        victims = ("worker", "scheduler stopped", "scheduler killed")
        with concurrent.futures.ThreadPoolExecutor(len(POLICIES)) as lanes:
            cases = sum(lanes.map(lambda policy: self.run_lane(policy, "socket", SOCKET, victims, (MOMENTS + 1) // 2), POLICIES), [])
        report("socket", [(state, copies) for _, _, state, copies in cases])


if __name__ == "__main__":
    main()
