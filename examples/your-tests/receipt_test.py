"""Tests the receipts of a shop on a virtual printer. Needs quorport in the PATH."""

import json
import socket
import subprocess
import tempfile
import unittest
from pathlib import Path


def print_receipt(host: str, port: int):
    """The code under test: put yours here."""
    with socket.create_connection((host, port)) as printer:
        printer.sendall(b"\x1b@\x1bt\x13Caf\x82  2.80 \xd5\n\x1bp\0\x19\xfa\x1dVA\0")


class Receipt(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)
        self.printer = subprocess.Popen(
            ["quorport", "--json", "simulate", "--strict", "--set", "profile=escpos-80", "--listen", "tcp:",
             "--receipts", self.folder.name], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, text=True)
        self.addCleanup(self.printer.stdout.close)
        self.addCleanup(self.printer.wait)
        self.addCleanup(self.printer.terminate)
        _, host, port = json.loads(self.printer.stdout.readline())["listening"][0].split(":")
        self.place = host, int(port)

    def test_shows_the_price_and_opens_the_drawer(self):
        print_receipt(*self.place)
        job = json.loads(self.printer.stdout.readline())
        self.assertTrue(job["ok"], job)
        self.assertEqual((job["cuts"], job["drawer"], job["missing"]), (1, 1, []))
        text = Path(next(file for file in job["files"] if file.endswith(".txt"))).read_text(encoding="utf-8")
        self.assertIn("Café  2.80 €", text)


if __name__ == "__main__":
    unittest.main()
