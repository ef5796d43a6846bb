"""Each example, built against the installed package, does its task."""

import os
import sys
import unittest

from programs import DEADLINE, EXAMPLES, QUORPORT, SOURCES, Program, ProgramTest

PRINT_PY = SOURCES / "examples/print.py"


class Confirmation(ProgramTest):
    def outcome(self, device: str) -> tuple[int, str]:
        receipt = self.folder / "receipt.txt"
        receipt.write_text("2 Espresso   3.60\n" * 100)
        result = self.run_program(EXAMPLES / "print_with_confirmation", device, receipt)
        return result.returncode, result.stdout + result.stderr

    def test_a_printed_receipt_is_reported_as_printed(self):
        self.assertEqual(self.outcome("virtual:"), (0, "printed: hand the receipt over\n"))

    def test_a_refused_receipt_is_reported_as_safe_to_send_again(self):
        code, text = self.outcome("virtual:,coverOpen=true")
        self.assertEqual(code, 1)
        self.assertIn("refused: cover open", text)
        self.assertIn("again is safe", text)

    def test_the_example_asks_a_person_to_look_whether_an_unconfirmed_receipt_is_printed(self):
        code, text = self.outcome("virtual:,cut-after-in=300")
        self.assertEqual(code, 6)
        self.assertRegex(text, r"unconfirmed: link lost after [\d,]+ of 1,800 bytes")
        self.assertIn("look at the paper", text)

    def test_a_missing_printer_is_reported_and_nothing_is_sent(self):
        code, text = self.outcome(f"unix:{self.folder}/nobody")
        self.assertEqual((code, text), (1, "no printer: nothing was sent, try again later\n"))

    def test_a_receipt_file_that_cannot_be_read_causes_an_error_message(self):
        result = self.run_program(EXAMPLES / "print_with_confirmation", "virtual:", self.folder / "missing")
        self.assertEqual(result.returncode, 2)
        self.assertIn("cannot read", result.stderr)


class BadDevice(ProgramTest):
    def test_an_invalid_device_causes_an_error_message_in_every_example(self):
        for program, more in (("print_with_confirmation", ["/dev/null"]), ("kiosk", []), ("status_monitor", []),
                              ("application_log", [])):
            result = self.run_program(EXAMPLES / program, "nonsense:", *more)
            self.assertEqual(result.returncode, 2, program)
            self.assertIn("nonsense", result.stderr, program)


class Monitor(ProgramTest):
    def test_the_monitor_reports_each_change_of_the_printer(self):
        monitor = Program(self, EXAMPLES / "status_monitor", "virtual:,at=3000:coverOpen=true")
        self.assertEqual(monitor.line(), "on line")
        self.assertEqual(monitor.line(), "off line, cover open")

    def test_the_monitor_continues_after_the_printer_was_away(self):
        place = f"unix:{self.folder}/printer"
        printer, device = self.printer(place)
        monitor = Program(self, EXAMPLES / "status_monitor", device)
        self.assertEqual(monitor.line(), "on line")
        printer.end()
        self.assertIn(monitor.line(), ("link lost", "cannot be reached"))
        self.printer(place)
        while (line := monitor.line()) != "on line":
            self.assertEqual(line, "cannot be reached")


class Kiosk(ProgramTest):
    def test_the_kiosk_prints_a_waiting_receipt_when_the_printer_is_back(self):
        place = f"unix:{self.folder}/printer"
        printer, device = self.printer(place)
        kiosk = Program(self, EXAMPLES / "kiosk", device, self.folder / "jobs.db")
        kiosk.write("first receipt")
        self.assertEqual(kiosk.line(), "printed")
        printer.end()
        kiosk.write("second receipt")
        self.assertEqual(kiosk.line(), "waiting: cannot be reached")
        self.printer(place)
        self.assertEqual(kiosk.line(), "printed")

    def test_a_receipt_that_may_be_on_paper_is_not_sent_again(self):
        kiosk = Program(self, EXAMPLES / "kiosk", "virtual:,prints-nothing=true", self.folder / "jobs.db")
        kiosk.write("receipt")
        self.assertIn("call the staff", kiosk.line())

    def test_a_kiosk_that_is_killed_and_restarted_prints_each_receipt_once(self):
        paper = self.folder / "paper"
        printer = Program(self, QUORPORT, "simulate", "--listen", f"unix:{self.folder}/printer", "--receipts", paper)
        device = printer.line().removeprefix("listening ")
        receipts = [f"receipt-{number}." for number in range(4)]
        for killed_after in range(len(receipts)):  # how many receipts the kiosk reports before it is killed
            kiosk = Program(self, EXAMPLES / "kiosk", device, self.folder / "jobs.db")
            for receipt in receipts:
                kiosk.write(receipt)
            for _ in range(killed_after):
                kiosk.line()
            kiosk.end()
        kiosk = Program(self, EXAMPLES / "kiosk", device, self.folder / "jobs.db")
        told = {}
        for receipt in receipts:
            kiosk.write(receipt)
            told[receipt] = kiosk.line()
        kiosk.end()
        printer.write('{"quit": true}')
        printer.process.wait(DEADLINE)
        text = "".join(found.read_text() for found in paper.glob("*.txt"))
        for receipt, words in told.items():
            self.assertLessEqual(text.count(receipt), 1, words)
            if words.startswith("printed"):
                self.assertEqual(text.count(receipt), 1, words)
            else:
                self.assertIn("call the staff: the process that printed the job ended too early", words)


