"""The printer application is killed and started again: no job is lost, and none is printed twice unless a user asks.

The application is killed at 3 * QUOR_CRASH_MOMENTS moments of a job. QUOR_CRASH_MOMENTS is 20 at night.
"""

import collections
import os
import time

import ipp
from application import RAW, Application
from documents import page, pwg
from harness import eventually, main

MOMENTS = int(os.environ.get("QUOR_CRASH_MOMENTS", "2")) * 3
COPY = b"".join(b"%03d a receipt that takes its time\n" % line for line in range(12))
SPEED = 1000  # bytes a second
LENGTH = 1.2  # seconds of a job, from its arrival to its end
ENDED = ("completed", "aborted", "canceled")


class Restarting(Application):
    def first_lines(self, count: int) -> list[str]:
        return [text.split("\n")[0] for text in self.printed(count)]

    def test_waiting_jobs_are_printed_once_and_in_order_after_a_restart(self):
        self.printer.set(coverOpen=True)
        jobs = [self.print(b"job %d\n" % number) for number in range(3)]
        self.await_message("waiting: cover open", jobs[0])
        self.saved(jobs[0], state="5")
        self.saved(jobs[-1])
        self.restart()
        self.printer.set(coverOpen=False)
        for job in jobs:
            self.await_state("completed", job)
        self.assertEqual(self.first_lines(3), ["job 0", "job 1", "job 2"])

    def test_a_job_and_its_hold_are_on_disk_before_the_client_is_answered(self):
        self.printer.set(coverOpen=True)
        first = self.print(b"job 0\n")
        self.await_message("waiting: cover open", first)
        held, last = self.print(b"job 1\n"), self.print(b"job 2\n")
        self.client.on_job(ipp.HOLD_JOB, held)
        self.restart()
        self.printer.set(coverOpen=False)
        self.await_state("completed", last)
        self.assertEqual(self.client.job(held)[0], "held")
        self.assertEqual(self.first_lines(2), ["job 0", "job 2"])

    def test_a_waiting_job_is_printed_even_if_the_fonts_have_changed(self):
        self.printer.set(coverOpen=True)
        job = self.print("\u4e2d\n".encode())
        self.await_message("waiting: cover open", job)
        fonts = b"<fontconfig><dir>/usr/share/fonts/truetype/dejavu</dir></fontconfig>"
        self.environment["FONTCONFIG_FILE"] = self.file("fonts", fonts)
        self.restart()
        self.printer.set(coverOpen=False)
        self.await_state("completed", job)
        self.assertEqual(len(self.printed(1)), 1)

    def test_a_waiting_raster_page_is_printed_after_a_restart(self):
        self.printer.set(coverOpen=True)
        job = self.print(pwg(page(639, 320, 80, 40)), "image/pwg-raster")
        self.await_message("waiting: cover open", job)
        self.restart()
        self.printer.set(coverOpen=False)
        self.await_state("completed", job)
        self.assertRegex(self.printed(1)[0], r"\A\[image 576 x \d+ dots\]")

    def test_a_raster_page_that_was_being_printed_is_reported_and_not_repeated(self):
        self.printer.set(speed=2000)
        job = self.print(pwg(page(639, 1200, 80, 1000)), "image/pwg-raster")
        eventually(lambda: self.printer.state()["printedBytes"] > 100, "the job is under way")
        self.restart()
        self.assertIn("unconfirmed", self.await_state("aborted", job))
        self.printer.set(speed=0)
        self.await_state("completed", self.print(b"the next one\n"))

    def test_a_job_that_a_user_held_is_still_held_after_a_restart(self):
        self.printer.set(coverOpen=True)
        first = self.print(b"job 0\n")
        self.await_message("waiting: cover open", first)  # the framework may start two jobs that arrive together
        held, last = self.print(b"job 1\n"), self.print(b"job 2\n")
        self.client.on_job(ipp.HOLD_JOB, held)
        self.saved(first, state="5")
        self.saved(held, state="4")
        self.saved(last)
        self.restart()
        self.printer.set(coverOpen=False)
        self.await_state("completed", last)
        self.assertEqual(self.client.job(held)[0], "held")
        self.client.on_job(ipp.RELEASE_JOB, held)
        self.await_state("completed", held)
        self.assertEqual(self.first_lines(3), ["job 0", "job 2", "job 1"])

    def test_a_job_that_was_being_printed_is_reported_and_not_repeated(self):
        self.printer.set(speed=200)
        job = self.print(b"line of text\n" * 200)
        eventually(lambda: self.printer.state()["printedBytes"] > 100, "the job is under way")
        self.saved(job, state="5")
        self.restart()
        self.assertIn("unconfirmed", self.await_state("aborted", job))
        self.printer.set(speed=0)
        self.await_state("completed", self.print(b"the next one\n"))
        self.assertLessEqual("".join(self.printed()).count("line of text"), 200)

    def test_a_job_that_was_completed_is_not_printed_again(self):
        self.await_state("completed", self.print(b"the first one\n"))
        self.restart()
        self.await_state("completed", self.print(b"the next one\n"))
        self.assertEqual(self.first_lines(2), ["the first one", "the next one"])


class Crashes(Application):
    """One job runs at a time, so all paper that is printed between its beginning and its end belongs to it."""

    def paper(self) -> int:
        return eventually(lambda: (now := self.printer.state())["buffered"] == 0 and now, "the printer has printed")["printedBytes"]

    def settled(self, job: int) -> str:
        """The state in which the job ends; "lost" if the application no longer lists it."""

        def now() -> str | None:
            try:
                state = self.client.job(job)[0]
            except ipp.Refused:
                return "lost"
            return state if state in ENDED else None

        return eventually(now, f"job {job} ends")

    def crash(self, moment: float) -> tuple[str, float]:
        """Kills the application at this moment of a job. Returns the job's final state and how many copies are on paper."""
        before = self.paper()
        began = time.monotonic()
        job = self.print(COPY, RAW)
        time.sleep(max(0.0, began + moment - time.monotonic()))  # until the moment at which this case kills the application
        self.restart()
        state = self.settled(job)
        return state, (self.paper() - before) / len(COPY)

    def test_no_job_is_printed_twice_and_no_job_is_completed_without_paper(self):
        self.printer.set(speed=SPEED)
        self.await_state("completed", self.print(b"the first one\n", RAW))  # after this job, the printer's proof is known
        states = collections.Counter()
        for number in range(MOMENTS):
            moment = LENGTH * (number + 0.5) / MOMENTS
            with self.subTest(moment=moment):
                state, copies = self.crash(moment)
                self.assertLessEqual(copies, 1, state)
                self.assertNotEqual(state, "lost")
                if state == "completed":
                    self.assertEqual(copies, 1, "completed without paper")
            states[state] += 1
        self.assertGreater(states["aborted"], 0, "nothing was struck in its middle")
        print(f"{sum(states.values())} cases: {dict(states)}")


if __name__ == "__main__":
    main()
