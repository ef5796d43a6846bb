"""Print jobs in Python: results, progress, cancelling, and mistakes of the program."""

import os
import signal
import subprocess
import sys
import threading
import unittest

import quorioport
from quorioport import Emulation, Obstacle, Outcome, Port, PrintJob, Proof, VirtualPrinter

RECEIPT = b"THE CORNER BAKERY\n\n1 Espresso        1.80\n\n\n"


class PrintJobs(unittest.TestCase):
    def printer(self, **settings) -> VirtualPrinter:
        printer = VirtualPrinter(**settings)
        self.addCleanup(printer.close)
        return printer

    def port(self, printer: VirtualPrinter, **options) -> Port:
        port = Port(printer.device, **{"timeout": 2, **options})
        port.open()
        self.addCleanup(port.close)
        return port

    def test_a_receipt_is_printed_in_both_emulations(self):
        for emulation in (Emulation.LINE, Emulation.ESCPOS):
            with self.subTest(emulation):
                printer = self.printer()
                with Port(printer.device, emulation=emulation) as port:
                    result = port.print(RECEIPT)
                self.assertEqual(result.outcome, Outcome.PRINTED)
                self.assertTrue(result.printed)
                self.assertEqual((result.obstacle, result.reason, result.advice), (Obstacle.NONE, "", ""))
                self.assertEqual((result.bytes_accepted, result.bytes_total), (len(RECEIPT), len(RECEIPT)))
                self.assertIsNotNone(result.status)
                result.raise_unless_printed()
                self.assertIn("Espresso", printer.next_receipt().text)

    def test_each_proof_is_used_if_it_is_named(self):
        for proof in (proof for proof in Proof if proof not in (Proof.AUTO, Proof.NONE)):
            with self.subTest(proof):
                result = self.port(self.printer(), emulation=Emulation.ESCPOS).print(RECEIPT, proof=proof)
                self.assertEqual((result.outcome, result.proof), (Outcome.PRINTED, proof))
        unchecked = self.port(self.printer()).print(RECEIPT, proof=Proof.NONE)
        self.assertEqual((unchecked.outcome, unchecked.proof), (Outcome.UNCONFIRMED, Proof.NONE))
        with self.assertRaises(ValueError):
            self.port(self.printer()).print(RECEIPT, proof="luck")

    def test_progress_reports_why_a_printer_pauses(self):
        printer, told = self.printer(speed=40, proofs="process-id"), []

        def watch(progress):
            told.append(progress.waits_for)
            if progress.bytes_accepted and not printer.state()["coverOpen"]:
                printer.set(cover_open=True)
            elif progress.waits_for:
                printer.set(cover_open=False)

        port = self.port(printer, emulation=Emulation.ESCPOS, end_timeout=30)
        self.assertTrue(port.print(RECEIPT, progress=watch).printed)
        self.assertIn("cover open", told)

    def test_a_refused_job_reports_its_reason_and_advice(self):
        result = self.port(self.printer(cover_open=True)).print(RECEIPT)
        self.assertEqual((result.outcome, result.obstacle), (Outcome.REFUSED, Obstacle.PRINTER_NOT_READY))
        self.assertEqual(result.bytes_accepted, 0)
        self.assertIn("cover", result.reason)
        self.assertNotEqual(result.advice, "")
        with self.assertRaisesRegex(quorioport.NotPrintedError, "refused: .*cover") as caught:
            result.raise_unless_printed()
        self.assertIs(caught.exception.result, result)

    def test_a_job_that_the_printer_does_not_confirm_in_time_is_unconfirmed(self):
        result = self.port(self.printer(speed=5), end_timeout=1).print(RECEIPT)
        self.assertEqual((result.outcome, result.bytes_accepted), (Outcome.UNCONFIRMED, len(RECEIPT)))

    def test_progress_counts_from_zero_to_all_bytes(self):
        told = []
        data = RECEIPT * 500
        result = self.port(self.printer()).print(data, progress=told.append)
        self.assertTrue(result.printed, result)
        accepted = [progress.bytes_accepted for progress in told]
        self.assertEqual((accepted[0], accepted[-1]), (0, len(data)))
        self.assertEqual(accepted, sorted(accepted))
        self.assertEqual({progress.bytes_total for progress in told}, {len(data)})

    def test_progress_can_be_read_from_an_iterator(self):
        job = PrintJob(self.port(self.printer()))
        steps = [progress.bytes_accepted for progress in job.steps(RECEIPT)]
        self.assertEqual((steps[0], steps[-1]), (0, len(RECEIPT)))
        self.assertTrue(job.result.printed)

    def test_a_job_is_cancelled_if_the_loop_over_its_steps_is_left_early(self):
        job = PrintJob(self.port(self.printer(speed=10)))
        for _ in job.steps(RECEIPT * 100):
            break
        self.assertEqual(job.result.obstacle, Obstacle.CANCELLED)

    def test_an_exception_of_the_progress_function_cancels_the_job_and_is_raised(self):
        def fail(progress):
            raise LookupError("no such till")

        job = PrintJob(self.port(self.printer(speed=10)), progress=fail)
        with self.assertRaisesRegex(LookupError, "no such till"):
            job.run(RECEIPT)

    def test_any_thread_can_cancel_a_job(self):
        job = PrintJob(self.port(self.printer(speed=10), end_timeout=60))
        begun = threading.Event()
        job._progress = lambda progress: progress.bytes_accepted and begun.set()
        canceller = threading.Thread(target=lambda: (begun.wait(30), job.cancel()))
        canceller.start()
        result = job.run(RECEIPT)
        canceller.join()
        self.assertEqual((result.outcome, result.obstacle), (Outcome.UNCONFIRMED, Obstacle.CANCELLED))

    def test_a_job_that_is_cancelled_before_its_start_sends_nothing(self):
        job = PrintJob(self.port(self.printer()))
        job.cancel()
        result = job.run(RECEIPT)
        self.assertEqual((result.outcome, result.obstacle), (Outcome.REFUSED, Obstacle.CANCELLED))

    def test_a_job_can_run_only_once(self):
        job = PrintJob(self.port(self.printer()))
        job.run(RECEIPT)
        with self.assertRaisesRegex(quorioport.UsageError, "once"):
            job.run(RECEIPT)

    def test_a_str_is_refused_as_print_data(self):
        with self.assertRaisesRegex(TypeError, "encode"):
            self.port(self.printer()).print("hello")

    def test_a_bytearray_or_memoryview_is_printed(self):
        port = self.port(self.printer())
        for data in (bytearray(RECEIPT), memoryview(RECEIPT)):
            self.assertTrue(port.print(data).printed)

    def test_a_job_on_a_closed_port_raises_an_error(self):
        with self.assertRaisesRegex(quorioport.OperationError, "not open"):
            Port("virtual:").print(RECEIPT)

    def test_ctrl_c_cancels_the_job_and_is_raised_after_the_job_ends(self):
        program = """
import sys
from quorioport import Port, PrintJob
with Port(sys.argv[1], end_timeout=60) as port:
    job = PrintJob(port, progress=lambda p: p.bytes_accepted and print("begun", flush=True))
    try:
        USE
    except KeyboardInterrupt:
        print(job.result.outcome.value, job.result.obstacle.value, flush=True)
"""
        for use in ('job.run(b"receipt" * 20)', 'list(job.steps(b"receipt" * 20))'):
            till = subprocess.Popen([sys.executable, "-c", program.replace("USE", use), self.printer(speed=10).device],
                                    stdout=subprocess.PIPE, text=True)
            self.addCleanup(till.stdout.close)
            self.assertEqual(till.stdout.readline(), "begun\n")
            os.kill(till.pid, signal.SIGINT)
            self.assertEqual(till.stdout.read().splitlines()[-1], "unconfirmed cancelled", use)
            self.assertEqual(till.wait(30), 0)


if __name__ == "__main__":
    unittest.main()
