"""The virtual printer as a server: its places, its hosts, its receipts."""

import contextlib
import json
import os
import resource
import select
import signal
import socket
import stat
import subprocess

from harness import DEADLINE, STATUS_REQUEST, Case, eventually, main, receive, run, start, finish, status_block


class Places(Case):
    def test_over_tcp_it_says_the_port_that_it_got(self):
        for listen in ("tcp:", "tcp:0", "tcp::0", "tcp:127.0.0.1:0", "tcp:localhost:0"):
            self.assertRegex(self.simulator(listen).place, r"^tcp:(127\.0\.0\.1|\[::1\]):[1-9]\d*$")

    def test_with_json_its_first_line_is_an_object(self):
        process = start("--json", "simulate", "--listen", "tcp:0")
        self.addCleanup(finish, process, 0)
        self.addCleanup(process.terminate)
        place = json.loads(process.stdout.readline())["listening"][0]
        self.assertExit(0, run("-d", place, "online"))

    def test_only_this_machine_reaches_it_by_default(self):
        for listen in ("tcp:", "tcp:0"):
            self.assertTrue(self.simulator(listen).place.startswith("tcp:127.0.0.1:"))
        self.assertTrue(self.simulator("tcp:0.0.0.0:0").place.startswith("tcp:0.0.0.0:"))

    def test_an_invalid_place_is_refused_with_the_valid_ones(self):
        for wrong in ("", "tcp::", "tcp:x", "tcp:h:65536", "tcp:a:b:1", "usb:1", "pty:x", "unix:", "unix:/a,b=c",
                      "unix:/" + "x" * 200, "tcp:127.0.0.1:-1"):
            result = run("simulate", "--listen", wrong)
            self.assertExit(2, result)
            self.assertIn("--listen", result.err)
            self.assertEqual(result.out, "")
        self.assertExit(2, run("simulate"))

    def test_a_place_that_is_taken_is_said(self):
        first = self.simulator("tcp:0")
        result = run("simulate", "--listen", first.place)
        self.assertExit(1, result)
        self.assertIn("in use", result.err)

    def test_a_plain_file_in_its_way_is_left_alone(self):
        path = self.file("printer", b"precious")
        for option in (["--listen", f"unix:{path}"], ["--listen", "tcp:0", "--control", f"unix:{path}"]):
            result = run("simulate", *option)
            self.assertExit(1, result)
            self.assertIn("no socket", result.err)
        with open(path, "rb") as file:
            self.assertEqual(file.read(), b"precious")

    def test_a_socket_that_somebody_listens_to_is_left_alone(self):
        place = f"unix:{self.folder}/printer"
        self.simulator(place)
        self.assertExit(1, run("simulate", "--listen", place))
        self.assertExit(0, run("-d", place, "online"))

    def test_a_socket_without_a_listener_is_replaced(self):
        place = f"unix:{self.folder}/printer"
        self.simulator(place).kill()
        self.assertTrue((self.folder / "printer").exists())
        self.assertExit(0, run("-d", self.simulator(place).place, "online"))

    def test_it_removes_its_sockets_at_its_end(self):
        for by in (signal.SIGTERM, signal.SIGHUP):
            simulator = self.simulator(f"unix:{self.folder}/printer", "--control", f"unix:{self.folder}/control")
            self.assertEqual(simulator.stop(by), 0)
            self.assertEqual(os.listdir(self.folder), [])

    def test_the_control_socket_is_for_its_owner_alone(self):
        self.simulator("tcp:0", "--control", f"unix:{self.folder}/control")
        self.assertEqual(stat.S_IMODE(os.stat(self.folder / "control").st_mode), 0o600)

    def test_invalid_settings_are_refused(self):
        for wrong, saying in [("coverOpen", "KEY=VALUE"), ("coverOpen=1", "true or false"), ("x=1", "firmware"),
                              ("late-reply=x", "MS"), ("speed=-1", "bytes a second")]:
            result = run("simulate", "--listen", "tcp:0", "--set", wrong)
            self.assertExit(2, result)
            self.assertIn(saying, result.err)
            self.assertIn("--set", result.err)


