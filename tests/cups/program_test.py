"""The arguments, environment, exit code and descriptors of the back end, started as a scheduler would start it."""

import select
import socket
import struct
import subprocess
import time

from harness import DEADLINE, eventually, main
from program import CANCEL, DONE, FAILED, HOLD, STOP, ProgramCase
from queues import QUOR, RECEIPT, least, printed

SOFT_RESET, DRAIN, BIDI, DEVICE_ID, STATE = 1, 2, 3, 4, 5
OK, IO_ERROR, NO_RESPONSE, NOT_IMPLEMENTED = 1, 2, 4, 7


class Data(ProgramCase):
    def test_the_data_of_a_job_is_read_from_a_file_or_from_a_pipe(self):
        printer = self.simulator()
        code, said = self.run_to_end(self.start(printer, self.file("data", RECEIPT)))
        self.assertEqual((code, printed(printer)), (DONE, len(RECEIPT)), said)
        self.assertIn("PAGE: 1 1\n", said)
        code, said = self.run_to_end(self.start(printer, copies=3, options="job-uuid=b"), RECEIPT)
        self.assertEqual((code, printed(printer)), (DONE, 2 * len(RECEIPT)), "the filters make the copies of a pipe")

    def test_a_job_without_data_is_canceled(self):
        printer = self.simulator()
        for process, data in ((self.start(printer), b""), (self.start(printer, self.file("empty", b"")), None)):
            code, said = self.run_to_end(process, data)
            self.assertEqual(code, CANCEL, said)
            self.assertIn("ERROR: the job cannot be printed: it is empty: there is nothing to print", said)
        self.assertEqual(printed(printer), 0)

    def test_a_job_whose_data_cannot_be_read_is_held(self):
        code, said = self.run_to_end(self.start(self.simulator(), str(self.folder / "gone")))
        self.assertEqual(code, HOLD, said)
        self.assertIn("ERROR: the job cannot be read: No such file", said)


class Copies(ProgramCase):
    def test_copies_are_confirmed_one_by_one(self):
        printer = self.simulator()
        code, said = self.run_to_end(self.start(printer, self.file("data", RECEIPT), copies=3))
        self.assertEqual((code, printed(printer)), (DONE, 3 * len(RECEIPT)), said)
        for copy in (1, 2, 3):
            self.assertIn(f"PAGE: {copy} 1\n", said)

    def test_copies_can_be_confirmed_together(self):
        printer = self.simulator()
        code, said = self.run_to_end(self.start(printer, self.file("data", RECEIPT), copies=3, query="?copies=together"))
        self.assertEqual((code, printed(printer)), (DONE, 3 * len(RECEIPT)), said)
        self.assertIn("PAGE: 1 3\n", said)

    def test_copies_that_are_printed_are_not_repeated_when_the_job_is_restarted(self):
        printer = self.simulator("tcp:0", "--set", "speed=400")
        file = self.file("data", RECEIPT * 4)
        process = self.start(printer, file, copies=3)
        eventually(lambda: len(RECEIPT) * 5 < printer.state()["printedBytes"], "the second copy is under way")
        process.terminate()
        code, said = self.run_to_end(process)
        self.assertEqual(code, DONE, said)
        before = printed(printer)
        self.assertEqual(self.run_to_end(self.start(printer, file, copies=3))[0], HOLD, "nobody knows of the second")
        self.assertEqual(printed(printer), before)
        code, said = self.run_to_end(self.start(printer, file, copies=3))
        self.assertEqual(code, DONE, said)
        self.assertEqual(printed(printer) - before, 2 * len(RECEIPT) * 4)


class Stopped(ProgramCase):
    def test_a_stopped_back_end_ends_with_status_0_within_a_second(self):
        printer = self.simulator("tcp:0", "--set", "speed=200")
        file = self.file("data", RECEIPT * 50)

        def stopped() -> float:
            before = printer.state()["printedBytes"]
            process = self.start(printer, file, options="")
            eventually(lambda: printer.state()["printedBytes"] > before, "it prints")
            began = time.monotonic()
            process.terminate()
            self.assertEqual(process.wait(DEADLINE), DONE)
            return time.monotonic() - began

        self.assertLess(least(stopped, 1), 1)

    def test_a_job_is_held_if_another_process_than_the_scheduler_stops_the_back_end(self):
        printer = self.simulator("tcp:0", "--set", "speed=200")
        process = self.start(printer, self.file("data", RECEIPT * 50))
        eventually(lambda: printer.state()["printedBytes"] > 0, "it prints")
        subprocess.run(["sh", "-c", f"kill -TERM {process.pid}"], check=True)
        code, said = self.run_to_end(process)
        self.assertEqual(code, HOLD, said)
        self.assertIn("ERROR: unconfirmed: cancelled", said)

    def test_a_waiting_back_end_ends_when_its_scheduler_has_ended(self):
        printer = self.simulator()
        printer.set(coverOpen=True)
        process = self.start(printer, self.file("data", RECEIPT))
        while b"INFO: waiting: cover open\n" not in process.stderr.readline():
            pass
        process.stderr.close()
        process.wait(DEADLINE)
        printer.set(coverOpen=False)
        self.assertEqual(printed(printer), 0)