class ApplicationLog(ProgramTest):
    def test_the_applications_logger_receives_the_log_records(self):
        result = self.run_program(EXAMPLES / "application_log", "virtual:")
        self.assertEqual((result.returncode, result.stdout), (0, "on line\n"))
        records = result.stderr.splitlines()
        self.assertGreater(len(records), 10)
        for record in records:
            self.assertRegex(record, r"^shop\[(debug|error)\]: [-+]\[\w+ .*\]")

    def test_a_failure_is_logged_as_an_error(self):
        result = self.run_program(EXAMPLES / "application_log", "virtual:,drop-reply=all")
        self.assertEqual((result.returncode, result.stdout), (1, "no answer\n"))
        self.assertIn("shop[error]: ", result.stderr)


class ExampleInC(ProgramTest):
    def test_the_shared_and_the_static_library_print_alike(self):
        for program in ("print", "print_static"):
            result = self.run_program(EXAMPLES / program, "virtual:", "text\n")
            self.assertEqual((result.returncode, result.stdout), (0, "printed: hand the receipt over\n"))

    def test_every_outcome_has_its_exit_status(self):
        for device, code, word in (("virtual:,offline=true", 1, "refused"),
                                   ("virtual:,cut-after-in=300", 6, "unconfirmed")):
            result = self.run_program(EXAMPLES / "print", device, "text\n" * 100)
            self.assertEqual(result.returncode, code)
            self.assertTrue(result.stdout.startswith(word), result.stdout)

    def test_the_error_message_names_the_invalid_device(self):
        result = self.run_program(EXAMPLES / "print", "pigeon:", "text\n")
        self.assertEqual(result.returncode, 1)
        self.assertIn("pigeon", result.stderr)


class ExamplePrintOnce(ProgramTest):
    def outcome(self, device: str, name: str, text: str = "text\n") -> tuple[int, str, str]:
        result = self.run_program(EXAMPLES / "print_once", device, name, text, self.folder / "jobs.db")
        return result.returncode, result.stdout, result.stderr

    def test_a_job_with_the_same_name_is_printed_once(self):
        self.assertEqual(self.outcome("virtual:", "receipt 1"), (0, "printed\n", ""))
        self.assertEqual(self.outcome("virtual:", "receipt 1"), (0, "printed before\n", ""))

    def test_a_job_that_may_be_on_paper_is_not_sent_again(self):
        for _ in range(2):
            code, text, _ = self.outcome("virtual:,cut-after-in=300", "receipt 1", "text\n" * 100)
            self.assertEqual(code, 6)
            self.assertRegex(text, r"^call the staff: link lost after \d+ of 500 bytes")

    def test_a_refused_job_is_printed_when_it_is_sent_again(self):
        code, text, _ = self.outcome("virtual:,coverOpen=true", "receipt 1")
        self.assertEqual((code, text), (1, "refused: cover open\n"))
        code, _, error = self.outcome(f"unix:{self.folder}/nobody", "receipt 1")
        self.assertEqual(code, 1)
        self.assertIn("cannot be reached", error)
        self.assertEqual(self.outcome("virtual:", "receipt 1"), (0, "printed\n", ""))

    def test_a_journal_that_cannot_be_used_causes_an_error_message(self):
        result = self.run_program(EXAMPLES / "print_once", "virtual:", "receipt 1", "text\n", "/proc/jobs.db")
        self.assertEqual(result.returncode, 2)
        self.assertIn("the journal /proc/jobs.db: ", result.stderr)


# A Python without a sanitizer cannot load a library that was built with one.
@unittest.skipIf("-fsanitize" in os.environ["CXXFLAGS"], "the library is built with a sanitizer")
class ExampleInPython(ProgramTest):
    def test_the_example_reads_the_printer_state_and_prints_the_text(self):
        result = self.run_program(sys.executable, PRINT_PY, "virtual:", "text\n")
        self.assertEqual((result.returncode, result.stdout, result.stderr), (0, "on line\nprinted \n", ""))

    def test_the_example_reports_why_a_job_was_refused(self):
        result = self.run_program(sys.executable, PRINT_PY, "virtual:,coverOpen=true", "text\n")
        self.assertEqual((result.returncode, result.stdout), (1, "off line\nrefused cover open\n"))

    def test_an_unconfirmed_job_has_its_own_exit_status(self):
        result = self.run_program(sys.executable, PRINT_PY, "virtual:,cut-after-in=300", "text\n" * 100)
        self.assertEqual(result.returncode, 6)
        self.assertIn("unconfirmed link lost", result.stdout)

    def test_the_example_reports_that_the_printer_cannot_be_reached(self):
        result = self.run_program(sys.executable, PRINT_PY, f"unix:{self.folder}/nobody", "text\n")
        self.assertEqual(result.returncode, 1)
        self.assertIn("cannot be reached", result.stderr)


if __name__ == "__main__":
    unittest.main()