class Ending(Case):
    def test_each_signal_ends_it_well(self):
        for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
            self.assertEqual(self.simulator().stop(number), 0)

    def test_a_signal_ends_it_also_with_a_host_connected(self):
        simulator = self.simulator("tcp:0", "--set", "offline=true")
        with simulator.connect() as host:
            host.sendall(b"x" * 100)
            eventually(lambda: simulator.state()["buffered"] == 100, "the bytes are in the printer")
            self.assertEqual(simulator.stop(signal.SIGTERM), 0)
            self.assertEqual(host.recv(1), b"")

    def test_the_end_of_standard_input_does_not(self):
        simulator = self.simulator()
        simulator.process.stdin.close()
        self.assertExit(0, run("-d", simulator.place, "online"))
        self.assertIsNone(simulator.process.poll())
        simulator.process.stdin = None

    def test_a_closed_standard_output_does_not(self):
        simulator = self.simulator()
        simulator.process.stdout.close()
        simulator.process.stdin.write(b'{"get":"state"}\n' * 3)
        simulator.process.stdin.flush()
        for _ in range(3):
            self.assertExit(0, run("-d", simulator.place, "online"))
        self.assertIsNone(simulator.process.poll())

    def test_signals_that_a_shell_ignores_for_background_commands_end_it(self):
        def ignore():
            signal.signal(signal.SIGINT, signal.SIG_IGN)

        process = start("simulate", "--listen", "tcp:0", preexec_fn=ignore)
        self.addCleanup(process.stdout.close)
        self.addCleanup(process.stderr.close)
        self.assertIn(b"listening", process.stdout.readline())
        process.send_signal(signal.SIGINT)
        self.assertEqual(process.wait(DEADLINE), 0)

    def test_it_outlives_its_terminal_if_that_is_wanted(self):
        def ignore():
            signal.signal(signal.SIGHUP, signal.SIG_IGN)

        simulator = self.simulator("tcp:0", preexec_fn=ignore)
        simulator.process.send_signal(signal.SIGHUP)
        self.assertExit(0, run("-d", simulator.place, "online"))
        self.assertIsNone(simulator.process.poll())


