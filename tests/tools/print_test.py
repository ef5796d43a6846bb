"""The print command: its bytes, its answers, and its end by a signal."""

import collections
import fcntl
import json
import os
import pty
import re
import signal
import socket
import threading
import time

from harness import (DEADLINE, STATUS_KEYS, STATUS_REQUEST, Case, eventually, finish, main, receive, run, start,
                     status_block)

KEYS = {"ok", "device", "outcome", "proof", "resultCode", "bytesTotal", "bytesAccepted", "status", "error"}
EVERY_BYTE = bytes(range(256))
RESET_COUNTER = b"\x1b\x1e\x45\x00"


def count_etbs(connection: socket.socket) -> bytes:
    """A printer in line mode that counts, until the host leaves. Returns all that it received."""
    seen, unread = bytearray(), b""
    while more := connection.recv(4096):
        seen.extend(more)
        unread += more
        counter = seen[seen.rfind(RESET_COUNTER) + 4:].count(b"\x17") if RESET_COUNTER in seen else 0
        while STATUS_REQUEST in unread:
            unread = unread.split(STATUS_REQUEST, 1)[1]
            connection.sendall(status_block(counter=counter))
    return bytes(seen)


class Printing(Case):
    def each_link(self, *arguments: str):
        for listen in ("tcp:0", f"unix:{self.folder}/printer", "pty:"):
            with self.subTest(listen=listen):
                yield self.simulator(listen, *arguments)

    def test_a_printed_job_has_every_key_and_no_error(self):
        for simulator in self.each_link():
            for emulation in ("line", "escpos"):
                result = run("-d", simulator.place, "-e", emulation, "print", "-", "--json", data=b"one\ntwo\n")
                self.assertExit(0, result)
                answer = result.json()
                self.assertEqual(set(answer), KEYS)
                self.assertEqual((answer["ok"], answer["outcome"], answer["resultCode"]), (True, "printed", 0))
                self.assertEqual((answer["bytesTotal"], answer["bytesAccepted"]), (8, 8))
                self.assertEqual(set(answer["status"]), STATUS_KEYS)

    def test_people_read_that_it_was_printed(self):
        result = run("-d", "virtual:", "print", "-", data=b"x" * 1203 + b"\n")
        self.assertExit(0, result)
        self.assertEqual((result.out, result.err), ("virtual: printed: the printer confirmed all 1,204 bytes\n", ""))

    def test_an_empty_job_is_a_usage_error(self):
        contacted = []
        place = self.peer(contacted.append).place
        for job in ("-", self.file("empty", b"")):
            result = run("-d", place, "print", job, "--json", data=b"")
            self.assertExit(2, result)
            answer = result.json()
            self.assertEqual(set(answer), KEYS)
            self.assertEqual((answer["ok"], answer["outcome"], answer["bytesAccepted"]), (False, "refused", 0))
            self.assertIn("there is nothing to print", answer["error"])
        self.assertEqual(contacted, [])

    def test_a_job_whose_device_was_forgotten_is_refused(self):
        result = run("print", "-", "--json", data=b"text\n")
        self.assertExit(2, result)
        answer = result.json()
        self.assertEqual(set(answer), KEYS)
        self.assertEqual((answer["outcome"], answer["bytesAccepted"], answer["device"]), ("refused", 0, None))
        for way in ("--device tcp:HOST:PORT", "QUORPORT_DEVICE", "--device virtual:"):
            self.assertIn(way, answer["error"])

    def test_the_answer_names_the_device(self):
        for device, code in (("virtual:", 0), ("virtual:,coverOpen=true", 4), (f"unix:{self.folder}/none", 3)):
            result = run("-d", device, "print", "-", "--json", data=b"text\n")
            self.assertExit(code, result)
            self.assertEqual(result.json()["device"], device)

    def test_an_error_at_the_start_has_an_outcome(self):
        for arguments in (("--log", self.folder), ("-p", "BT:nobody"), ("--receipt", self.folder / "no" / "a.txt")):
            result = run("-d", "virtual:", "print", "-", *arguments, "--json", data=b"text\n")
            self.assertEqual(set(result.json()), KEYS)
            self.assertEqual((result.json()["outcome"], result.json()["bytesAccepted"]), ("refused", 0))

    def test_an_unchecked_job_is_unconfirmed_at_best(self):
        for simulator in self.each_link():
            result = run("-d", simulator.place, "print", "--unchecked", "-", "--json", data=b"text\n")
            self.assertExit(6, result)
            answer = result.json()
            self.assertEqual(set(answer), KEYS)
            self.assertEqual((answer["ok"], answer["outcome"], answer["status"]), (False, "unconfirmed", None))
            self.assertEqual((answer["bytesTotal"], answer["bytesAccepted"]), (5, 5))

    def test_the_answer_names_the_proof_that_was_used(self):
        for proofs, used in (("block", "block"), ("process-id+in-order", "process-id"), ("in-order", "in-order")):
            device = f"virtual:,proofs={proofs}"
            answer = run("-d", device, "-e", "escpos", "print", "-", "--json", data=b"text\n").json()
            self.assertEqual((answer["outcome"], answer["proof"]), ("printed", used))

    def test_a_named_proof_is_the_one_that_is_used(self):
        for proof in ("block", "process-id", "in-order"):
            answer = run("-d", "virtual:", "-e", "escpos", "print", "--proof", proof, "-", "--json", data=b"text\n").json()
            self.assertEqual((answer["outcome"], answer["proof"]), ("printed", proof))

    def test_the_proof_of_the_device_is_used_and_the_option_beats_it(self):
        for options, used in (((), "in-order"), (("--proof", "process-id"), "process-id"), (("--proof", "auto"), "block")):
            result = run("-d", "virtual:,proof=in-order", "-e", "escpos", "print", *options, "-", "--json", data=b"text\n")
            self.assertEqual((result.json()["outcome"], result.json()["proof"]), ("printed", used))

    def test_a_proof_that_had_to_be_asked_for_is_told_with_what_saves_the_question(self):
        asked = run("-d", "virtual:proofs=process-id", "-e", "escpos", "print", "-", data=b"text\n")
        self.assertIn("hint: ,proof=process-id after the device saves", asked.out)
        silent = run("-d", "virtual:proofs=none", "-e", "escpos", "print", "-", data=b"text\n")
        self.assertIn("hint: ,proof=none after the device saves", silent.err)
        for options in (("-d", "virtual:"), ("-d", "virtual:,proof=block", "-e", "escpos")):
            self.assertNotIn("hint", run(*options, "print", "-", data=b"text\n").out)

    def test_a_job_without_a_proof_is_unconfirmed_at_best(self):
        for option in (("--proof", "none"), ("--unchecked",)):
            result = run("-d", "virtual:", "print", *option, "-", "--json", data=b"text\n")
            self.assertExit(6, result)
            self.assertEqual((result.json()["outcome"], result.json()["proof"]), ("unconfirmed", "none"))

    def test_a_proof_that_there_is_not_is_a_usage_error(self):
        result = run("-d", "virtual:", "print", "--proof", "hope", "-", data=b"text\n")
        self.assertExit(2, result)
        self.assertIn("auto, block, process-id, in-order or none", result.err)

    def test_a_printer_that_is_not_ready_is_refused_with_the_cause(self):
        for simulator in self.each_link("--set", "coverOpen=true"):
            for emulation in ("line", "escpos"):
                result = run("-d", simulator.place, "-e", emulation, "print", "-", "--json", data=b"text\n")
                self.assertExit(4, result)
                answer = result.json()
                self.assertEqual((answer["ok"], answer["outcome"], answer["bytesAccepted"]), (False, "refused", 0))
                self.assertIn("cover open", answer["error"])
                self.assertIn("next: ", result.err)

    def test_paper_in_the_exit_is_waited_for_and_then_refused(self):
        result = run("-d", "virtual:,paperPresent=true", "print", "-", "--json", "--hold-print-timeout", "0", data=b"x\n")
        self.assertExit(4, result)
        self.assertEqual(result.json()["resultCode"], -3)

    def test_a_job_that_is_not_confirmed_in_time_is_unconfirmed(self):
        result = run("-d", "virtual:,speed=1", "print", "-", "--json", "--end-timeout", "0", data=b"slow text\n" * 9)
        self.assertExit(6, result)
        self.assertEqual((result.json()["outcome"], result.json()["bytesAccepted"]), ("unconfirmed", 90))

    def test_an_accessory_that_cannot_be_opened_is_refused(self):
        result = run("-d", f"unix:{self.folder}/none", "print", "-", "--json", data=b"text\n")
        self.assertExit(3, result)
        answer = result.json()
        self.assertEqual(set(answer), KEYS)
        self.assertEqual((answer["outcome"], answer["bytesTotal"], answer["bytesAccepted"]), ("refused", 5, 0))

    def test_files_that_cannot_be_read_are_named_and_nothing_is_sent(self):
        contacted = []
        peer = self.peer(contacted.append)
        for name in ("none", "."):
            result = run("-d", peer.place, "print", str(self.folder / name), "--json")
            self.assertExit(2, result)
            self.assertEqual((result.json()["ok"], result.json()["outcome"]), (False, "refused"))
            self.assertIn(str(self.folder), result.err)
        with open(os.devnull, "wb") as unreadable:
            self.assertExit(2, run("-d", peer.place, "print", "-", stdin=unreadable))
        self.assertEqual(contacted, [])

    def test_a_terminal_shows_the_progress_and_a_file_does_not(self):
        job = self.file("job", b"text\n" * 200)
        ours, theirs = pty.openpty()
        process = start("-d", "virtual:", "print", job, stderr=theirs)
        os.close(theirs)
        finish(process, 0)
        shown = b""
        try:
            while more := os.read(ours, 4096):
                shown += more
        except OSError:
            pass  # how the end of a terminal reads
        os.close(ours)
        self.assertIn(b"1,000 of 1,000 bytes", shown)
        self.assertTrue(shown.endswith(b"\r\x1b[K"), shown)
        self.assertEqual(run("-d", "virtual:", "print", job).err, "")


