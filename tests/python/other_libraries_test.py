"""Libraries that compose receipts hand their bytes to a port, as docs/python.md shows. Needs node and npm."""

import importlib.util
import shutil
import subprocess
import tempfile
import unittest

from quorioport import Emulation, Port, VirtualPrinter

ENCODER = "@point-of-sale/receipt-printer-encoder@3.0.3"
COMPOSE = """
const ReceiptPrinterEncoder = require('@point-of-sale/receipt-printer-encoder');
const encoder = new ReceiptPrinterEncoder({language: 'esc-pos'});
process.stdout.write(encoder.initialize().line('THE CORNER BAKERY').newline().cut().encode());
"""


class OtherLibraries(unittest.TestCase):
    def assertPrints(self, data: bytes):
        with VirtualPrinter() as printer:
            with Port(printer.device, emulation=Emulation.ESCPOS) as port:
                result = port.print(data)
            self.assertTrue(result.printed, result)
            self.assertIn("THE CORNER BAKERY", printer.next_receipt().text)

    @unittest.skipUnless(shutil.which("npm"), "needs npm")
    def test_a_receipt_composed_by_an_npm_library_is_printed(self):
        with tempfile.TemporaryDirectory() as folder:
            subprocess.run(["npm", "install", "--silent", "--no-audit", "--no-fund", ENCODER], cwd=folder, check=True,
                           capture_output=True, timeout=240)
            data = subprocess.run(["node", "-e", COMPOSE], cwd=folder, check=True, stdout=subprocess.PIPE).stdout
        self.assertPrints(data)

    @unittest.skipUnless(importlib.util.find_spec("escpos"), "needs python-escpos")
    def test_a_receipt_composed_by_python_escpos_is_printed(self):
        from escpos.printer import Dummy

        receipt = Dummy()
        receipt.text("THE CORNER BAKERY\n")
        receipt.cut()
        self.assertPrints(receipt.output)


if __name__ == "__main__":
    unittest.main()
