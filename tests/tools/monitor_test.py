"""`quorport monitor` reports each change of the printer, continues after a lost link, and ends on request."""

import json
import os
import pty
import signal
import subprocess
import threading

from harness import DEADLINE, STATUS_KEYS, Case, Running, answer_status, eventually, main, run, start, status_block

QUICK = ("--interval", "100")


class MonitorChanges(Case):
    def monitor(self, *arguments: str, **options) -> Running:
        monitor = Running("monitor", *QUICK, *arguments, **options)
        self.addCleanup(monitor.kill)
        return monitor

    def change(self, monitor: Running) -> dict:
        return json.loads(monitor.line())

    def test_monitor_writes_each_change_as_a_json_object(self):
        simulator = self.simulator("tcp:0", "--set", "connectedInterface=0")
        monitor = self.monitor("-d", simulator.place, "--json")
        first = self.change(monitor)
        self.assertEqual(set(first), {"time", "ok", "device", "state", "text", "status", "changed"})
        self.assertEqual(first["device"], simulator.place)
        self.assertEqual((first["ok"], first["state"], first["text"]), (True, "ready", "ready to print"))
        self.assertEqual(set(first["status"]), STATUS_KEYS)
        self.assertEqual(set(first["changed"]), STATUS_KEYS - {"raw", "rawLength"})
        self.assertRegex(first["time"], r"^\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{3}Z$")
        simulator.set(coverOpen=True)
        second = self.change(monitor)
        self.assertEqual((second["state"], second["changed"]), ("not-ready", ["coverOpen", "offline"]))
        simulator.set(coverOpen=False)
        self.assertEqual(self.change(monitor)["state"], "ready")

    def test_monitor_writes_each_change_as_a_line_of_text(self):
        simulator = self.simulator("tcp:0", "--set", "connectedInterface=0")
        monitor = self.monitor("-d", simulator.place)
        self.assertRegex(monitor.line(), r"^\d{4}-\d\d-\d\d \d\d:\d\d:\d\d  tcp:127.0.0.1:\d+: ready to print$")
        simulator.set(receiptPaperNearEmptyInner=True)
        self.assertRegex(monitor.line(), r": ready to print; the paper is near its end$")
        simulator.set(receiptPaperEmpty=True)
        self.assertRegex(monitor.line(), r": not ready: paper out; the paper is near its end$")

    def test_monitor_reports_a_lost_link_and_connects_again(self):
        place = f"unix:{self.folder}/printer"
        simulator = self.simulator(place)
        monitor = self.monitor("-d", place, "--json")
        self.assertEqual(self.change(monitor)["state"], "ready")
        simulator.kill()
        lost = self.change(monitor)
        self.assertEqual((lost["state"], lost["status"], lost["changed"]), ("link-lost", None, []))
        self.assertEqual((lost["ok"], lost["error"]), (False, lost["text"]))
        self.assertEqual(self.change(monitor)["state"], "unreachable")
        self.simulator(place)
        self.assertEqual(self.change(monitor)["state"], "ready")

    def test_monitor_waits_for_a_printer_that_appears_later(self):
        place = f"unix:{self.folder}/printer"
        monitor = self.monitor("-d", place, "--json")
        self.assertEqual(self.change(monitor)["state"], "unreachable")
        self.simulator(place)
        self.assertEqual(self.change(monitor)["state"], "ready")

    def test_monitor_reports_a_printer_that_stops_answering(self):
        answers = threading.Event()
        answers.set()

        def handle(connection):
            while connection.recv(4096):
                if answers.is_set():
                    connection.sendall(status_block())

        monitor = self.monitor("-d", self.peer(handle).place, "--json")
        self.assertEqual(self.change(monitor)["state"], "ready")
        answers.clear()
        self.assertEqual(self.change(monitor)["state"], "no-answer")
        answers.set()
        self.assertEqual(self.change(monitor)["state"], "ready")

    def test_on_a_terminal_monitor_rewrites_a_status_line_below_the_list_of_changes(self):
        master, terminal = pty.openpty()
        self.addCleanup(os.close, master)
        arguments = ("monitor", *QUICK, "--count", "3", "-d", "virtual:connectedInterface=0")
        process = start(*arguments, stdout=terminal, stderr=terminal)
        os.close(terminal)
        text = b""
        try:
            while more := os.read(master, 4096):
                text += more
        except OSError:
            pass  # the system reports by this error that the terminal is closed
        self.assertEqual(process.wait(DEADLINE), 0)
        process.stdout, process.stderr = None, None
        lines = text.decode().split("\r\x1b[K")
        self.assertEqual(sum("ready to print" in line for line in lines), 1)
        self.assertEqual([line.split(", ")[1] for line in lines if "unchanged" in line], ["1 look", "2 looks", "3 looks"])
        self.assertEqual(lines[-1], "")


class MonitorEnd(Case):
    def test_ctrl_c_closes_the_port_of_monitor(self):
        peer = self.peer(lambda connection: answer_status(connection, status_block()))
        for arguments in ((), ("--json",)):
            monitor = Running("monitor", *QUICK, "-d", peer.place, *arguments)
            self.addCleanup(monitor.kill)
            monitor.line()
            self.assertEqual(monitor.stop(signal.SIGINT), 130)
            peer.wait_until_idle()

    def test_ctrl_c_ends_the_wait_of_monitor_for_a_missing_printer(self):
        monitor = Running("monitor", "--interval", "3600000", "-d", f"unix:{self.folder}/none")
        self.addCleanup(monitor.kill)
        monitor.line()
        self.assertEqual(monitor.stop(signal.SIGINT), 130)

    def test_monitor_ends_after_the_given_count_with_the_status_of_the_last_answer(self):
        silent = self.peer(lambda connection: connection.recv(4096) and connection.recv(4096) and connection.recv(4096))
        for code, place in ((0, "virtual:"), (0, "virtual:coverOpen=true"), (3, f"unix:{self.folder}/none"),
                            (1, silent.place)):
            result = run("monitor", *QUICK, "--count", "2" if code != 1 else "1", "-d", place, "--json")
            self.assertExit(code, result)
            self.assertEqual(result.json()["ok"], code == 0, result)
            self.assertEqual("error" in result.json(), code != 0, result)
            self.assertEqual(result.err, "")

    def test_a_port_name_that_matches_no_device_ends_monitor_at_once(self):
        self.assertFailsInBothForms(3, "monitor", "-d", "virtual:Bar", "-p", "BT:Till", saying="Bar")

    def test_monitor_refuses_an_interval_or_a_count_out_of_range(self):
        for option, value in (("--interval", "99"), ("--interval", "x"), ("--count", "0"), ("--count", "-1")):
            self.assertFailsInBothForms(2, "monitor", option, value, saying=option)

    def test_monitor_ends_when_its_output_is_a_broken_pipe(self):
        simulator = self.simulator()
        process = start("monitor", *QUICK, "-d", simulator.place, stdout=subprocess.PIPE)
        process.stdout.readline()
        process.stdout.close()
        simulator.set(coverOpen=True)
        self.assertEqual(eventually(process.poll, "the end of the command"), 1)
        self.assertIn(b"standard output", process.stderr.read())
        process.stderr.close()


if __name__ == "__main__":
    main()