class Receipts(Case):
    def test_a_receipt_is_the_paper_as_text(self):
        target = self.folder / "receipt.txt"
        self.assertExit(0, run("-d", "virtual:", "print", "-", "--receipt", target, data=b"Bread  4.20\n"))
        self.assertEqual(target.read_text().strip(), "Bread  4.20")

    def test_a_receipt_holds_no_control_character_of_the_job(self):
        target = self.folder / "receipt.txt"
        self.assertExit(0, run("-d", "virtual:", "print", "-", "--receipt", target, data=bytes(range(0x80, 0xa0)) + b"a\x7f\x05\x07\xc2\x9b\n"))
        self.assertTrue(target.read_text().replace("\n", "").isprintable(), target.read_text())

    def test_a_receipt_is_the_paper_as_a_picture(self):
        target = self.folder / "receipt.png"
        self.assertExit(0, run("-d", "virtual:", "print", "-", "--receipt", target, data=b"Bread  4.20\n"))
        self.assertTrue(target.read_bytes().startswith(b"\x89PNG\r\n\x1a\n"))

    def test_only_the_printer_that_is_built_in_has_a_receipt(self):
        contacted = []
        peer = self.peer(contacted.append)
        result = run("-d", peer.place, "print", "-", "--receipt", self.folder / "a.txt", data=b"x\n")
        self.assertExit(2, result)
        self.assertIn("virtual:", result.err)
        self.assertEqual(contacted, [])

    def test_the_receipt_is_of_the_printer_that_the_port_name_chooses(self):
        target = self.folder / "receipt.txt"
        peer = self.peer(lambda connection: None)
        self.assertExit(0, run("-d", peer.place, "-d", "virtual:B", "-p", "BT:B", "print", "-", "--receipt", target,
                               data=b"text\n"))
        self.assertEqual(target.read_text().strip(), "text")

    def test_a_receipt_that_cannot_be_written_is_said_before_anything_is_sent(self):
        result = run("-d", "virtual:", "print", "-", "--receipt", self.folder / "none" / "a.txt", "--json", data=b"text\n")
        self.assertExit(2, result)
        self.assertEqual(result.json()["bytesAccepted"], 0)

    def test_a_receipt_that_does_not_fit_on_the_disk_is_a_failure_of_a_printed_job(self):
        target = self.folder / "receipt.txt"
        target.symlink_to("/dev/full")
        result = run("-d", "virtual:", "print", "-", "--receipt", target, "--json", data=b"text\n")
        self.assertExit(1, result)
        answer = result.json()
        self.assertEqual((answer["ok"], answer["outcome"], answer["bytesAccepted"]), (False, "printed", 5))
        self.assertIn("No space left on device", answer["error"])
        self.assertIn("No space left on device", result.err)

    def test_an_older_receipt_is_kept_when_nothing_was_printed(self):
        target = self.folder / "receipt.txt"
        target.write_text("older")
        self.assertExit(3, run("-d", "virtual:A", "-p", "BT:B", "print", "-", "--receipt", target, data=b"text\n"))
        self.assertEqual(target.read_text(), "older")


