"""Printers that the test implements without the virtual printer's code, over TCP: each confirms a job in its own
way."""

import os
import pty
import select
import socket
import threading
import time

from harness import DEADLINE, Case, eventually, main, run, start

RECEIPT = b"1 Espresso        1.80\n" * 10
IMAGE_HEAD = b"\x1d\x76\x30\x00\x0b\x00\x01\x00"  # eleven bytes of dots follow
ASKS_ID = b"\x1d\x28\x48\x06\x00\x30\x30ABCD"
ASKS_IN_ORDER = b"\x1d\x72\x01"
FLOW_CONTROL = b"\x13\x11"
UNASKED_STATUS = b"\x14\x00\x00\x0f"
ID_OF_ANOTHER_JOB = b"\x37\x22A2BC\x00"  # the byte 2 has the form of a real-time status


class OrdinaryPrinter:
    """A printer that answers `10 04 n`. It also answers a request in the data if `knows` contains the first two bytes
    of the request. It prints without delay. While its cover is open, it stores all commands; it prints them after the
    cover is closed. After an unknown escape, it skips one byte."""

    def __init__(self, *knows: bytes, opens_in_job: bool = False, unasked: bytes = b""):
        self.knows, self.opens_in_job, self.unasked = knows, opens_in_job, unasked
        self.paper, self.asked = b"", []
        self.last_data = 0.0
        self.is_open = False
        self.held: list[bytes] = []
        self.lock = threading.Lock()

    def serve(self, connection: socket.socket):
        self.connection, unread = connection, b""
        while more := connection.recv(4096):
            unread += more
            while taken := self.take(unread):
                unread = unread[taken:]

    def take(self, unread: bytes) -> int:
        """Handles the first command of `unread`, and returns its number of bytes; 0 if the command is not complete."""
        if not unread:
            return 0
        length = self.length(unread)
        if length == 0 or len(unread) < length:
            return 0
        command = unread[:length]
        with self.lock:
            if command[:2] == b"\x10\x04":
                self.asked.append(command)
                self.send(self.status(command[2]))
            else:
                self.held.append(command)
                self.print_held()
        return length

    def send(self, answer: bytes):
        """Sends `unasked`, then the answer. Repeats the flow control bytes of `unasked` between any two bytes of the answer."""
        inside = bytes(byte for byte in self.unasked if byte in FLOW_CONTROL)
        self.connection.sendall(self.unasked + inside.join(bytes([byte]) for byte in answer))

    @staticmethod
    def length(unread: bytes) -> int:
        if unread[0] not in b"\x10\x1b\x1d":
            return 1
        if len(unread) < 2:
            return 0
        if unread[:2] == b"\x1d\x28":
            return 5 + unread[3] + 256 * unread[4] if len(unread) >= 5 else 0
        if unread[:2] == b"\x1d\x76":
            return 8 + unread[4] * unread[6] if len(unread) >= 8 else 0
        return 3 if unread[:2] in (b"\x10\x04", b"\x1d\x72") else 2

    def status(self, number: int) -> bytes:
        if not self.is_open:
            return b"\x12"
        return {1: b"\x1a", 2: b"\x16"}.get(number, b"\x12")

    def print_held(self):
        while self.held and not self.is_open:
            command = self.held.pop(0)
            if command[:2] in (b"\x1d\x28", b"\x1d\x72"):
                self.asked.append(command)
                if command[:2] in self.knows:
                    answer = b"\x37\x22" + command[7:] + b"\0" if command[:2] == b"\x1d\x28" else b"\0"
                    self.send(answer)
            elif command[0] == 0x1b:
                self.asked.append(command)
            elif command[0] >= 0x20 or command == b"\n":
                self.paper += command
                self.last_data = time.monotonic()
                self.is_open, self.opens_in_job = self.opens_in_job, False

    def close_cover(self):
        with self.lock:
            self.is_open = False
            self.print_held()


KNOWS_ID, KNOWS_IN_ORDER = b"\x1d\x28", b"\x1d\x72"


