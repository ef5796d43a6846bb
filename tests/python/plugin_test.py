"""The plug-in for pytest, used in tests like those of a program that prints receipts. Needs pytest."""

import subprocess
import tempfile
import unittest
from pathlib import Path

SHOP = """
from quorioport import Port


def print_receipt(to):
    with Port(to) as port:
        port.print(b"THE CORNER BAKERY\\n")


def test_the_receipt_names_the_shop(virtual_printer):
    print_receipt(to=virtual_printer.device)
    assert "THE CORNER BAKERY" in virtual_printer.next_receipt().text


def test_each_test_has_a_printer_of_its_own(virtual_printer):
    assert virtual_printer.state()["printedBytes"] == 0


def test_that_fails(virtual_printer):
    print_receipt(to=virtual_printer.device)
    assert "ANOTHER SHOP" in virtual_printer.next_receipt().text
"""


class PytestPlugin(unittest.TestCase):
    def test_the_pytest_plugin_gives_each_test_a_virtual_printer(self):
        with tempfile.TemporaryDirectory() as folder:
            (Path(folder) / "test_shop.py").write_text(SHOP)
            done = subprocess.run(["pytest-3", "-q", "-p", "quorioport.pytest_plugin", folder], capture_output=True,
                                  text=True, timeout=120)
        self.assertEqual(done.returncode, 1, done.stdout)
        self.assertIn("1 failed, 2 passed", done.stdout)


if __name__ == "__main__":
    unittest.main()