class ByteForByte(Case):
    """A peer receives the job, once and whole."""

    def collect(self, data: bytes, read: int, *arguments: str) -> bytes:
        received = bytearray()

        def handle(connection):
            while more := connection.recv(read):
                received.extend(more)

        peer = self.peer(handle)
        result = run("-d", peer.place, "print", "--unchecked", "--json", *arguments, "-", data=data)
        self.assertExit(6, result)
        self.assertEqual(result.json()["bytesAccepted"], len(data))
        peer.wait_until_idle()
        return bytes(received)

    def test_every_byte_value_passes(self):
        self.assertEqual(self.collect(EVERY_BYTE * 3, 4096), EVERY_BYTE * 3)

    def test_a_mebibyte_passes_through_reads_of_seven_bytes(self):
        data = EVERY_BYTE * 4096
        self.assertEqual(self.collect(data, 7), data)

    def test_a_pipe_that_stalls_is_read_to_its_end(self):
        simulator = self.simulator()
        began = time.monotonic()
        process = start("-d", simulator.place, "print", "-", "--json", stdin=-1)
        process.stdin.write(b"first half, ")
        process.stdin.flush()
        self.assertEqual(run("-d", simulator.place, "online").code, 0)  # nothing is open meanwhile
        result = finish(process, began, b"second half\n")
        self.assertExit(0, result)
        self.assertEqual(result.json()["bytesAccepted"], 24)

    def test_a_checked_job_reaches_a_peer_whole_and_is_confirmed_by_its_count(self):
        job = b"A checked job\n"
        seen = []
        peer = self.peer(lambda connection: seen.append(count_etbs(connection)))
        result = run("-d", peer.place, "print", "-", "--json", data=job)
        self.assertExit(0, result)
        peer.wait_until_idle()
        self.assertEqual(seen[0].count(job), 1)

    def test_a_printer_that_takes_everything_and_counts_nothing_is_never_believed(self):
        def handle(connection):
            unread = b""
            while more := connection.recv(4096):
                unread += more
                while STATUS_REQUEST in unread:
                    unread = unread.split(STATUS_REQUEST, 1)[1]
                    connection.sendall(status_block())

        result = run("-d", self.peer(handle).place, "-t", "1000", "print", "-", "--json", data=b"text\n")
        self.assertExit(6, result)
        self.assertEqual(result.json()["outcome"], "unconfirmed")


