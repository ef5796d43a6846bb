"""The back end lists printers, and finds the printer that a queue's URI names."""

import socket
import subprocess
import time
import unittest

from harness import DEADLINE, IS_SANITIZED, eventually, main
from private_bus import BusCase
from queues import QUOR, RECEIPT, least

ADDRESS = "01:23:45:67:89:AB"
LIMIT = 3  # seconds that the back end may take to list printers


class Listing(BusCase):
    def list(self) -> tuple[str, float]:
        """Lets the back end list printers. Returns its output, and how many seconds the listing took."""
        began = time.monotonic()
        said = subprocess.run([QUOR], capture_output=True, text=True, timeout=DEADLINE, env=self.environment)
        self.assertEqual(said.returncode, 0, said)
        return said.stdout, time.monotonic() - began

    def assertInTime(self):
        self.assertLess(least(lambda: self.list()[1], LIMIT), LIMIT)

    def test_the_back_end_lists_each_printer_in_the_form_of_the_print_system(self):
        self.bluetooth("alias=Kitchen", "another=01:23:45:67:89:AC", 'alias=The "best"')
        lines = [line for line in self.list()[0].splitlines() if "bluetooth" in line]
        self.assertEqual(lines, [
            f'direct quor:/bluetooth/{ADDRESS} "Unknown" "Kitchen" "CLS:PRINTER;" ""',
            r'direct quor:/bluetooth/01:23:45:67:89:AC "Unknown" "The \"best\"" "CLS:PRINTER;" ""'])

    def test_the_list_takes_less_than_three_seconds(self):
        self.bluetooth()
        self.assertInTime()

    @unittest.skipIf(IS_SANITIZED, "a sanitizer takes time")
    def test_the_list_takes_less_than_three_seconds_even_if_a_service_never_answers(self):
        listener = socket.socket(socket.AF_UNIX)
        self.addCleanup(listener.close)
        listener.bind(str(self.socket))
        listener.listen()
        self.assertInTime()

    def test_the_list_takes_less_than_three_seconds_without_services(self):
        self.assertInTime()


class Uris(BusCase):
    def start(self, uri: str) -> subprocess.Popen:
        process = subprocess.Popen([QUOR, "1", "anna", "receipt", "1", f"job-uuid={uri}", self.file("data", RECEIPT)],
                                   stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True,
                                   env=self.environment | {"DEVICE_URI": uri, "CUPS_CACHEDIR": str(self.folder)})
        self.addCleanup(process.stderr.close)
        self.addCleanup(process.wait)
        self.addCleanup(process.kill)
        return process

    def why_it_waits(self, uri: str) -> str:
        for line in self.start(uri).stderr:
            if line.startswith("INFO: waiting: "):
                return line
        raise AssertionError(f"{uri} is not waited for")

    def assertPrints(self, uri: str, printer):
        process = self.start(uri)
        said = process.stderr.read()
        self.assertEqual(process.wait(DEADLINE), 0, said)
        eventually(lambda: printer.state()["printedBytes"] == len(RECEIPT), "the receipt is on paper")

    def test_a_uri_can_name_a_printer_at_a_local_socket(self):
        printer = self.simulator(f"unix:{self.folder}/a printer")
        self.assertPrints(f"quor:/unix{self.folder}/a%20printer", printer)

    def test_a_uri_can_name_a_printer_on_a_serial_line(self):
        printer = self.simulator("pty:")
        self.assertPrints(f"quor:/serial{printer.place.removeprefix('pty:').removeprefix('serial:')}?baud=115200", printer)

    def test_a_uri_can_name_a_paired_bluetooth_printer(self):
        printer = self.simulator(f"unix:{self.folder}/printer")
        self.bluetooth(printer=printer.place.partition(":")[2])
        self.assertPrints(f"quor:/bluetooth/{ADDRESS}", printer)

    def test_a_uri_can_contain_a_device_text(self):
        printer = self.simulator()
        self.assertPrints(f"quor:{printer.place},name=Kitchen", printer)

    def test_the_queue_message_of_a_missing_printer_names_the_missing_device(self):
        self.assertRegex(self.why_it_waits("quor:/usb/4711"), "4711")
        self.assertRegex(self.why_it_waits("quor:/serial/dev/ttyNone"), "ttyNone")
        self.assertRegex(self.why_it_waits("quor:/unix/run/nobody"), "/run/nobody")
        self.assertRegex(self.why_it_waits(f"quor:/bluetooth/{ADDRESS}"), "[Bb]luetooth|bus")


if __name__ == "__main__":
    main()
