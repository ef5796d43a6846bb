"""Bluetooth printers and the command: printed receipts, and the answers if nothing is printed."""

import os
import signal
import socket
import subprocess
import time
import unittest
from pathlib import Path

from harness import DEADLINE, QUORPORT, eventually, main
from private_bus import BusCase

ADDRESS = "01:23:45:67:89:AB"
DEVICE = f"bluetooth:{ADDRESS}"


class BluetoothPrinting(BusCase):
    def printer(self, *settings: str) -> str:
        """Starts a virtual printer, and returns the path of its socket."""
        options = [part for setting in settings for part in ("--set", setting)]
        self.served = self.simulator(f"unix:{self.folder}/printer", *options)
        return self.served.place.partition(":")[2]

    def receipt(self, lines: int) -> str:
        return self.file("receipt", b"a line of the receipt\n" * lines)

    def test_a_receipt_is_printed_if_the_printer_is_chosen_by_name_or_address(self):
        self.bluetooth(printer=self.printer())
        for device in (DEVICE, DEVICE.lower(), "bluetooth:Kitchen", "bluetooth:"):
            result = self.run_command("-d", device, "print", self.receipt(9), "--json")
            self.assertExit(0, result)
            self.assertEqual(result.json()["outcome"], "printed")

    def test_the_address_or_the_printer_name_in_a_port_name_selects_the_printer(self):
        self.bluetooth("another=01:23:45:67:89:AC", printer=self.printer())
        for name in (f"BT:{ADDRESS}", "BT:Kitchen"):
            self.assertExit(0, self.run_command("-d", "bluetooth:", "-p", name, "status"))

    def test_list_shows_all_paired_printers_and_no_other_device(self):
        self.bluetooth("another=01:23:45:67:89:AC", "alias=Bar", "another=01:23:45:67:89:AD", "paired=no",
                       "another=01:23:45:67:89:AE", "class=5a020c")
        answer = self.run_command("-d", "bluetooth:", "list", "--json").json()
        self.assertEqual([found["name"] for found in answer["accessories"]], ["Kitchen", "Bar"])

    def test_find_shows_the_printer_and_reports_that_the_network_was_not_searched(self):
        self.bluetooth()
        result = self.run_command("find", "--json")
        self.assertExit(0, result)
        self.assertIn({"device": DEVICE, "name": "Kitchen", "serialNumber": None, "via": "bluetooth", "reachable": None},
                      result.json()["found"])
        self.assertIn("the network was not searched", result.err)

    def test_if_the_bluetooth_service_ends_during_a_job_the_link_is_lost_and_the_next_job_works(self):
        printer = self.printer("speed=500")
        service = self.bluetooth(printer=printer)
        process = self.start_command("-d", DEVICE, "print", self.receipt(400), "--json")
        self.addCleanup(process.kill)
        eventually(lambda: self.served.state()["printedBytes"] > 0, "the job is under way")
        service.kill()
        began = time.monotonic()
        out, _ = process.communicate(timeout=DEADLINE)
        self.assertLess(time.monotonic() - began, 2 + 2, out)  # two seconds more for the end of the command
        self.assertIn(process.returncode, (5, 6), out)
        self.assertIn(b"lost", out)
        self.bluetooth(printer=printer)
        self.served.set(speed=0)
        self.assertExit(0, self.run_command("-d", DEVICE, "print", self.receipt(9)))

    def test_if_the_message_bus_ends_during_a_job_the_link_is_lost(self):
        self.bluetooth(printer=self.printer("speed=500"))
        process = self.start_command("-d", DEVICE, "print", self.receipt(400), "--json")
        self.addCleanup(process.kill)
        eventually(lambda: self.served.state()["printedBytes"] > 0, "the job is under way")
        self.bus.kill()
        out, _ = process.communicate(timeout=DEADLINE)
        self.assertIn(process.returncode, (5, 6), out)
        self.assertIn(b"lost", out)

    def test_if_the_printer_leaves_the_range_during_a_job_the_lost_link_and_the_byte_count_are_reported(self):
        listener = self.open_local(self.folder / "printer")
        self.bluetooth(printer=str(self.folder / "printer"))
        process = self.start_command("-d", DEVICE, "print", "--unchecked", self.receipt(400), "--json")
        self.addCleanup(process.kill)
        connection, _ = listener.accept()
        self.assertTrue(connection.recv(1024))
        connection.close()
        out, _ = process.communicate(timeout=DEADLINE)
        self.assertIn(process.returncode, (5, 6), out)

    def test_disconnect_makes_the_printers_module_drop_the_link(self):
        self.bluetooth(printer=self.printer())
        result = self.run_command("-d", DEVICE, "disconnect", "--json")
        self.assertAnswers(DEVICE, {"ok": True}, result)

    def open_local(self, path: Path) -> socket.socket:
        listener = socket.socket(socket.AF_UNIX)
        self.addCleanup(listener.close)
        listener.bind(str(path))
        listener.listen()
        listener.settimeout(DEADLINE)
        return listener