class LostLinks(Case):
    def test_a_job_on_a_cut_link_is_printed_only_if_it_is_on_paper(self):
        job = self.file("job", b"0123456789" * 5)
        seen = set()
        for count in range(0, 140, 7):
            simulator = self.simulator("tcp:0", "--set", f"cut-after-in={count}")
            result = run("-d", simulator.place, "print", job, "--json")
            answer = result.json()
            outcome = answer["outcome"]
            self.assertEqual(outcome, {0: "printed", 5: "refused", 6: "unconfirmed"}.get(result.code), (count, result))
            self.assertEqual(answer["bytesAccepted"] == 0, outcome == "refused", result)
            if outcome == "printed":
                self.assertEqual(simulator.state()["printedBytes"], 50)
            seen.add(outcome)
            simulator.kill()
        self.assertLessEqual({"refused", "unconfirmed"}, seen)

    def test_a_reset_in_mid_job_is_not_a_success(self):
        def handle(connection):
            receive(connection, 1000)
            connection.setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, b"\1\0\0\0\0\0\0\0")

        result = run("-d", self.peer(handle).place, "print", "--unchecked", "--json", "-", data=b"x" * 8_000_000)
        self.assertExit(6, result)
        self.assertLess(result.json()["bytesAccepted"], 8_000_000)
        self.assertIn("link", result.json()["error"])

    def test_a_printer_that_reports_while_it_reads_slowly_gets_the_whole_job(self):
        taken = bytearray()
        ended = threading.Event()

        def handle(connection):
            try:
                while piece := connection.recv(700):
                    taken.extend(piece)
                    time.sleep(0.01)
                    connection.sendall(b"\x14")
            except OSError:
                pass  # a line after the last byte may arrive too late
            ended.set()

        data = b"a line of the receipt\n" * 1000
        result = run("-d", self.peer(handle, room=2048).place, "print", "--unchecked", "--json", "-", data=data)
        self.assertEqual(result.json()["bytesAccepted"], len(data))
        self.assertTrue(ended.wait(DEADLINE))
        self.assertEqual(bytes(taken), data)