class JobOfAClass(ProgramCase):
    def test_a_refused_job_of_a_class_is_printed_on_the_next_printer(self):
        printer = self.simulator()
        printer.set(coverOpen=True)
        code, said = self.run_to_end(self.start(printer, self.file("data", RECEIPT), CLASS="tills"))
        self.assertEqual(code, FAILED, said)
        other = self.simulator()
        self.assertEqual(self.run_to_end(self.start(other, self.file("data", RECEIPT), CLASS="tills"))[0], DONE)
        self.assertEqual(printed(other), len(RECEIPT))

    def test_an_unconfirmed_job_of_a_class_is_not_printed_on_the_next_printer(self):
        printer = self.simulator("tcp:0", "--set", "cut-after-in=45")
        code, said = self.run_to_end(self.start(printer, self.file("data", RECEIPT), CLASS="tills"))
        self.assertEqual(code, HOLD, said)


class Arguments(ProgramCase):
    def test_arguments_that_describe_no_job_are_refused(self):
        for arguments in (("1",), ("1", "anna", "receipt", "none", "", "/dev/null")):
            said = subprocess.run([QUOR, *arguments], capture_output=True, timeout=DEADLINE,
                                  env={"DEVICE_URI": "quor:/usb", "CUPS_CACHEDIR": str(self.folder)})
            self.assertEqual(said.returncode, STOP)
            self.assertRegex(said.stderr.decode(), "^ERROR: (usage: quor|copies \"none\": takes)")


class SideChannel(ProgramCase):
    def setUp(self):
        super().setUp()
        self.ours, self.theirs = socket.socketpair()
        self.addCleanup(self.ours.close)
        self.addCleanup(self.theirs.close)
        self.ours.settimeout(DEADLINE)

    def ask(self, command: int):
        self.ours.sendall(struct.pack(">BBH", command, 0, 0))

    def answer(self) -> tuple[int, int, bytes]:
        packet = self.ours.recv(65536)
        command, status, length = struct.unpack_from(">BBH", packet)
        return command, status, packet[4:4 + length]

    def test_the_back_end_reports_the_identity_and_the_state_of_the_printer(self):
        printer = self.simulator()
        printer.set(receiptPaperEmpty=True)
        process = self.start(printer, self.file("data", RECEIPT), query="?model=T20&serial=4711", channel=self.theirs)
        while b"INFO: waiting: paper out\n" not in process.stderr.readline():
            pass
        self.ask(DEVICE_ID)
        self.assertEqual(self.answer(), (DEVICE_ID, OK, b"MFG:quor dalvane;MDL:T20;SN:4711;CLS:PRINTER;"))
        self.ask(STATE)
        self.assertEqual(self.answer(), (STATE, OK, bytes([4 + 32])))
        self.ask(BIDI)
        self.assertEqual(self.answer(), (BIDI, OK, b"\1"))
        self.ask(SOFT_RESET)
        self.assertEqual(self.answer(), (SOFT_RESET, NOT_IMPLEMENTED, b""))
        printer.set(receiptPaperEmpty=False)
        self.assertEqual(process.wait(DEADLINE), DONE)

    def test_the_back_end_answers_a_drain_request_only_after_the_data_is_printed(self):
        printer = self.simulator()
        printer.set(coverOpen=True)
        process = self.start(printer, self.file("data", RECEIPT), channel=self.theirs)
        while b"INFO: waiting: cover open\n" not in process.stderr.readline():
            pass
        self.ask(DRAIN)
        printer.set(coverOpen=False, receiptPaperEmpty=True)
        while b"INFO: waiting: paper out\n" not in process.stderr.readline():
            pass
        self.assertEqual(select.select([self.ours], [], [], 0)[0], [], "nothing is drained yet")
        printer.set(receiptPaperEmpty=False)
        self.assertEqual(self.answer(), (DRAIN, OK, b""))
        self.assertEqual(process.wait(DEADLINE), DONE)

    def test_the_back_end_reports_a_failed_drain_if_the_link_is_lost(self):
        printer = self.simulator()
        printer.set(coverOpen=True)
        process = self.start(printer, self.file("data", RECEIPT * 40), channel=self.theirs)
        while b"INFO: waiting: cover open\n" not in process.stderr.readline():
            pass
        self.ask(DRAIN)
        printer.control({"fault": {"cut-after-in": 45}})
        printer.set(coverOpen=False)
        self.assertEqual(self.answer(), (DRAIN, IO_ERROR, b""))
        self.assertEqual(process.wait(DEADLINE), HOLD)

    def test_the_back_end_immediately_refuses_a_drain_request_while_data_is_arriving(self):
        printer = self.simulator()
        process = self.start(printer, channel=self.theirs)
        process.stdin.write(RECEIPT)
        process.stdin.flush()
        self.ask(DRAIN)
        self.assertEqual(self.answer(), (DRAIN, NOT_IMPLEMENTED, b""))
        self.assertEqual(printed(printer), 0)
        process.stdin.write(RECEIPT)
        process.stdin.close()
        self.assertEqual(process.wait(DEADLINE), DONE)
        self.assertEqual(printed(printer), 2 * len(RECEIPT))

    def test_the_back_end_answers_a_drain_request_after_the_data_pipe_is_closed(self):
        printer = self.simulator()
        printer.set(coverOpen=True)
        process = self.start(printer, channel=self.theirs)
        process.stdin.write(RECEIPT)
        process.stdin.close()
        self.ask(DRAIN)
        while b"INFO: waiting: cover open\n" not in process.stderr.readline():
            pass
        printer.set(coverOpen=False)
        self.assertEqual(self.answer(), (DRAIN, OK, b""))
        self.assertEqual(process.wait(DEADLINE), DONE)


if __name__ == "__main__":
    main()
