"""Signals to the command: their effect on a job, and the exit status."""

import collections
import fcntl
import json
import os
import re
import signal
import socket
import threading
import time

from harness import DEADLINE, Case, count_etbs, eventually, finish, main, receive, start


class Signals(Case):
    def interrupted(self, process, *, by=signal.SIGINT, data: bytes | None = None):
        process.send_signal(by)
        result = finish(process, time.monotonic(), data)
        self.assertExit(128 + by, result)
        # If the close waited for the printer, it would take longer.
        self.assertLess(result.seconds, 1.9, "a signal takes effect within a second")
        return result

    def test_a_signal_cancels_the_job_and_closes_the_port(self):
        for by in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
            simulator = self.simulator("tcp:0", "--set", "speed=50")
            process = start("-d", simulator.place, "print", self.file("job", b"line of text\n" * 1000), "--json")
            eventually(lambda: simulator.state()["buffered"] > 1000, "the job is under way")
            answer = self.interrupted(process, by=by).json()
            self.assertEqual((answer["ok"], answer["outcome"]), (False, "unconfirmed"))
            self.assertEqual(answer["bytesTotal"], 13000)
            self.assertGreater(answer["bytesAccepted"], 0)
            self.assertIn("cancelled", answer["error"])

    def test_a_signal_makes_the_printer_drop_the_rest_of_the_job(self):
        simulator = self.simulator("tcp:0", "--set", "speed=20")
        process = start("-d", simulator.place, "print", self.file("job", b"line of text\n" * 100))
        eventually(lambda: simulator.state()["buffered"] > 1000, "the whole job is in the printer")
        self.interrupted(process)
        eventually(lambda: simulator.state()["buffered"] == 0, "the printer has dropped the rest")
        self.assertLess(simulator.state()["printedBytes"], 1300)

    def test_a_signal_ends_the_command_soon_even_if_the_printer_accepts_no_data(self):
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

    def test_the_outcome_is_reported_even_if_a_signal_arrives_during_the_close(self):
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

    def test_a_printed_job_is_reported_as_printed_if_a_signal_arrives_during_the_close(self):
        """No program reads the log during the job. This delays the end of the command, but not the end of the connection."""
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

    def test_a_signal_ends_a_query_and_closes_the_port(self):
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

    def test_a_signal_ends_a_query_whose_write_repeats_without_end(self):
        """If the port counts the bytes of a command wrongly, it sends the rest of the command without end. With
        some of the faults below, the link accepts the rest each time; with the others, it never accepts the rest."""
        log = self.folder / "log"
        for command, faults in (("dipswitch", "no-space=4:120"), ("dipswitch", "no-space=4:120,no-space=8:600000"),
                                ("cancel", "no-space=4:120"), ("status", "no-space=2:120")):
            process = start("-t", "1000", "-d", f"virtual:,{faults}", command, "--json", "--log", log)
            eventually(lambda: self.most_offers(log) > 5, "the retry does not end")
            self.assertAnswers(f"virtual:,{faults}", {"ok": False, "error": "interrupted"}, self.interrupted(process))
            log.unlink()

    def test_a_signal_ends_a_job_whose_first_write_repeats_without_end(self):
        log, job = self.folder / "log", self.file("job", b"text\n")
        for faults in ("no-space=4:120", "no-space=4:120,no-space=6:600000"):
            process = start("-t", "1000", "-d", f"virtual:,{faults}", "print", job, "--json", "--log", log)
            eventually(lambda: self.most_offers(log) > 5, "the retry does not end")
            answer = self.interrupted(process).json()
            self.assertEqual((answer["outcome"], answer["bytesAccepted"]), ("refused", 0))
            log.unlink()

    @staticmethod
    def most_offers(log) -> int:
        """In the last 64 KiB of the log, counts the calls of `write:` with equal bytes. Returns the largest count."""
        if not log.exists():
            return 0
        with log.open("rb") as file:
            file.seek(max(0, log.stat().st_size - 65536))
            end = file.read()
        offers = re.findall(rb'"line":(\d+),"method":"-\[ExternalAccessoryPort write:\]","message":"(<[^>]*>)"', end)
        return max(collections.Counter(offers).values(), default=0)

    def test_a_signal_ends_a_connection_attempt(self):
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
        except FileNotFoundError:  # a descriptor was closed during the loop
            return False

    @staticmethod
    def threads(process) -> int:
        return len(os.listdir(f"/proc/{process.pid}/task"))

    def test_a_signal_before_the_start_of_a_job_does_not_suppress_the_outcome(self):
        """A log that nobody reads delays the job. The signal may arrive before or after the command reads the job."""
        log = self.folder / "log"
        os.mkfifo(log)
        process = start("-d", "virtual:", "print", self.file("job", b"text\n"), "--json", "--log", log)
        eventually(lambda: self.threads(process) > 1, "the command waits for signals")
        answer = self.interrupted(process).json()
        self.assertIn(answer["bytesTotal"], (0, 5))
        self.assertEqual(answer, {"ok": False, "device": answer["device"], **self.refused(answer["bytesTotal"]),
                                  "error": "interrupted"})

    @staticmethod
    def delays_signals(process) -> bool:
        with open(f"/proc/{process.pid}/status") as file:
            blocked = next(int(line.split()[1], 16) for line in file if line.startswith("SigBlk"))
        return bool(blocked & 1 << (signal.SIGINT - 1))

    def test_a_signal_during_the_reading_of_arguments_does_not_suppress_the_outcome(self):
        """The command needs a while to read very many arguments. The test tries to interrupt the command meanwhile."""
        place, job = self.silent_place(), self.file("job", b"text\n")
        for _ in range(5):
            process = start("-d", place, "print", job, *["--json"] * 10_000)
            eventually(lambda: self.delays_signals(process), "signals have to wait")
            is_early = self.threads(process) == 1
            process.send_signal(signal.SIGINT)
            result = finish(process, time.monotonic())
            self.assertExit(130, result)
            answer = result.json()
            self.assertEqual((answer["ok"], answer["outcome"], answer["bytesAccepted"]), (False, "refused", 0))
            if is_early:
                return
        self.fail("the command delays signals only after it has read its arguments")

    def test_a_signal_ends_a_read_from_a_pipe(self):
        process = start("-d", "virtual:", "print", "-", "--json", stdin=-1)
        eventually(lambda: self.threads(process) > 1, "the command waits for signals")
        process.send_signal(signal.SIGINT)
        self.assertEqual(process.wait(DEADLINE), 130)
        self.assertEqual(json.loads(process.stdout.read()), {"ok": False, "device": None, **self.refused(0), "error": "interrupted"})
        for stream in (process.stdin, process.stdout, process.stderr):
            stream.close()


if __name__ == "__main__":
    main()
