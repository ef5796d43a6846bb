"""The virtual printer as a server: its receipts, and the record of each job."""

import ctypes
import json
import os
import resource
import signal
import socket
import struct
import subprocess
import unittest
from pathlib import Path

from harness import DEADLINE, IS_SANITIZED, STATUS_REQUEST, Case, eventually, finish, main, receive, run, start


class Watched:
    """Reports the names of all files created in a folder, and the new names of all files renamed there."""

    CREATED, RENAMED = 0x100, 0x80
    EVENT = struct.Struct("iIII")

    def __init__(self, folder: Path):
        system = ctypes.CDLL(None, use_errno=True)
        self.descriptor = system.inotify_init1(os.O_NONBLOCK)
        watch = system.inotify_add_watch(self.descriptor, str(folder).encode(), self.CREATED | self.RENAMED)
        assert self.descriptor >= 0 and watch >= 0, os.strerror(ctypes.get_errno())

    def names(self) -> tuple[set[str], set[str]]:
        events, names = os.read(self.descriptor, 1 << 16), (set(), set())
        while events:
            _, mask, _, length = self.EVENT.unpack_from(events)
            name, events = events[self.EVENT.size:self.EVENT.size + length], events[self.EVENT.size + length:]
            names[mask == self.RENAMED].add(name.rstrip(b"\0").decode())
        return names

    def close(self):
        os.close(self.descriptor)


