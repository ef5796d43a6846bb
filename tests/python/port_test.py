"""A port in Python, with the virtual printer and without a printer."""

import gc
import logging
import threading
import unittest

import quorioport
from quorioport import Emulation, Port, VirtualPrinter


class PortQueries(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.printer = VirtualPrinter(firmware="V7.1", dip1="c0ff", dip2="0102")
        cls.addClassCleanup(cls.printer.close)

    def port(self, **options) -> Port:
        port = Port(self.printer.device, **{"timeout": 2, **options})
        port.open()
        self.addCleanup(port.close)
        return port

    def test_each_query_of_a_port_returns_its_answer(self):
        port = self.port()
        self.assertTrue(port.is_open)
        self.assertTrue(port.is_connected())
        self.assertTrue(port.is_online())
        self.assertEqual(port.firmware(), "V7.1")
        self.assertEqual(port.dip_switches(), (b"\xc0\xff", b"\x01\x02"))
        self.assertEqual(port.button_security_timeout(), 0)
        self.assertEqual(port.name(), self.printer.device.split(":", 1)[1])
        self.assertEqual(port.serial_number(), "")
        self.assertGreater(port.connection_id(), 0)

    def test_a_status_reports_the_conditions_of_the_printer(self):
        for emulation in (Emulation.LINE, Emulation.ESCPOS):
            with self.subTest(emulation):
                port = self.port(emulation=emulation)
                self.assertTrue(port.status().online)
                self.printer.set(cover_open=True)
                self.addCleanup(self.printer.set, cover_open=False)
                status = port.status()
                self.assertEqual((status.online, status.cover_open, status.paper_empty), (False, True, False))
                self.assertIn("coverOpen", status.conditions)
                self.assertGreater(len(status.raw), 0)
                self.assertFalse(port.is_online())
                self.printer.set(cover_open=False)
                port.close()

    def test_raw_bytes_can_be_written_and_read(self):
        port = self.port()
        self.assertEqual(port.write(b"\x1b\x06\x01"), 3)
        answer = b""
        for _ in range(100):
            answer += port.read(64)
            if len(answer) >= 9:
                break
        self.assertEqual(answer[0], 0x89)
        port.send_command(b"\x1b\x23\x2a\x0a\x00")
        port.drop_all()
        with self.assertRaisesRegex(quorioport.UsageError, "0 or more"):
            port.read(-1)

    def test_disconnect_makes_the_bluetooth_module_drop_the_link(self):
        port = self.port(timeout=5)
        port.disconnect()
        with self.assertRaises(quorioport.LinkLostError):
            port.status()

    def test_several_threads_can_query_a_port_simultaneously(self):
        port = self.port()
        answers = []
        threads = [threading.Thread(target=lambda: answers.append(port.firmware())) for _ in range(8)]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
        self.assertEqual(answers, ["V7.1"] * 8)

    def test_log_records_are_passed_to_a_python_logger(self):
        with (self.assertLogs("quorioport", logging.DEBUG) as logs, quorioport.forward_log(),
              Port(self.printer.device) as port):
            port.is_online()
        self.assertTrue(any("getOnlineStatus" in line for line in logs.output), logs.output[:5])


class OpeningAPort(unittest.TestCase):
    def test_a_query_of_a_closed_port_raises_an_error(self):
        port = Port("virtual:")
        self.assertFalse(port.is_open)
        self.assertFalse(port.is_connected())
        with self.assertRaisesRegex(quorioport.OperationError, "not open"):
            port.status()
        port.close()

    def test_a_port_can_be_opened_again_after_a_close(self):
        port = Port("virtual:")
        for _ in range(2):
            with port:
                self.assertTrue(port.is_online())
            self.assertFalse(port.is_open)

    def test_the_port_name_chooses_among_several_printers(self):
        devices = ["virtual:name=Bar", "virtual:name=Kitchen,serial=K7"]
        with Port(devices, port_name="BT:Kitchen") as port:
            self.assertEqual((port.name(), port.serial_number()), ("Kitchen", "K7"))
        with Port(devices) as port:
            self.assertEqual(port.name(), "Bar")

    def test_an_invalid_argument_raises_an_error_that_names_the_cause(self):
        for device, error, said in (("pigeon:home", quorioport.UsageError, "pigeon"),
                                    ("unix:/nowhere/at/all", quorioport.OperationError, "/nowhere/at/all")):
            with self.subTest(device), self.assertRaisesRegex(error, said):
                Port(device).open()
        for wrong in ({"timeout": -1}, {"timeout": float("nan")}, {"end_timeout": 1e9}, {"emulation": 7}):
            with self.subTest(wrong), self.assertRaises(ValueError):
                Port("virtual:", **wrong)

    def test_a_port_that_was_not_closed_is_closed_with_a_warning_when_collected(self):
        with VirtualPrinter() as printer:
            port = Port(printer.device)
            port.open()
            with self.assertWarnsRegex(ResourceWarning, "not closed"):
                del port
                gc.collect()
            with Port(printer.device) as port:  # the printer serves one host at a time
                self.assertTrue(port.is_online())

    def test_the_package_and_the_library_have_the_same_version(self):
        self.assertEqual(quorioport._library.function("version")().decode(), quorioport.__version__)


if __name__ == "__main__":
    unittest.main()
