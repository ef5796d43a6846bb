"""Jobs of several processes on one printer take turns."""

import time

from harness import Case, eventually, finish, main, run, start

RECEIPT = b"Espresso  2.20\nTotal     2.20\n"


class TurnsOnAPrinter(Case):
    def test_jobs_take_turns_on_a_printer_and_report_that_they_wait(self):
        simulator = self.simulator("tcp:0", "--set", "speed=20")
        job = self.file("receipt", RECEIPT)
        first = start("-d", simulator.place, "print", job)
        eventually(lambda: simulator.state()["printedBytes"] > 0, "it prints")
        second = run("-d", simulator.place + ",name=Kitchen", "print", job)
        self.assertExit(0, second)
        self.assertIn("another job is on this printer: waiting", second.err)
        self.assertExit(0, finish(first, time.monotonic()))

    def test_a_job_that_waits_too_long_for_its_turn_is_refused(self):
        simulator = self.simulator("tcp:0", "--set", "speed=2")
        job = self.file("receipt", RECEIPT)
        first = start("-d", simulator.place, "print", job)
        eventually(lambda: simulator.state()["printedBytes"] > 0, "it prints")
        late = run("-d", simulator.place, "print", job, "--timeout", "20", "--json")
        self.assertExit(4, late)
        self.assertEqual((late.json()["outcome"], late.json()["bytesAccepted"]), ("refused", 0))
        self.assertIn("another job is on this printer", late.json()["error"])
        first.kill()
        first.communicate()
        simulator.set(speed=0)
        after_its_death = run("-d", simulator.place, "print", job)
        self.assertExit(0, after_its_death)
        self.assertNotIn("waiting", after_its_death.err)

    def test_a_job_does_not_wait_for_another_printer(self):
        slow, other = self.simulator("tcp:0", "--set", "speed=2"), self.simulator()
        job = self.file("receipt", RECEIPT)
        first = start("-d", slow.place, "print", job)
        eventually(lambda: slow.state()["printedBytes"] > 0, "it prints")
        self.assertEqual(run("-d", other.place, "print", job).err, "")
        first.kill()
        first.communicate()

    def test_queries_do_not_affect_a_job(self):
        simulator = self.simulator("tcp:0", "--set", "speed=20")
        job = start("-d", simulator.place, "print", self.file("receipt", RECEIPT))
        eventually(lambda: simulator.state()["printedBytes"] > 0, "it prints")
        for question in (["status"], ["doctor"], ["monitor", "--count", "1"]):
            run("-d", simulator.place, "--timeout", "300", *question)
        self.assertExit(0, finish(job, time.monotonic()))


if __name__ == "__main__":
    main()