class ReceiptFiles(Case):
    def names(self):
        """The names of the text and picture files, without files that are still being written."""
        folder = self.folder / "out"
        return sorted(name for name in os.listdir(folder) if not name.endswith((".json", ".part"))) if folder.exists() else []

    def text(self, number: int) -> str:
        return (self.folder / "out" / f"receipt-{number:04}.txt").read_text()

    def serve(self, *arguments: str, listen: str = "tcp:0"):
        return self.simulator(listen, "--receipts", str(self.folder / "out"), *arguments)

    def test_each_job_gives_a_numbered_text_file_and_picture_file(self):
        for listen in ("tcp:0", "pty:"):
            simulator = self.serve(listen=listen)
            before = len(self.names()) // 2
            for count in (1, 2):
                self.assertExit(0, run("-d", simulator.place, "print", "-", data=b"job %d on %s\n" % (count, listen.encode())))
                self.assertExit(0, run("-d", simulator.place, "online"))  # a question makes no receipt
                eventually(lambda: len(self.names()) == 2 * (before + count), "the receipt is written")
                self.assertIn(f"job {count} on {listen}", self.text(before + count))
            simulator.kill()
        self.assertEqual(self.names()[:2], ["receipt-0001.png", "receipt-0001.txt"])

    def test_a_receipt_file_gets_its_name_only_when_it_is_complete(self):
        (self.folder / "out").mkdir()
        watched = Watched(self.folder / "out")
        self.addCleanup(watched.close)
        simulator = self.serve()
        self.assertExit(0, run("-d", simulator.place, "print", "-", data=b"text\n"))
        simulator.stop(signal.SIGTERM)
        files = {f"receipt-0001.{ending}" for ending in ("txt", "png", "json")}
        self.assertEqual(watched.names(), ({f".{file}.part" for file in files}, files))

    def test_an_incomplete_file_of_a_killed_process_is_not_counted_as_a_receipt(self):
        (self.folder / "out").mkdir()
        (self.folder / "out" / ".receipt-0007.txt.part").write_text("hal")
        simulator = self.serve()
        self.assertExit(0, run("-d", simulator.place, "print", "-", data=b"text\n"))
        eventually(lambda: len(self.names()) == 2, "the receipt is written")
        self.assertEqual(self.names(), ["receipt-0001.png", "receipt-0001.txt"])

    def test_the_receipt_of_a_slowly_printed_job_is_complete(self):
        simulator = self.serve("--set", "speed=200")
        with simulator.connect() as host:
            host.sendall(b"first line\nsecond line\nlast line\n")
        eventually(self.names, "the receipt is written")
        self.assertIn("last line", self.text(1))

    def test_each_of_many_short_connections_is_a_separate_job(self):
        simulator = self.serve()
        for count in range(1, 21):
            with simulator.connect() as host:
                host.sendall(b"job %d\n" % count + (b"\x1dV\x00" if count % 2 else b""))
        eventually(lambda: len(self.names()) == 40, "all receipts are written")
        for count in range(1, 21):
            self.assertEqual([line for line in self.text(count).splitlines() if "job" in line], [f"job {count}"])

    def test_jobs_that_wait_in_a_stopped_printer_are_separate_jobs(self):
        simulator = self.serve("--set", "coverOpen=true")
        for text in (b"first\n", b"", STATUS_REQUEST, b"second, without an end"):
            with simulator.connect() as host:
                host.sendall(text)
        eventually(lambda: simulator.state()["buffered"] == 28, "the printer holds both")
        self.assertEqual(self.names(), [])
        simulator.set(coverOpen=False)
        eventually(lambda: len(self.names()) == 4, "both receipts are written")
        self.assertEqual((self.text(1), self.text(2)), ("first\n", "second, without an end\n"))

    def test_a_cut_ends_a_job_on_a_connection_that_remains_open(self):
        simulator = self.serve()
        with simulator.connect() as host:
            for count in (1, 2):
                host.sendall(b"job %d\n\x1dV\x00" % count)
                eventually(lambda: len(self.names()) == 2 * count, "the receipt is written")
                self.assertIn(f"job {count}", self.text(count))

    def test_the_last_paper_is_saved_when_the_virtual_printer_ends(self):
        simulator = self.serve()
        with simulator.connect() as host:
            host.sendall(b"half a job\n" + STATUS_REQUEST)
            receive(host, 9)
            self.assertEqual(simulator.stop(signal.SIGTERM), 0)
        self.assertIn("half a job", self.text(1))

    def test_receipt_numbers_continue_after_existing_receipts(self):
        (self.folder / "out").mkdir()
        (self.folder / "out" / "receipt-0041.txt").write_text("older")
        simulator = self.serve()
        self.assertExit(0, run("-d", simulator.place, "print", "-", data=b"newer\n"))
        eventually(lambda: "receipt-0042.txt" in self.names(), "the receipt is written")

    @unittest.skipIf(IS_SANITIZED, "a sanitizer takes memory")
    def test_an_endless_job_takes_bounded_memory_and_its_paper_is_torn_off(self):
        simulator = self.simulator("tcp:0")
        with simulator.connect() as host:
            for _ in range(60):
                host.sendall(b"text of a long job\n" * 10_000)
            eventually(lambda: simulator.state()["printedBytes"] == 11_400_000, "all of it is printed")
        with open(f"/proc/{simulator.process.pid}/status") as file:
            peak = next(int(line.split()[1]) for line in file if line.startswith("VmHWM"))
        self.assertLess(peak, 64 << 10, "kilobytes")

    def test_a_paper_that_is_too_long_is_saved_as_several_receipts(self):
        simulator = self.simulator("tcp:0", "--receipts", str(self.folder / "out"), stderr=subprocess.PIPE)
        count = 30_000
        with simulator.connect() as host:
            for number in range(0, count, 1000):
                host.sendall(b"".join(b"line %d\n" % n for n in range(number, number + 1000)))
        eventually(lambda: simulator.state()["printedBytes"] >= count * 7 and len(self.names()) > 2, "the paper was torn off")
        simulator.stop(signal.SIGTERM)
        self.assertIn(b"the paper grew too long and was torn off", simulator.process.stderr.read())
        texts = [name for name in self.names() if name.endswith(".txt")]
        self.assertGreater(len(texts), 1)
        lines = [line for name in texts for line in (self.folder / "out" / name).read_text().splitlines()
                 if not line.startswith("[")]
        self.assertEqual(lines, [f"line {n}" for n in range(count)])
        self.assertIn("torn off", self.text(1).splitlines()[-1])

    def test_a_full_disk_for_the_receipt_makes_print_fail(self):
        full = self.folder / "full.txt"
        full.symlink_to("/dev/full")
        result = run("print", "-d", "virtual:", "--receipt", full, "--json", "-", data=b"text\n")
        self.assertExit(1, result)
        self.assertEqual((result.json()["ok"], result.json()["outcome"]), (False, "printed"))
        self.assertIn("full.txt", result.json()["error"])

    def test_a_receipt_that_cannot_be_written_is_reported_and_the_printer_continues(self):
        def limit():
            resource.setrlimit(resource.RLIMIT_FSIZE, (100, 100))

        simulator = self.simulator("tcp:0", "--receipts", str(self.folder / "out"), preexec_fn=limit,
                                   stderr=subprocess.PIPE)
        with simulator.connect() as host:
            host.sendall(b"a line of text\n" * 20)
        self.assertIn(b'receipt-0001.txt" cannot be written: File too large', simulator.process.stderr.readline())
        self.assertEqual(os.listdir(self.folder / "out"), [])
        self.assertExit(0, run("-d", simulator.place, "online"))

    def test_a_plain_file_is_refused_as_the_folder_of_receipts(self):
        result = run("simulate", "--listen", "tcp:0", "--receipts", self.file("plain", b""))
        self.assertExit(2, result)
        self.assertIn("--receipts", result.err)

    def test_a_folder_of_receipts_without_a_parent_folder_is_refused(self):
        result = run("simulate", "--listen", "tcp:0", "--receipts", f"{self.folder}/no/such")
        self.assertExit(2, result)
        self.assertIn("No such file or directory", result.err)
        self.assertFalse((self.folder / "no").exists())