class OrdinaryPrinters(Case):
    def printed_on(self, printer: OrdinaryPrinter, *options: str, data: bytes = RECEIPT, keys: str = ""):
        peer = self.peer(printer.serve)
        return run("-d", peer.place + keys, "-e", "escpos", "print", *options, "-", "--json", data=data)

    def assertPrinted(self, proof: str, result):
        self.assertExit(0, result)
        self.assertEqual((result.json()["outcome"], result.json()["proof"]), ("printed", proof))

    def test_a_printer_that_supports_process_ids_confirms_by_process_id(self):
        for knows in ((KNOWS_ID, KNOWS_IN_ORDER), (KNOWS_ID,)):
            printer = OrdinaryPrinter(*knows)
            self.assertPrinted("process-id", self.printed_on(printer))
            self.assertEqual(printer.paper, RECEIPT)
            escapes = [command for command in printer.asked if command[:1] == b"\x1b"]
            self.assertEqual(len(escapes), 2, "of the block, the question's reset and its mark alone")

    def test_a_printer_that_supports_only_the_in_order_status_confirms_by_the_in_order_status(self):
        printer = OrdinaryPrinter(KNOWS_IN_ORDER)
        self.assertPrinted("in-order", self.printed_on(printer))
        self.assertEqual(printer.paper, RECEIPT)

    def test_a_job_on_a_printer_without_a_proof_is_unconfirmed_directly_after_its_data(self):
        printer = OrdinaryPrinter()
        result = self.printed_on(printer)
        self.assertExit(6, result)
        self.assertEqual((result.json()["outcome"], result.json()["proof"]), ("unconfirmed", "none"))
        eventually(lambda: printer.paper == RECEIPT, "the printer has taken the data")
        self.assertLess(time.monotonic() - printer.last_data, 4)

    def test_the_proof_named_in_the_device_text_is_used_without_asking_the_printer(self):
        printer = OrdinaryPrinter(KNOWS_ID, KNOWS_IN_ORDER)
        self.assertPrinted("process-id", self.printed_on(printer, keys=",proof=process-id"))
        questions = [command for command in printer.asked if command[:1] != b"\x10"]
        self.assertEqual([question[:2] for question in questions], [KNOWS_ID], "and nothing of the checked block")

    def test_status_requests_in_the_data_do_not_affect_the_proof(self):
        for question in (ASKS_ID, ASKS_IN_ORDER):
            for data in (question + RECEIPT, IMAGE_HEAD + question.ljust(11, b"\x55") + RECEIPT):
                for knows, proof in (((KNOWS_ID, KNOWS_IN_ORDER), "process-id"), ((KNOWS_IN_ORDER,), "in-order")):
                    printer = OrdinaryPrinter(*knows)
                    self.assertPrinted(proof, self.printed_on(printer, data=data))
                    self.assertEqual(printer.paper, RECEIPT)

    def test_unasked_bytes_neither_fake_nor_prevent_the_proof(self):
        for unasked in (FLOW_CONTROL, UNASKED_STATUS, ID_OF_ANOTHER_JOB, FLOW_CONTROL + UNASKED_STATUS + ID_OF_ANOTHER_JOB):
            for knows, proof in (((KNOWS_ID, KNOWS_IN_ORDER), "process-id"), ((KNOWS_IN_ORDER,), "in-order")):
                with self.subTest(unasked=unasked, proof=proof):
                    printer = OrdinaryPrinter(*knows, unasked=unasked)
                    self.assertPrinted(proof, self.printed_on(printer))
                    self.assertEqual(printer.paper, RECEIPT)
            result = self.printed_on(OrdinaryPrinter(unasked=unasked))
            self.assertEqual((result.json()["outcome"], result.json()["proof"]), ("unconfirmed", "none"), unasked)

    def test_a_job_is_confirmed_after_the_printer_has_paused(self):
        for knows, proof in (((KNOWS_ID,), "process-id"), ((KNOWS_IN_ORDER,), "in-order")):
            printer = OrdinaryPrinter(*knows, opens_in_job=True)
            peer = self.peer(printer.serve)
            master, terminal = pty.openpty()
            process = start("-d", f"{peer.place},proof={proof}", "-e", "escpos", "print", self.file("job", RECEIPT),
                            stderr=terminal)
            os.close(terminal)
            self.assertIn(b"cover open: waiting", self.shown_until(master, b"cover open: waiting"))
            self.assertLess(len(printer.paper), len(RECEIPT))
            printer.close_cover()
            out, _ = process.communicate(timeout=DEADLINE)
            os.close(master)
            self.assertEqual(process.returncode, 0, out)
            self.assertEqual(printer.paper, RECEIPT)

    @staticmethod
    def shown_until(master: int, words: bytes) -> bytes:
        shown, end = b"", time.monotonic() + DEADLINE
        while words not in shown and time.monotonic() < end:
            ready, _, _ = select.select([master], [], [], 1)
            try:
                shown += os.read(master, 4096) if ready else b""
            except OSError:  # the other side has closed the connection
                break
        return shown


if __name__ == "__main__":
    main()
