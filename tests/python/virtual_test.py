"""The virtual printer for programs and tests in Python."""

import os
import subprocess
import sys
import unittest
from pathlib import Path

import quorioport
from quorioport import Port, VirtualPrinter


class VirtualPrinters(unittest.TestCase):
    def test_a_receipt_has_a_text_a_picture_and_a_record(self):
        with VirtualPrinter() as printer:
            with Port(printer.device, emulation=quorioport.Emulation.ESCPOS) as port:
                port.print(b"Caf\x82\n\x1d\x56\x00")
            receipt = printer.next_receipt()
        self.assertIn("Café", receipt.text)
        self.assertTrue(receipt.picture.startswith(b"\x89PNG"))
        self.assertEqual(receipt.record["cuts"], 1)

    def test_a_receipt_is_read_as_utf8_in_any_locale(self):
        program = """
from quorioport import Emulation, Port, VirtualPrinter
with VirtualPrinter() as printer:
    with Port(printer.device, emulation=Emulation.ESCPOS) as port:
        port.print(b"Caf\\x82\\n")
    print(ascii(printer.next_receipt().text))
"""
        ascii_alone = {"LC_ALL": "C", "PYTHONCOERCECLOCALE": "0", "PYTHONUTF8": "0"}
        ran = subprocess.run([sys.executable, "-c", program], env=os.environ | ascii_alone, capture_output=True,
                             text=True, timeout=60, check=False)
        self.assertEqual(ran.stdout, "'Caf\\xe9\\n'\n", ran)

    def test_each_receipt_is_returned_once_and_in_order(self):
        with VirtualPrinter() as printer:
            for number in range(3):
                with Port(printer.device) as port:
                    port.print(b"receipt %d\n" % number)
            texts = [printer.next_receipt().text.strip() for _ in range(3)]
            self.assertEqual(texts, ["receipt 0", "receipt 1", "receipt 2"])
            with self.assertRaisesRegex(quorioport.OperationError, "no job ended within 0.01 s"):
                printer.next_receipt(timeout=0.01)

    def test_settings_can_be_spelled_in_snake_case_or_camel_case(self):
        with VirtualPrinter(cover_open=True, speed=200) as printer:
            self.assertEqual((printer.state()["coverOpen"], printer.state()["speed"]), (True, 200))
            printer.set(cover_open=False, receiptPaperEmpty=True)
            self.assertEqual((printer.state()["coverOpen"], printer.state()["receiptPaperEmpty"]), (False, True))

    def test_faults_can_be_injected_and_cleared(self):
        with VirtualPrinter() as printer, Port(printer.device, timeout=2) as port:
            printer.fault(drop_reply="all")
            with self.assertRaises(quorioport.OperationError):
                port.firmware()
            printer.clear_faults()
            self.assertNotEqual(port.firmware(), "")

    def test_the_error_of_an_unknown_setting_names_the_setting(self):
        with VirtualPrinter() as printer:
            with self.assertRaisesRegex(quorioport.UsageError, "coverAjar"):
                printer.set(cover_ajar=True)
            printer.set(cover_open=True)
        with self.assertRaisesRegex(quorioport.UsageError, "coverAjar"):
            VirtualPrinter(cover_ajar=True)
        with self.assertRaisesRegex(quorioport.SystemFailureError, "install"):
            VirtualPrinter(command="/nowhere/quorport")

    def test_a_stopped_virtual_printer_leaves_no_process_and_no_file(self):
        printer = VirtualPrinter()
        folder, process = Path(printer._folder.name), printer._process.pid
        printer.close()
        printer.close()
        self.assertFalse(folder.exists())
        self.assertFalse(os.path.exists(f"/proc/{process}"))
        with self.assertRaisesRegex(quorioport.OperationError, "does not run"):
            printer.state()


if __name__ == "__main__":
    unittest.main()
