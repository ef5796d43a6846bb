"""The virtual printer as a server: the hosts that it serves, and the links that it drops."""

import contextlib
import os
import select
import signal
import socket

from harness import DEADLINE, STATUS_REQUEST, Case, eventually, main, receive, run, status_block


class HostConnections(Case):
    def test_a_virtual_printer_answers_requests_of_both_emulations(self):
        with self.simulator().connect() as host:
            host.sendall(STATUS_REQUEST + b"\x10\x04\x01" + b"\x1b\x23\x2c\x31\x0a\x00" + b"\x1d\x49\x41")
            answer = receive(host, 9 + 1 + 7 + 1)
            self.assertEqual(answer[:9], status_block("etbAvailable", interface=5))
            self.assertEqual(answer[9:17], b"\x12\x1b\x23\x2c\x31\x00\x00\x0a")
            self.assertEqual(answer[17:], b"\x5f")

    def test_a_slow_printer_makes_its_host_wait(self):
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
        """Connects as a host, sends as much of `data` as possible without waiting, and disconnects. Returns how many
        bytes it sent."""
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

    def test_the_next_host_is_served_after_a_host_disconnects_from_a_stopped_printer(self):
        for simulator in self.everywhere("--set", "coverOpen=true", "--set", "buffer=100"):
            for _ in range(3):
                self.leave_behind(simulator, b"x" * 93000)
                result = run("-d", simulator.place, "status")
                self.assertExit(0, result)
                self.assertIn("cover open", result.out)
            self.assertEqual(simulator.state()["buffered"], 100)

    def test_the_next_host_is_served_after_a_host_disconnects_with_much_unread_data(self):
        for simulator in self.everywhere("--set", "coverOpen=true"):
            if simulator.place.startswith("serial:"):
                continue  # a terminal buffers only a few kilobytes, too few for this test
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

    def test_the_data_of_a_connected_host_is_printed_before_the_next_host_is_served(self):
        simulator = self.simulator("tcp:", "--set", "coverOpen=true", "--set", "buffer=1000")
        with simulator.connect() as first, simulator.connect() as second:
            first.sendall(b"x" * 300_000)
            second.sendall(STATUS_REQUEST)
            simulator.set(coverOpen=False)
            eventually(lambda: simulator.state()["printedBytes"] == 300_000, "all has been printed")
            self.assertEqual(select.select([second], [], [], 0)[0], [])
            first.close()
            self.assertEqual(len(receive(second, 9)), 9)

    def test_the_data_of_a_disconnected_host_is_printed_if_no_other_host_connects(self):
        for simulator in self.everywhere("--set", "coverOpen=true", "--set", "buffer=100"):
            sent = self.leave_behind(simulator, b"x" * 2000)
            self.assertEqual(sent, 2000)
            eventually(lambda: simulator.state()["buffered"] == 100, "the printer is full")
            simulator.set(coverOpen=False)
            eventually(lambda: simulator.state()["printedBytes"] == sent, "all of it is printed")
            self.assertExit(0, run("-d", simulator.place, "online"))

    def test_the_data_of_a_disconnected_host_is_printed_before_the_data_of_the_next_host(self):
        for simulator in self.everywhere("--set", "speed=4000", "--set", "buffer=100"):
            sent = self.leave_behind(simulator, b"x" * 2000)
            # A checked job begins with a data cancel, which would drop the data of the first job in
            # the printer.
            self.assertExit(6, run("-d", simulator.place, "print", "--unchecked", "-", data=b"second\n"))
            eventually(lambda: simulator.state()["printedBytes"] == sent + 7, "both are printed")

    def test_a_printer_with_a_full_buffer_answers_the_host_that_filled_the_buffer(self):
        for listen in ("tcp:", f"unix:{self.folder}/printer"):
            simulator = self.simulator(listen, "--set", "coverOpen=true", "--set", "buffer=100")
            with simulator.connect() as host:
                host.sendall(b"x" * 100)
                for byte in (b"\x10", b"\x04", b"\x02"):
                    host.sendall(byte)
                self.assertEqual(receive(host, 1), b"\x16")

    def test_a_host_that_ends_its_output_still_receives_the_answers(self):
        with self.simulator().connect() as host:
            host.sendall(STATUS_REQUEST)
            host.shutdown(socket.SHUT_WR)
            self.assertEqual(len(receive(host, 100)), 9)

    def test_the_next_host_waits_until_the_first_host_disconnects(self):
        simulator = self.simulator()
        with simulator.connect() as first, simulator.connect() as second:
            second.sendall(STATUS_REQUEST)
            first.sendall(STATUS_REQUEST)
            self.assertEqual(len(receive(first, 9)), 9)
            self.assertEqual(select.select([second], [], [], 0)[0], [])
            first.close()
            self.assertEqual(len(receive(second, 9)), 9)

    def test_a_host_that_resets_its_link_affects_no_other_host(self):
        simulator = self.simulator("tcp:0", "--set", "offline=true", "--set", "buffer=100")
        for waits in (False, True):
            with simulator.connect() as host:
                host.sendall(b"x" * 5000 if waits else b"x")
                if waits:
                    eventually(lambda: simulator.state()["buffered"] == 100, "the printer is full")
                host.setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, b"\1\0\0\0\0\0\0\0")
        simulator.set(offline=False)
        self.assertExit(0, run("-d", simulator.place, "online"))

    def test_a_hundred_connections_leave_no_open_descriptor(self):
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

    def test_a_hundred_connections_by_a_pseudo_terminal_leave_no_open_descriptor(self):
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

    def test_an_idle_virtual_printer_uses_no_processor_time(self):
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
            select.select([], [], [], 1)  # the test measures the processor time of this second
            self.assertLess(ticks() - before, os.sysconf("SC_CLK_TCK") // 4)


class DroppedLinks(Case):
    def test_the_drain_fault_closes_the_link_only_after_earlier_answers_are_sent(self):
        simulator = self.simulator("tcp:0", "--set", "cut-after-in=6:drain")
        with simulator.connect() as host:
            host.sendall(STATUS_REQUEST * 2 + b"more")
            self.assertEqual(len(receive(host, 100)), 18)
        self.assertExit(5, run("-d", simulator.place, "status"))

    def test_a_reset_fault_resets_the_connection(self):
        simulator = self.simulator("tcp:0", "--set", "cut-after-in=3:reset")
        with simulator.connect() as host:
            host.sendall(STATUS_REQUEST)
            with self.assertRaises(ConnectionResetError):
                receive(host, 100)

    def test_a_pseudo_terminal_whose_link_was_cut_is_replaced_and_its_new_name_is_reported(self):
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

    def test_a_pseudo_terminal_that_drops_every_host_still_accepts_json_control_lines(self):
        simulator = self.simulator("pty:", "--set", "cut-after-in=0:reset", "--control", f"unix:{self.folder}/control")
        with socket.socket(socket.AF_UNIX) as control:
            control.settimeout(DEADLINE)
            control.connect(str(self.folder / "control"))
            control.sendall(b'{"clear":"faults"}\n')
            self.assertEqual(receive(control, 12), b'{"ok":true}\n')
        self.assertEqual(simulator.stop(signal.SIGTERM), 0)

    def test_a_link_cut_by_a_json_control_line_does_not_affect_later_links(self):
        simulator = self.simulator()
        with simulator.connect() as host:
            host.sendall(STATUS_REQUEST)
            self.assertEqual(len(receive(host, 9)), 9)
            self.assertEqual(simulator.control({"fault": {"cut": "drain"}}), {"ok": True})
            self.assertEqual(host.recv(1), b"")
        self.assertExit(0, run("-d", simulator.place, "online"))


if __name__ == "__main__":
    main()