class Interrupting(Case):
    def interrupted(self, process, *, by=signal.SIGINT, data: bytes | None = None):
        process.send_signal(by)
        result = finish(process, time.monotonic(), data)
        self.assertExit(128 + by, result)
        # Less than a close that waits for the printer takes.
        self.assertLess(result.seconds, 1.9, "a signal takes effect within a second")
        return result

    def test_a_job_under_way_is_cancelled_and_the_port_closed(self):
        for by in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
            simulator = self.simulator("tcp:0", "--set", "speed=50")
            process = start("-d", simulator.place, "print", self.file("job", b"line of text\n" * 1000), "--json")
            eventually(lambda: simulator.state()["buffered"] > 1000, "the job is under way")
            answer = self.interrupted(process, by=by).json()
            self.assertEqual((answer["ok"], answer["outcome"]), (False, "unconfirmed"))
            self.assertEqual(answer["bytesTotal"], 13000)
            self.assertGreater(answer["bytesAccepted"], 0)
            self.assertIn("cancelled", answer["error"])

    def test_the_printer_drops_the_rest(self):
        simulator = self.simulator("tcp:0", "--set", "speed=20")
        process = start("-d", simulator.place, "print", self.file("job", b"line of text\n" * 100))
        eventually(lambda: simulator.state()["buffered"] > 1000, "the whole job is in the printer")
        self.interrupted(process)
        eventually(lambda: simulator.state()["buffered"] == 0, "the printer has dropped the rest")
        self.assertLess(simulator.state()["printedBytes"], 1300)

    def test_a_printer_that_takes_nothing_does_not_hold_up_the_end(self):
        contact, stop = threading.Event(), threading.Event()

        def handle(connection):
            receive(connection, 1)
            contact.set()
            stop.wait(DEADLINE)

        place = self.peer(handle).place
        self.addCleanup(stop.set)
        process = start("-d", place, "print", "--unchecked", self.file("job", b"x" * 8_000_000))
        self.assertTrue(contact.wait(DEADLINE))
        self.interrupted(process)

    def test_the_outcome_is_reported_even_if_the_signal_arrives_while_the_port_closes(self):
        stop = threading.Event()
        self.addCleanup(stop.set)
        place = self.peer(lambda connection: stop.wait(DEADLINE), room=2048).place
        log = self.folder / "log"
        process = start("-d", place, "print", "--unchecked", self.file("job", b"x" * 20_000), "--json", "--log", log)
        eventually(lambda: log.exists() and b'"method":"-[ExternalAccessoryPort close]"' in log.read_bytes(),
                   "the port closes, and waits for the bytes under way")
        process.send_signal(signal.SIGINT)
        result = finish(process, time.monotonic())
        self.assertExit(130, result)
        answer = result.json()
        self.assertEqual((answer["outcome"], answer["bytesAccepted"]), ("unconfirmed", 20_000))

    def test_a_printed_job_remains_printed_if_a_signal_arrives_while_the_port_closes(self):
        """Nobody takes the log meanwhile, which holds up the end of the command, but not that of the connection."""
        closed = threading.Event()
        job = self.file("job", b"text\n")
        peer = self.peer(lambda connection: (count_etbs(connection), closed.set()))
        reader, writer = os.pipe()
        fcntl.fcntl(writer, fcntl.F_SETPIPE_SZ, 4096)
        process = start("-d", peer.place, "print", job, "--json", "--log", "-", stderr=writer)
        os.close(writer)
        self.assertTrue(closed.wait(DEADLINE))
        process.send_signal(signal.SIGINT)
        self.assertIsNone(process.poll(), "the command is still at its end")
        with open(reader, "rb") as log:
            log.read()
        result = finish(process, time.monotonic())
        self.assertExit(0, result)
        self.assertEqual(result.json()["outcome"], "printed")

    def test_an_exchange_under_way_ends_and_the_port_is_closed(self):
        contact, closed = threading.Event(), threading.Event()

        def handle(connection):
            receive(connection, 1)
            contact.set()
            while connection.recv(4096):
                pass
            closed.set()

        for command in ("firmware", "dipswitch", "button-security", "disconnect"):
            contact.clear()
            closed.clear()
            process = start("-d", self.peer(handle).place, command, "--json")
            self.assertTrue(contact.wait(DEADLINE))
            answer = self.interrupted(process).json()
            self.assertEqual(answer, {"ok": False, "error": "interrupted", "device": answer["device"]})
            self.assertTrue(closed.wait(DEADLINE), "the port is closed")

    def test_an_endless_retry_is_abandoned(self):
        """A port that has lost count of a command offers its rest without end: to a link that takes it each time,
        and to one that never does."""
        log = self.folder / "log"
        for command, faults in (("dipswitch", "no-space=4:120"), ("dipswitch", "no-space=4:120,no-space=8:600000"),
                                ("cancel", "no-space=4:120"), ("status", "no-space=2:120")):
            process = start("-t", "1000", "-d", f"virtual:,{faults}", command, "--json", "--log", log)
            eventually(lambda: self.most_offers(log) > 5, "the retry does not end")
            self.assertAnswers(f"virtual:,{faults}", {"ok": False, "error": "interrupted"}, self.interrupted(process))
            log.unlink()

    def test_a_job_whose_beginning_is_retried_on_and_on_is_given_up(self):
        log, job = self.folder / "log", self.file("job", b"text\n")
        for faults in ("no-space=4:120", "no-space=4:120,no-space=6:600000"):
            process = start("-t", "1000", "-d", f"virtual:,{faults}", "print", job, "--json", "--log", log)
            eventually(lambda: self.most_offers(log) > 5, "the retry does not end")
            answer = self.interrupted(process).json()
            self.assertEqual((answer["outcome"], answer["bytesAccepted"]), ("refused", 0))
            log.unlink()

    @staticmethod
    def most_offers(log) -> int:
        """How many times the same bytes were written, by the end of the log."""
        if not log.exists():
            return 0
        with log.open("rb") as file:
            file.seek(max(0, log.stat().st_size - 65536))
            end = file.read()
        offers = re.findall(rb'"line":(\d+),"method":"-\[ExternalAccessoryPort write:\]","message":"(<[^>]*>)"', end)
        return max(collections.Counter(offers).values(), default=0)

    def test_a_connection_that_is_being_made_is_given_up(self):
        place, job = self.silent_place(), self.file("job", b"text\n")
        for command, keys in ((("online",), {}), (("print", job), self.refused(5))):
            process = start("-d", place, *command, "--json")
            eventually(lambda: self.has_socket(process), "the port is about to connect")
            self.assertAnswers(place, {"ok": False, **keys, "error": "interrupted"}, self.interrupted(process))

    @staticmethod
    def refused(bytes_total: int) -> dict:
        return {"outcome": "refused", "proof": "none", "resultCode": -1, "bytesTotal": bytes_total, "bytesAccepted": 0, "status": None}

    @staticmethod
    def has_socket(process) -> bool:
        folder = f"/proc/{process.pid}/fd"
        try:
            return any(os.readlink(f"{folder}/{number}").startswith("socket:") for number in os.listdir(folder))
        except FileNotFoundError:  # it was closed while this looked
            return False

    @staticmethod
    def threads(process) -> int:
        return len(os.listdir(f"/proc/{process.pid}/task"))

    def test_a_signal_before_the_command_has_begun_loses_no_outcome(self):
        """A log that nobody reads holds up the beginning; whether the job was read by then is left to chance."""
        log = self.folder / "log"
        os.mkfifo(log)
        process = start("-d", "virtual:", "print", self.file("job", b"text\n"), "--json", "--log", log)
        eventually(lambda: self.threads(process) > 1, "the command waits for signals")
        answer = self.interrupted(process).json()
        self.assertIn(answer["bytesTotal"], (0, 5))
        self.assertEqual(answer, {"ok": False, "device": answer["device"], **self.refused(answer["bytesTotal"]),
                                  "error": "interrupted"})

    def test_a_read_from_a_pipe_is_given_up(self):
        process = start("-d", "virtual:", "print", "-", "--json", stdin=-1)
        eventually(lambda: self.threads(process) > 1, "the command waits for signals")
        process.send_signal(signal.SIGINT)
        self.assertEqual(process.wait(DEADLINE), 130)
        self.assertEqual(json.loads(process.stdout.read()), {"ok": False, "device": None, **self.refused(0), "error": "interrupted"})
        for stream in (process.stdin, process.stdout, process.stderr):
            stream.close()


if __name__ == "__main__":
    main()
