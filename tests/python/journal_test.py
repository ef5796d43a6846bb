"""Named jobs in Python: each is printed once, even if the interpreter ends in the middle."""

import os
import signal
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

import quorioport
from quorioport import JobState, Journal, Outcome, Port, VirtualPrinter

RECEIPT = b"1 Espresso        1.80\n\n\n"

TILL = """
import sys
from quorioport import Journal, Port
with Journal(sys.argv[1]) as journal:
    journal.print("order-1", b"receipt\\n" * 40, Port(sys.argv[2]),
                  progress=lambda p: p.bytes_accepted and print("begun", flush=True))
"""


class NamedJobs(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.file = Path(folder.name) / "jobs.db"
        self.journal = Journal(self.file)
        self.addCleanup(self.journal.close)

    def printer(self, **settings) -> VirtualPrinter:
        printer = VirtualPrinter(**settings)
        self.addCleanup(printer.close)
        return printer

    def test_a_job_with_a_known_name_is_printed_only_once(self):
        printer = self.printer()
        port = Port(printer.device)
        first, second = (self.journal.print("order-1", RECEIPT, port) for _ in range(2))
        self.assertEqual((first.outcome, first.attempt, first.repeated, first.not_recorded),
                         (Outcome.PRINTED, 1, False, ""))
        self.assertEqual((second.outcome, second.attempt, second.repeated), (Outcome.PRINTED, 1, True))
        self.assertFalse(port.is_open)
        self.assertIn("Espresso", printer.next_receipt().text)
        with self.assertRaises(quorioport.OperationError):
            printer.next_receipt(timeout=0.2)

    def test_an_unconfirmed_job_is_printed_again_only_on_request(self):
        port = Port(self.printer(speed=5).device, timeout=1, end_timeout=1)
        self.assertEqual(self.journal.print("order-1", RECEIPT, port).outcome, Outcome.UNCONFIRMED)
        self.assertEqual(self.journal.print("order-1", RECEIPT, port).attempt, 1)
        port = Port(self.printer().device)
        again = self.journal.print("order-1", RECEIPT, port, again=True)
        self.assertEqual((again.outcome, again.attempt), (Outcome.PRINTED, 2))

    def test_an_unreachable_printer_raises_an_error_and_the_job_is_recorded_as_refused(self):
        with self.assertRaisesRegex(quorioport.OperationError, "/nowhere/at/all"):
            self.journal.print("order-1", RECEIPT, Port("unix:/nowhere/at/all"))
        self.assertEqual(self.journal.jobs()[0].state, JobState.REFUSED)
        self.assertTrue(self.journal.print("order-1", RECEIPT, Port("virtual:")).printed)

    def test_a_port_that_was_open_before_a_named_job_remains_open(self):
        with Port(self.printer().device) as port:
            for name in ("a", "b"):
                self.assertTrue(self.journal.print(name, RECEIPT, port).printed)
            self.assertTrue(port.is_open)

    def test_the_jobs_of_a_journal_can_be_listed_and_forgotten(self):
        self.journal.print("order-1", RECEIPT, Port("virtual:"))
        job, = self.journal.jobs()
        self.assertEqual((job.name, job.device, job.bytes, job.attempts, job.state, job.reason),
                         ("order-1", "virtual:", len(RECEIPT), 1, JobState.PRINTED, ""))
        self.assertLessEqual(job.begun, job.ended)
        self.assertEqual(self.journal.forget_older_than(1), 0)
        self.assertTrue(self.journal.forget("order-1"))
        self.assertFalse(self.journal.forget("order-1"))
        self.assertEqual(self.journal.jobs(), [])
        with self.assertRaises(quorioport.UsageError):
            self.journal.forget_older_than(-1)

    def test_an_invalid_argument_raises_an_error_and_nothing_is_sent(self):
        self.journal.print("order-1", RECEIPT, Port("virtual:"))
        for name, data in (("order-1", b"another receipt\n"), ("", RECEIPT), ("a\nb", RECEIPT), ("x" * 256, RECEIPT)):
            with self.subTest(name=name), self.assertRaises(quorioport.UsageError):
                self.journal.print(name, data, Port("virtual:"))
        with self.assertRaisesRegex(quorioport.UsageError, "one device"):
            self.journal.print("order-2", RECEIPT, Port(["virtual:", "virtual:"]))
        self.assertEqual(self.journal.file, os.path.realpath(self.file))
        self.journal.close()
        with self.assertRaisesRegex(quorioport.OperationError, "closed"):
            self.journal.jobs()

    def test_a_file_that_is_not_a_journal_is_refused(self):
        other = self.file.with_name("other")
        other.write_text("no database at all, and long enough to be read as one\n" * 40)
        with self.assertRaisesRegex(quorioport.JournalError, "other"):
            Journal(other)

    def test_a_job_whose_interpreter_is_killed_is_unconfirmed(self):
        printer = self.printer(speed=40)
        till = subprocess.Popen([sys.executable, "-c", TILL, self.file, printer.device], stdout=subprocess.PIPE,
                                text=True)
        self.addCleanup(till.stdout.close)
        self.assertEqual(till.stdout.readline(), "begun\n")
        self.assertEqual(self.journal.jobs()[0].state, JobState.PRINTING)
        os.kill(till.pid, signal.SIGKILL)
        till.wait(30)
        self.assertEqual(self.journal.jobs()[0].state, JobState.UNCONFIRMED)
        result = self.journal.print("order-1", b"receipt\n" * 40, Port(printer.device))
        self.assertEqual((result.outcome, result.attempt), (Outcome.UNCONFIRMED, 1))

    def test_ctrl_c_cancels_a_named_job_and_its_outcome_is_recorded(self):
        till = subprocess.Popen([sys.executable, "-c", TILL, self.file, self.printer(speed=40).device],
                                stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
        self.assertEqual(till.stdout.readline(), "begun\n")
        os.kill(till.pid, signal.SIGINT)
        _, said = till.communicate(timeout=30)
        self.assertIn("KeyboardInterrupt", said)
        job, = self.journal.jobs()
        self.assertEqual(job.state, JobState.UNCONFIRMED)
        self.assertIsNotNone(job.ended)


if __name__ == "__main__":
    unittest.main()