class JobRecords(Case):
    """The record that `simulate --json` prints for each job."""

    def record_of(self, job: bytes, *arguments: str, replies: int = 0, listen: str = "tcp:0"):
        process = start("--json", "simulate", "--listen", listen, *arguments)
        self.addCleanup(process.kill)
        for stream in (process.stdout, process.stderr):
            self.addCleanup(stream.close)
        place = json.loads(process.stdout.readline())["listening"][0]
        host, port = place.removeprefix("tcp:").rsplit(":", 1)
        with socket.create_connection((host, int(port)), DEADLINE) as connection:
            connection.sendall(job)
            receive(connection, replies)
        record = json.loads(process.stdout.readline())
        process.terminate()
        return record, process.wait(DEADLINE), place

    def test_the_record_of_a_plain_job_has_every_key(self):
        record, code, place = self.record_of(b"text\n")
        self.assertEqual(record, {"job": 1, "printer": place, "ok": True, "files": [], "cuts": 0, "drawer": 0, "beeps": 0,
                                  "codePages": [], "asked": [], "unknown": [], "missing": [], "events": []})
        self.assertEqual(code, 0)

    def test_a_record_counts_paper_cuts_and_drawer_pulses_and_beeps(self):
        job = b"\x1bt\x13a\n\x1bp\0\x19\xfa\x10\x14\1\0\1\x1bB\2\3\x1b(A\4\0\x30\1\1\1\x1dV\0b\n\x1dV\1"
        record, _, _ = self.record_of(job)
        self.assertEqual((record["cuts"], record["drawer"], record["beeps"], record["codePages"]), (2, 2, 2, [19]))
        self.assertEqual(record["unknown"], [])
        self.assertEqual([event["event"] for event in record["events"]],
                         ["drawer", "drawer", "beep", "beep", "cut", "cut"])

    def test_text_for_the_customer_display_is_an_event_of_the_record_and_not_printed(self):
        folder = self.folder / "display"
        record, _, _ = self.record_of(b"\x1b=\2Total 4.20\x1b=\1paper\n", "--receipts", str(folder))
        self.assertEqual(record["events"], [{"event": "display", "text": "Total 4.20"}])
        self.assertEqual((folder / "receipt-0001.txt").read_text(), "paper\n")

    def test_the_record_notes_that_a_qr_code_is_drawn_as_another_model(self):
        record, code, _ = self.record_of(b"\x1d(k\4\0001A1\0\x1d(k\5\0001P0hi\x1d(k\3\0001Q0", "--strict")
        self.assertEqual([event["event"] for event in record["events"]], ["replaced"])
        self.assertIn("model 2", record["events"][0]["text"])
        self.assertEqual((record["ok"], code), (True, 0))

    def test_a_command_that_the_printer_lacks_is_recorded_as_unknown(self):
        record, code, _ = self.record_of(b"\x1bLa\n\x0c", "--strict", "--set", "lacks=1b4c")
        self.assertEqual(record["unknown"], [{"offset": 0, "bytes": "1b4c", "name": "ESC L"}])
        self.assertEqual((record["ok"], code), (False, 1))

    def test_a_job_that_only_opens_the_drawer_has_a_record(self):
        record, _, _ = self.record_of(b"\x1bp\0\x19\xfa")
        self.assertEqual((record["drawer"], record["files"]), (1, []))

    def test_a_record_lists_each_request_with_its_answer(self):
        record, _, _ = self.record_of(b"a\n\x10\x04\1\x1dr\1\x1d(H\6\x0000ABCD", replies=9)
        self.assertEqual(record["asked"], [{"command": "100401", "answer": "12"}, {"command": "1d7201", "answer": "00"},
                                           {"command": "1d284806003030" + "41424344", "answer": "37224142434400"}])

    def test_a_record_lists_each_unknown_command_with_offset_bytes_and_name(self):
        record, code, _ = self.record_of(b"a\n\x10\x04\1\x1dy\n\x1b\x99", replies=1)
        self.assertEqual(record["unknown"], [{"offset": 5, "bytes": "1d79", "name": "GS y"},
                                             {"offset": 8, "bytes": "1b99", "name": "ESC 99"}])
        self.assertEqual((record["ok"], code), (True, 0))

    def test_strict_mode_rejects_unknown_commands_and_missing_characters_and_incomplete_data(self):
        for job, key in ((b"a\x1dy\n", "unknown"), (b"\x1bt\x10\x81\n", "missing"), (b"a\n\x1dv0\0\x09\0", "unknown")):
            record, code, _ = self.record_of(job, "--strict")
            self.assertEqual((record["ok"], code), (False, 1), job)
            self.assertEqual(len(record[key]), 1, job)
            if key == "missing":
                self.assertEqual(record[key], ["81 in page 16"])
        record, code, _ = self.record_of(b"\x1bt\x10\x80\n\x1dV\0", "--strict")
        self.assertEqual((record["ok"], code), (True, 0))

    def test_each_cut_ends_a_receipt_only_if_receipts_are_kept_per_cut(self):
        job = b"one\n\x1dV\0two\n\x1dV\0\n\n"
        for per, count in (("cut", 2), ("job", 1), ("connection", 1)):
            folder = self.folder / per
            record, _, _ = self.record_of(job, "--receipts", str(folder), "--per", per)
            self.assertEqual(len(record["files"]), 2 * count, per)
            self.assertTrue(all(os.path.exists(file) for file in record["files"]))
            for file in record["files"]:
                beside = folder / file.replace(".txt", ".json").replace(".png", ".json")
                self.assertEqual(json.loads(beside.read_text()), record)
            self.assertIn("one", (folder / "receipt-0001.txt").read_text())
        self.assertIn("two", (self.folder / "cut" / "receipt-0002.txt").read_text())

    def test_a_paper_cut_completes_a_record_per_job_but_not_a_record_per_connection(self):
        """With `--per job`, a paper cut gives a record. With `--per connection`, only the end of a connection does."""
        processes = {}
        for per in ("connection", "job"):
            process = start("--json", "simulate", "--listen", "tcp:0", "--per", per)
            self.addCleanup(finish, process, 0)
            self.addCleanup(process.terminate)
            place = json.loads(process.stdout.readline())["listening"][0]
            host, port = place.removeprefix("tcp:").rsplit(":", 1)
            connection = socket.create_connection((host, int(port)), DEADLINE)
            self.addCleanup(connection.close)
            connection.sendall(b"one\n\x1dV\0\x1dr\1")
            receive(connection, 1)
            processes[per] = (process, connection)
        process, _ = processes["job"]
        self.assertEqual(json.loads(process.stdout.readline())["cuts"], 1)
        process, connection = processes["connection"]
        connection.sendall(b"two\n\x1dV\0")
        connection.close()
        self.assertEqual(json.loads(process.stdout.readline())["cuts"], 2)

    def test_a_record_is_written_whole_even_if_earlier_answers_are_unread(self):
        count = 400
        process = start("--json", "simulate", "--listen", "tcp:0", stdin=subprocess.PIPE)
        self.addCleanup(finish, process, 0)
        self.addCleanup(process.terminate)
        place = json.loads(process.stdout.readline())["listening"][0]
        process.stdin.write(b'{"get": "state"}\n' * count)
        process.stdin.flush()
        # The answer arrives after other answers have filled the pipe.
        self.assertExit(0, run("-d", place, "online"))
        host, port = place.removeprefix("tcp:").rsplit(":", 1)
        with socket.create_connection((host, int(port)), DEADLINE) as connection:
            connection.sendall(b"text\n\x10\x04\1")
            receive(connection, 1)
        self.assertExit(0, run("-d", place, "online"))
        lines = [json.loads(process.stdout.readline()) for _ in range(count + 1)]
        self.assertEqual([line["job"] for line in lines if "job" in line], [1])
        self.assertEqual(sum("state" in line for line in lines), count)

    def test_an_unknown_value_of_the_option_per_is_refused(self):
        result = run("simulate", "--listen", "tcp:0", "--per", "day")
        self.assertExit(2, result)
        self.assertIn('takes "cut", "job" or "connection"', result.err)


if __name__ == "__main__":
    main()