class Hosts(Case):
    def test_both_emulations_are_answered_at_once(self):
        with self.simulator().connect() as host:
            host.sendall(STATUS_REQUEST + b"\x10\x04\x01" + b"\x1b\x23\x2c\x31\x0a\x00" + b"\x1d\x49\x41")
            answer = receive(host, 9 + 1 + 7 + 1)
            self.assertEqual(answer[:9], status_block("etbAvailable", interface=5))
            self.assertEqual(answer[9:17], b"\x12\x1b\x23\x2c\x31\x00\x00\x0a")
            self.assertEqual(answer[17:], b"\x5f")

    def test_a_slow_printer_holds_its_host_up(self):
        simulator = self.simulator("tcp:0", "--set", "offline=true", "--set", "buffer=1000")
        with simulator.connect() as host:
            host.setblocking(False)
            sent = 0
            while select.select([], [host], [], 1)[1]:
                sent += host.send(b"x" * 65536)
            eventually(lambda: simulator.state()["buffered"] == 1000, "the printer is full")
            self.assertGreater(sent, 1000)
            simulator.set(offline=False)
            eventually(lambda: simulator.state()["printedBytes"] == sent, "all has been printed once and whole")

    def leave_behind(self, simulator, data: bytes) -> int:
        """A host that sends as many bytes as it can without waiting, and leaves. Returns their number."""
        if simulator.place.startswith("serial:"):
            terminal = os.open(simulator.place.removeprefix("serial:"), os.O_RDWR | os.O_NOCTTY | os.O_NONBLOCK)
            sent = os.write(terminal, data)
            eventually(lambda: simulator.state()["buffered"] > 0, "the host is noticed")
            os.close(terminal)
            return sent
        with simulator.connect() as host:
            host.setblocking(False)
            return host.send(data)

    def everywhere(self, *arguments: str):
        for listen in ("tcp:", f"unix:{self.folder}/printer", "pty:"):
            yield self.simulator(listen, *arguments)

    def test_a_host_that_leaves_a_stopped_printer_makes_way_for_the_next(self):
        for simulator in self.everywhere("--set", "coverOpen=true", "--set", "buffer=100"):
            for _ in range(3):
                self.leave_behind(simulator, b"x" * 93000)
                result = run("-d", simulator.place, "status")
                self.assertExit(0, result)
                self.assertIn("cover open", result.out)
            self.assertEqual(simulator.state()["buffered"], 100)

    def test_a_host_that_left_much_unread_makes_way_for_the_next(self):
        for simulator in self.everywhere("--set", "coverOpen=true"):
            if simulator.place.startswith("serial:"):
                continue  # a terminal holds a few kilobytes only
            with simulator.connect() as host:
                host.setsockopt(socket.SOL_SOCKET, socket.SO_SNDBUF, 4 << 20)
                host.setblocking(False)
                sent = 0
                with contextlib.suppress(BlockingIOError):
                    while sent < 400_000:
                        sent += host.send(b"x" * 50_000)
            result = run("-d", simulator.place, "status")
            self.assertExit(0, result)
            self.assertIn("cover open", result.out)

    def test_a_host_keeps_its_place_and_its_data_while_another_waits(self):
        simulator = self.simulator("tcp:", "--set", "coverOpen=true", "--set", "buffer=1000")
        with simulator.connect() as first, simulator.connect() as second:
            first.sendall(b"x" * 300_000)
            second.sendall(STATUS_REQUEST)
            simulator.set(coverOpen=False)
            eventually(lambda: simulator.state()["printedBytes"] == 300_000, "all has been printed")
            self.assertEqual(select.select([second], [], [], 0)[0], [])
            first.close()
            self.assertEqual(len(receive(second, 9)), 9)

    def test_the_data_of_a_host_that_left_is_printed_if_no_other_connects(self):
        for simulator in self.everywhere("--set", "coverOpen=true", "--set", "buffer=100"):
            sent = self.leave_behind(simulator, b"x" * 2000)
            self.assertEqual(sent, 2000)
            eventually(lambda: simulator.state()["buffered"] == 100, "the printer is full")
            simulator.set(coverOpen=False)
            eventually(lambda: simulator.state()["printedBytes"] == sent, "all of it is printed")
            self.assertExit(0, run("-d", simulator.place, "online"))

    def test_a_host_that_left_a_slow_printer_is_printed_before_the_next_one(self):
        for simulator in self.everywhere("--set", "speed=4000", "--set", "buffer=100"):
            sent = self.leave_behind(simulator, b"x" * 2000)
            # A checked job begins by a data cancel, which drops the data of the first that the
            # printer still holds.
            self.assertExit(6, run("-d", simulator.place, "print", "--unchecked", "-", data=b"second\n"))
            eventually(lambda: simulator.state()["printedBytes"] == sent + 7, "both are printed")

    def test_a_full_printer_is_asked_by_the_host_that_filled_it(self):
        for listen in ("tcp:", f"unix:{self.folder}/printer"):
            simulator = self.simulator(listen, "--set", "coverOpen=true", "--set", "buffer=100")
            with simulator.connect() as host:
                host.sendall(b"x" * 100)
                for byte in (b"\x10", b"\x04", b"\x02"):
                    host.sendall(byte)
                self.assertEqual(receive(host, 1), b"\x16")

    def test_a_host_that_only_half_closes_gets_its_answers(self):
        with self.simulator().connect() as host:
            host.sendall(STATUS_REQUEST)
            host.shutdown(socket.SHUT_WR)
            self.assertEqual(len(receive(host, 100)), 9)

    def test_the_next_host_waits_for_the_one_before(self):
        simulator = self.simulator()
        with simulator.connect() as first, simulator.connect() as second:
            second.sendall(STATUS_REQUEST)
            first.sendall(STATUS_REQUEST)
            self.assertEqual(len(receive(first, 9)), 9)
            self.assertEqual(select.select([second], [], [], 0)[0], [])
            first.close()
            self.assertEqual(len(receive(second, 9)), 9)

    def test_a_host_that_resets_disturbs_nobody(self):
        simulator = self.simulator("tcp:0", "--set", "offline=true", "--set", "buffer=100")
        for waits in (False, True):
            with simulator.connect() as host:
                host.sendall(b"x" * 5000 if waits else b"x")
                if waits:
                    eventually(lambda: simulator.state()["buffered"] == 100, "the printer is full")
                host.setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, b"\1\0\0\0\0\0\0\0")
        simulator.set(offline=False)
        self.assertExit(0, run("-d", simulator.place, "online"))

    def test_a_hundred_connections_leave_no_descriptor(self):
        for listen in ("tcp:0", f"unix:{self.folder}/printer"):
            simulator = self.simulator(listen)
            simulator.state()
            before = simulator.descriptors()
            for count in range(100):
                with simulator.connect() as host:
                    if count % 3 == 0:
                        host.setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, b"\1\0\0\0\0\0\0\0")
                    host.sendall(STATUS_REQUEST + b"text\n")
                    if count % 2 == 0:
                        self.assertEqual(len(receive(host, 9)), 9)
            eventually(lambda: simulator.descriptors() == before, "all descriptors are closed")

    def test_a_hundred_users_of_a_terminal_leave_no_descriptor(self):
        simulator = self.simulator("pty:")
        simulator.state()
        before = simulator.descriptors()
        path = simulator.place.removeprefix("serial:")
        for _ in range(100):
            terminal = os.open(path, os.O_RDWR | os.O_NOCTTY)
            os.write(terminal, STATUS_REQUEST)
            self.assertEqual(len(os.read(terminal, 9)), 9)
            os.close(terminal)
        eventually(lambda: simulator.descriptors() == before, "all descriptors are closed")

    def test_it_sleeps_while_nothing_happens(self):
        for listen in ("tcp:0", "pty:"):
            simulator = self.simulator(listen, "--set", "offline=true", "--set", "buffer=16")
            if listen == "pty:":
                self.assertExit(6, run("-d", simulator.place, "print", "--unchecked", "-t", "0", "-", data=b"x" * 500))
            else:
                with simulator.connect() as host:
                    host.sendall(b"x" * 500)
            eventually(lambda: simulator.state()["buffered"] == 16, "the printer is full")
            stat_file = f"/proc/{simulator.process.pid}/stat"

            def ticks():
                with open(stat_file) as file:
                    return sum(map(int, file.read().rsplit(")", 1)[1].split()[11:13]))

            before = ticks()
            select.select([], [], [], 1)  # the one second over which we measure
            self.assertLess(ticks() - before, os.sysconf("SC_CLK_TCK") // 4)


class DroppedLinks(Case):
    def test_a_cut_link_is_closed_after_the_earlier_bytes(self):
        simulator = self.simulator("tcp:0", "--set", "cut-after-in=6:drain")
        with simulator.connect() as host:
            host.sendall(STATUS_REQUEST * 2 + b"more")
            self.assertEqual(len(receive(host, 100)), 18)
        self.assertExit(5, run("-d", simulator.place, "status"))

    def test_a_reset_link_is_reset(self):
        simulator = self.simulator("tcp:0", "--set", "cut-after-in=3:reset")
        with simulator.connect() as host:
            host.sendall(STATUS_REQUEST)
            with self.assertRaises(ConnectionResetError):
                receive(host, 100)

    def test_a_terminal_that_dropped_its_user_is_replaced_and_its_name_reported(self):
        simulator = self.simulator("pty:", "--set", "cut-after-in=3:drain")
        terminal = os.open(simulator.place.removeprefix("serial:"), os.O_RDWR | os.O_NOCTTY)
        os.write(terminal, STATUS_REQUEST)
        self.assertEqual(len(os.read(terminal, 9)), 9)
        self.assertIn("state", simulator.control({"get": "state"}), "it is not among the answers")
        place = simulator.next_place()
        with self.assertRaises(OSError):
            if os.read(terminal, 1) == b"":
                raise OSError("hung up")
        os.close(terminal)
        self.assertEqual(simulator.control({"clear": "faults"}), {"ok": True})
        self.assertExit(0, run("-d", place, "online"))

    def test_a_terminal_that_drops_everybody_at_once_still_takes_control_lines(self):
        simulator = self.simulator("pty:", "--set", "cut-after-in=0:reset", "--control", f"unix:{self.folder}/control")
        with socket.socket(socket.AF_UNIX) as control:
            control.settimeout(DEADLINE)
            control.connect(str(self.folder / "control"))
            control.sendall(b'{"clear":"faults"}\n')
            self.assertEqual(receive(control, 12), b'{"ok":true}\n')
        self.assertEqual(simulator.stop(signal.SIGTERM), 0)

    def test_a_cut_by_a_control_line_ends_the_link_that_there_is_and_no_other(self):
        simulator = self.simulator()
        with simulator.connect() as host:
            host.sendall(STATUS_REQUEST)
            self.assertEqual(len(receive(host, 9)), 9)
            self.assertEqual(simulator.control({"fault": {"cut": "drain"}}), {"ok": True})
            self.assertEqual(host.recv(1), b"")
        self.assertExit(0, run("-d", simulator.place, "online"))


class Receipts(Case):
    def names(self):
        folder = self.folder / "out"
        return sorted(name for name in os.listdir(folder) if not name.endswith(".json")) if folder.exists() else []

    def text(self, number: int) -> str:
        return (self.folder / "out" / f"receipt-{number:04}.txt").read_text()

    def serve(self, *arguments: str, listen: str = "tcp:0"):
        return self.simulator(listen, "--receipts", str(self.folder / "out"), *arguments)

    def test_each_job_is_a_numbered_text_and_picture(self):
        for listen in ("tcp:0", "pty:"):
            simulator = self.serve(listen=listen)
            before = len(self.names()) // 2
            for count in (1, 2):
                self.assertExit(0, run("-d", simulator.place, "print", "-", data=b"job %d on %s\n" % (count, listen.encode())))
                self.assertExit(0, run("-d", simulator.place, "online"))  # which leaves nothing
                eventually(lambda: len(self.names()) == 2 * (before + count), "the receipt is written")
                self.assertIn(f"job {count} on {listen}", self.text(before + count))
            simulator.kill()
        self.assertEqual(self.names()[:2], ["receipt-0001.png", "receipt-0001.txt"])

    def test_a_job_that_is_printed_slowly_is_complete(self):
        simulator = self.serve("--set", "speed=200")
        with simulator.connect() as host:
            host.sendall(b"first line\nsecond line\nlast line\n")
        eventually(self.names, "the receipt is written")
        self.assertIn("last line", self.text(1))

    def test_each_of_many_quick_connections_is_a_job(self):
        simulator = self.serve()
        for count in range(1, 21):
            with simulator.connect() as host:
                host.sendall(b"job %d\n" % count + (b"\x1dV\x00" if count % 2 else b""))
        eventually(lambda: len(self.names()) == 40, "all receipts are written")
        for count in range(1, 21):
            self.assertEqual([line for line in self.text(count).splitlines() if "job" in line], [f"job {count}"])

    def test_a_job_that_waits_in_the_printer_is_one_of_its_own(self):
        simulator = self.serve("--set", "coverOpen=true")
        for text in (b"first\n", b"", STATUS_REQUEST, b"second, without an end"):
            with simulator.connect() as host:
                host.sendall(text)
        eventually(lambda: simulator.state()["buffered"] == 28, "the printer holds both")
        self.assertEqual(self.names(), [])
        simulator.set(coverOpen=False)
        eventually(lambda: len(self.names()) == 4, "both receipts are written")
        self.assertEqual((self.text(1), self.text(2)), ("first\n", "second, without an end\n"))

    def test_on_a_connection_that_remains_a_cut_ends_a_job(self):
        simulator = self.serve()
        with simulator.connect() as host:
            for count in (1, 2):
                host.sendall(b"job %d\n\x1dV\x00" % count)
                eventually(lambda: len(self.names()) == 2 * count, "the receipt is written")
                self.assertIn(f"job {count}", self.text(count))

    def test_the_last_paper_is_kept_at_the_end(self):
        simulator = self.serve()
        with simulator.connect() as host:
            host.sendall(b"half a job\n" + STATUS_REQUEST)
            receive(host, 9)
            self.assertEqual(simulator.stop(signal.SIGTERM), 0)
        self.assertIn("half a job", self.text(1))

    def test_numbers_continue_after_existing_ones(self):
        (self.folder / "out").mkdir()
        (self.folder / "out" / "receipt-0041.txt").write_text("older")
        simulator = self.serve()
        self.assertExit(0, run("-d", simulator.place, "print", "-", data=b"newer\n"))
        eventually(lambda: "receipt-0042.txt" in self.names(), "the receipt is written")

    def test_a_job_without_end_takes_bounded_memory_and_its_paper_is_torn_off(self):
        simulator = self.simulator("tcp:0")
        with simulator.connect() as host:
            host.sendall(b"text of a long job\n" * 600_000)
            eventually(lambda: simulator.state()["printedBytes"] == 11_400_000, "all of it is printed")
        with open(f"/proc/{simulator.process.pid}/status") as file:
            peak = next(int(line.split()[1]) for line in file if line.startswith("VmHWM"))
        self.assertLess(peak, 64 << 10, "kilobytes")

    def test_the_pieces_of_a_paper_that_is_too_long_are_receipts(self):
        simulator = self.serve()
        count = 120_000
        with simulator.connect() as host:
            for number in range(0, count, 1000):
                host.sendall(b"".join(b"line %d\n" % n for n in range(number, number + 1000)))
        eventually(lambda: simulator.state()["printedBytes"] >= count * 7 and len(self.names()) > 2, "the paper was torn off")
        simulator.stop(signal.SIGTERM)
        texts = [name for name in self.names() if name.endswith(".txt")]
        self.assertGreater(len(texts), 1)
        lines = [line for name in texts for line in (self.folder / "out" / name).read_text().splitlines()
                 if not line.startswith("[")]
        self.assertEqual(lines, [f"line {n}" for n in range(count)])
        self.assertIn("torn off", self.text(1).splitlines()[-1])

    def test_a_print_whose_receipt_finds_no_space_does_not_end_as_done(self):
        full = self.folder / "full.txt"
        full.symlink_to("/dev/full")
        result = run("print", "-d", "virtual:", "--receipt", full, "--json", "-", data=b"text\n")
        self.assertExit(1, result)
        self.assertEqual((result.json()["ok"], result.json()["outcome"]), (False, "printed"))
        self.assertIn("full.txt", result.json()["error"])

    def test_a_receipt_beyond_the_largest_file_is_reported_and_the_printer_serves_on(self):
        def limit():
            resource.setrlimit(resource.RLIMIT_FSIZE, (100, 100))

        simulator = self.simulator("tcp:0", "--receipts", str(self.folder / "out"), preexec_fn=limit,
                                   stderr=subprocess.PIPE)
        with simulator.connect() as host:
            host.sendall(b"a line of text\n" * 20)
        self.assertIn(b"cannot be written", simulator.process.stderr.readline())
        self.assertExit(0, run("-d", simulator.place, "online"))

    def test_a_folder_that_cannot_be_one_is_refused(self):
        result = run("simulate", "--listen", "tcp:0", "--receipts", self.file("plain", b""))
        self.assertExit(2, result)
        self.assertIn("--receipts", result.err)

    def test_a_path_that_leads_nowhere_is_refused(self):
        result = run("simulate", "--listen", "tcp:0", "--receipts", f"{self.folder}/no/such")
        self.assertExit(2, result)
        self.assertIn("No such file or directory", result.err)
        self.assertFalse((self.folder / "no").exists())


class Records(Case):
    """The record of each job by `--json`."""

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

    def test_a_plain_job_has_every_key(self):
        record, code, place = self.record_of(b"text\n")
        self.assertEqual(record, {"job": 1, "printer": place, "ok": True, "files": [], "cuts": 0, "drawer": 0, "beeps": 0,
                                  "codePages": [], "asked": [], "unknown": [], "missing": []})
        self.assertEqual(code, 0)

    def test_cuts_pulses_and_beeps_are_counted(self):
        job = b"\x1bt\x13a\n\x1bp\0\x19\xfa\x10\x14\1\0\1\x1bB\2\3\x1b(A\4\0\x30\1\1\1\x1dV\0b\n\x1dV\1"
        record, _, _ = self.record_of(job)
        self.assertEqual((record["cuts"], record["drawer"], record["beeps"], record["codePages"]), (2, 2, 2, [19]))
        self.assertEqual(record["unknown"], [])

    def test_a_drawer_that_is_opened_without_paper_is_a_job(self):
        record, _, _ = self.record_of(b"\x1bp\0\x19\xfa")
        self.assertEqual((record["drawer"], record["files"]), (1, []))

    def test_questions_have_their_answers(self):
        record, _, _ = self.record_of(b"a\n\x10\x04\1\x1dr\1\x1d(H\6\x0000ABCD", replies=9)
        self.assertEqual(record["asked"], [{"command": "100401", "answer": "12"}, {"command": "1d7201", "answer": "00"},
                                           {"command": "1d284806003030" + "41424344", "answer": "37224142434400"}])

    def test_an_unknown_command_has_its_offset_bytes_and_name(self):
        record, code, _ = self.record_of(b"a\n\x10\x04\1\x1dy\n\x1b\x99", replies=1)
        self.assertEqual(record["unknown"], [{"offset": 5, "bytes": "1d79", "name": "GS y"},
                                             {"offset": 8, "bytes": "1b99", "name": "ESC 99"}])
        self.assertEqual((record["ok"], code), (True, 0))

    def test_strict_judges_unknown_commands_missing_characters_and_cut_off_data(self):
        for job, key in ((b"a\x1dy\n", "unknown"), (b"\x1bt\x10\x81\n", "missing"), (b"a\n\x1dv0\0\x09\0", "unknown")):
            record, code, _ = self.record_of(job, "--strict")
            self.assertEqual((record["ok"], code), (False, 1), job)
            self.assertEqual(len(record[key]), 1, job)
        record, code, _ = self.record_of(b"\x1bt\x10\x80\n\x1dV\0", "--strict")
        self.assertEqual((record["ok"], code), (True, 0))

    def test_a_receipt_for_each_cut_if_wanted(self):
        job = b"one\n\x1dV\0two\n\x1dV\0\n\n"
        for per, count in (("cut", 2), ("job", 1), ("connection", 1)):
            folder = self.folder / per
            record, _, _ = self.record_of(job, "--receipts", str(folder), "--per", per)
            self.assertEqual(len(record["files"]), 2 * count, per)
            self.assertTrue(all(os.path.exists(file) for file in record["files"]))
            self.assertEqual(json.loads((folder / "receipt-0001.json").read_text()), record)
            self.assertIn("one", (folder / "receipt-0001.txt").read_text())
        self.assertIn("two", (self.folder / "cut" / "receipt-0002.txt").read_text())

    def test_another_division_is_refused(self):
        result = run("simulate", "--listen", "tcp:0", "--per", "day")
        self.assertExit(2, result)
        self.assertIn("cut, job or connection", result.err)


if __name__ == "__main__":
    main()