# What is wrong, the exit code, words of the answer, and words of the doctor's advice.
FAILURES = {
    "no adapter": (["adapter=none"], 3, "no Bluetooth adapter", "plug an adapter in"),
    "adapter off": (["adapter=off"], 3, "adapter is switched off", "bluetoothctl power on"),
    "not paired": (["paired=no"], 3, "not paired", "bluetoothctl pair"),
    "no serial port": (["services=0000110a-0000-1000-8000-00805f9b34fb"], 3, "offers no serial port", "bluetoothctl remove"),
    "rejected": (["error=org.bluez.Error.Failed Connection refused (111)"], 3, "refused the connection", "pair the printer again"),
    "host down": (["error=org.bluez.Error.Failed Host is down (112)"], 3, "does not answer over the air", "bring it nearer"),
    "out of range": (["error=org.bluez.Error.Failed br-connection-page-timeout"], 3, "does not answer over the air", "bring it nearer"),
    "in use": (["error=org.bluez.Error.Failed Device or resource busy (16)"], 4, "in use by another program", "end the other program"),
    "second session": (["error=org.bluez.Error.InProgress In Progress"], 4, "in use by another program", "end the other program"),
    "not allowed": (["error=org.freedesktop.DBus.Error.AccessDenied Rejected"], 3, "this user may not use", "usermod -aG bluetooth"),
}


class BluetoothFailures(BusCase):
    def assertTold(self, code: int, text: str):
        result = self.run_command("-d", DEVICE, "status", "--json")
        self.assertExit(code, result)
        self.assertIn(text, result.json()["error"])

    def test_each_failure_has_its_message_exit_status_and_advice(self):
        for name, (settings, code, text, advice) in FAILURES.items():
            service = self.bluetooth(*settings)
            with self.subTest(name):
                self.assertTold(code, text)
                doctor = self.run_command("-d", DEVICE, "doctor")
                self.assertExit(code, doctor)
                self.assertIn(advice, doctor.out)
            self.end(service)

    def test_a_missing_message_bus_is_reported(self):
        self.assertTold(3, "the system's message bus cannot be reached")

    def test_a_missing_bluetooth_service_is_reported(self):
        self.start_bus()
        self.assertTold(3, "the Bluetooth service does not run")

    def test_a_bluetooth_service_that_hangs_is_reported_within_12_seconds(self):
        service = self.bluetooth()
        service.send_signal(signal.SIGSTOP)
        self.addCleanup(service.send_signal, signal.SIGCONT)
        result = self.run_command("-d", DEVICE, "status", "--json")
        self.assertExit(3, result)
        self.assertIn("does not answer", result.json()["error"])
        self.assertLess(result.seconds, 12)

    def test_a_missing_authorisation_is_reported_within_15_seconds(self):
        self.bluetooth("never=yes")
        result = self.run_command("-d", DEVICE, "status", "--json")
        self.assertExit(3, result)
        self.assertIn("not authorised in time", result.json()["error"])
        self.assertLess(result.seconds, 15)

    def test_control_characters_of_a_printers_name_are_escaped_on_the_terminal(self):
        self.bluetooth("alias=\x1b[2J" + "x" * 200, "error=org.bluez.Error.Failed \x1b[2J")
        result = self.run_command("-d", DEVICE, "status")
        self.assertExit(3, result)
        self.assertNotIn("\x1b", result.err + result.out)


class Loading(unittest.TestCase):
    def libraries(self, program: str) -> str:
        return subprocess.run(["ldd", program], check=True, capture_output=True, text=True).stdout

    def test_the_port_library_does_not_link_the_message_bus_library(self):
        library = Path(os.environ["LIBRARIES"], "libQuorIOPort.so")
        self.assertNotRegex(self.libraries(str(library)), r"dbus|systemd")
        self.assertRegex(self.libraries(QUORPORT), r"libsdbus-c\+\+")


if __name__ == "__main__":
    main()
