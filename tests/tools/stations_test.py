"""Several virtual printers in one process, and several hosts of one printer."""

import contextlib
import json
import select
import signal
import socket
import time

from harness import DEADLINE, STATUS_REQUEST, Case, eventually, finish, main, receive, run, start


def connect(place: str) -> socket.socket:
    _, host, port = place.split(",")[0].split(":")
    connection = socket.create_connection((host, int(port)))
    connection.settimeout(DEADLINE)
    return connection


class SeveralPrinters(Case):
    def setUp(self):
        super().setUp()
        self.process = start("--json", "simulate", "--listen", "tcp:,name=till", "--listen", "tcp:,name=kitchen",
                             stdin=-1)
        self.addCleanup(finish, self.process, 0)
        self.addCleanup(self.process.terminate)
        self.places = self.line()["listening"]

    def line(self) -> dict:
        return json.loads(self.process.stdout.readline())

    def control(self, request: dict) -> dict:
        self.process.stdin.write(json.dumps(request).encode() + b"\n")
        self.process.stdin.flush()
        return self.line()

    def test_several_virtual_printers_report_their_addresses_with_their_names(self):
        self.assertRegex(self.places[0], r"^tcp:127\.0\.0\.1:\d+,name=till$")
        self.assertRegex(self.places[1], r"^tcp:127\.0\.0\.1:\d+,name=kitchen$")
        self.assertExit(0, run("-d", self.places[1], "online"))

    def test_several_virtual_printers_print_separately_and_each_record_names_its_printer(self):
        with connect(self.places[0]) as till, connect(self.places[1]) as kitchen:
            kitchen.sendall(b"soup\n")
            till.sendall(b"bill\n" + STATUS_REQUEST)
            receive(till, 9)
            till.close()
            self.assertEqual(self.line()["printer"], "till")
            kitchen.close()
            self.assertEqual(self.line()["printer"], "kitchen")

    def test_several_virtual_printers_can_be_controlled_singly_and_together(self):
        self.assertEqual(self.control({"printer": "kitchen", "set": {"coverOpen": True}}), {"ok": True})
        self.assertFalse(self.control({"printer": "till", "get": "state"})["state"]["coverOpen"])
        self.assertTrue(self.control({"printer": "kitchen", "get": "state"})["state"]["coverOpen"])
        self.control({"set": {"compulsionSwitch": True}})
        for name in ("till", "kitchen"):
            self.assertTrue(self.control({"printer": name, "get": "state"})["state"]["compulsionSwitch"])

    def test_the_error_of_an_unknown_printer_lists_the_known_printers(self):
        answer = self.control({"printer": "bar", "get": "state"})
        self.assertFalse(answer["ok"])
        self.assertIn("kitchen", answer["error"])


class HostsOption(Case):
    def test_a_second_host_is_disconnected_if_further_hosts_are_refused(self):
        simulator = self.simulator("tcp:0", "--hosts", "refuse")
        with simulator.connect() as first:
            first.sendall(STATUS_REQUEST)
            receive(first, 9)
            with simulator.connect() as second, contextlib.suppress(ConnectionResetError):
                self.assertEqual(second.recv(1), b"")
            first.sendall(STATUS_REQUEST)
            self.assertEqual(len(receive(first, 9)), 9)

        def answers():
            with simulator.connect() as third, contextlib.suppress(ConnectionError):
                third.sendall(STATUS_REQUEST)
                return third.recv(9)
            return b""

        eventually(answers, "a host that comes after the first has left is served")

    def test_two_connected_hosts_print_alternately_if_hosts_take_turns(self):
        folder = self.folder / "receipts"
        simulator = self.simulator("tcp:0", "--hosts", "turns", "--receipts", str(folder))
        with simulator.connect() as first, simulator.connect() as second:
            for words in (b"one", b"three"):
                first.sendall(words + b"\n" + STATUS_REQUEST)
                self.assertEqual(len(receive(first, 9)), 9)
                second.sendall(b"not " + words + b"\n" + STATUS_REQUEST)
                self.assertEqual(len(receive(second, 9)), 9)
        simulator.stop(signal.SIGTERM)
        texts = [(folder / f"receipt-000{number}.txt").read_text() for number in range(1, 5)]
        self.assertEqual(texts, ["one\n", "not one\n", "three\n", "not three\n"])

    def test_hosts_that_take_turns_are_not_interrupted_while_their_data_is_printed(self):
        simulator = self.simulator("tcp:0", "--hosts", "turns", "--set", "speed=20")
        with simulator.connect() as first, simulator.connect() as second:
            first.sendall(b"x" * 30)
            eventually(lambda: simulator.state()["buffered"] > 0, "the first prints")
            second.sendall(STATUS_REQUEST)
            self.assertEqual(len(receive(second, 9)), 9)
            self.assertEqual(simulator.state()["printedBytes"], 30, "the second waited for its turn")

    def test_an_unknown_mode_for_several_hosts_is_refused(self):
        result = run("simulate", "--listen", "tcp:0", "--hosts", "all")
        self.assertExit(2, result)
        self.assertIn('takes "one", "turns" or "refuse"', result.err)


class Drawing(Case):
    def test_drawing_a_long_receipt_does_not_delay_an_answer(self):
        """A receipt of fifty metres takes seconds to draw; the printer must answer during that time."""
        folder = self.folder / "receipts"
        simulator = self.simulator("tcp:0", "--receipts", str(folder))
        with simulator.connect() as host:
            host.sendall((b"x" * 40 + b"\n") * 4_000 + b"\x10\x04\1")
            receive(host, 1)
        waits = []
        with simulator.connect() as host:
            while not (folder / "receipt-0001.json").exists():
                begin = time.monotonic()
                host.sendall(b"\x10\x04\1")
                self.assertEqual(receive(host, 1), b"\x12")
                waits.append(time.monotonic() - begin)
                select.select([], [], [], 0.002)
        self.assertGreater(len(waits), 2, "the receipt was drawn meanwhile")


if __name__ == "__main__":
    main()
