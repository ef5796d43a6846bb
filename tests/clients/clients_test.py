"""Client libraries from the npm registry print to the virtual printer as they would to a real printer.

Usage: clients_test.py FOLDER. The libraries, each of one version, are installed into FOLDER. Without npm or
without the registry the test is skipped, and says so.
"""

import json
import os
import random
import shutil
import subprocess
import sys
import unittest
from pathlib import Path

QUORPORT = os.environ["QUORPORT"]
HERE = Path(__file__).parent
SCRIPTS = HERE.parent.parent / "examples/ten-scripts.txt"
FOLDER = Path(sys.argv.pop(1))
DEADLINE = 60  # seconds
SKIPPED = 77

# The printer types of receiptio that use common ESC/POS; its other types use a maker's own commands.
MODES = ("escpos", "epson", "citizen", "fit", "impact", "impactb", "generic")


def install() -> str:
    """Installs the libraries. Returns an empty text, or the reason why this is impossible."""
    if not shutil.which("npm"):
        return "npm is not installed"
    FOLDER.mkdir(parents=True, exist_ok=True)
    for name in ("package.json", "package-lock.json", "clients.js"):
        shutil.copy(HERE / name, FOLDER)
    ran = subprocess.run(["npm", "ci", "--ignore-scripts", "--no-audit", "--no-fund", "--loglevel=error"], cwd=FOLDER,
                         capture_output=True, text=True, timeout=300, check=False)
    unreachable = any(sign in ran.stderr for sign in ("ENOTFOUND", "ECONNREFUSED", "EAI_AGAIN", "ETIMEDOUT"))
    if unreachable:
        return "the npm registry cannot be reached: " + ran.stderr.strip()
    assert ran.returncode == 0, ran.stderr
    return ""


class OtherLibraries(unittest.TestCase):
    def setUp(self):
        self.start("escpos-80")

    def start(self, profile: str):
        # Each printer has an address of its own, because one of the libraries always connects to port 9100.
        self.host = "127." + ".".join(str(random.randint(1, 250)) for _ in range(3))
        self.printer = subprocess.Popen(
            [QUORPORT, "--json", "simulate", "--strict", "--set", f"profile={profile}", "--listen",
             f"tcp:{self.host}:9100", "--receipts", FOLDER / "receipts"],
            stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, text=True)
        self.addCleanup(self.printer.stdout.close)
        self.addCleanup(self.printer.wait)
        self.addCleanup(self.printer.terminate)
        self.printer.stdout.readline()

    def print(self, client: str, mode: str = "", file: str = "") -> tuple[str, dict]:
        """The text on the paper, and the printer's record of the job."""
        ran = subprocess.run(["node", "clients.js", client, self.host, "9100", mode, file], cwd=FOLDER,
                             capture_output=True, text=True, timeout=DEADLINE, check=False)
        # One of the libraries also shows the printer's answers, whenever they arrive.
        self.assertIn("success", ran.stdout.splitlines(), (mode, ran))
        job = json.loads(self.printer.stdout.readline())
        paper = next(file for file in job["files"] if file.endswith(".txt"))
        return Path(paper).read_text(encoding="utf-8"), job

    def check(self, client: str, mode: str = ""):
        text, job = self.print(client, mode)
        self.assertTrue(job["ok"], (mode, job))
        self.assertIn("Total 4.20", text, mode)
        return text

    def test_other_libraries_print_question_marks_for_writing_systems_that_the_printer_lacks(self):
        """A table in docs/text-and-pictures.md shows these results beside the result of `quorport print --text`."""
        scripts = [line.split(maxsplit=1) for line in SCRIPTS.read_text(encoding="utf-8").splitlines()[:10]]
        latin, right_to_left = {"Latin", "Euro", "Cyrillic"}, {"Greek", "Arabic", "Hebrew"}
        for client, arrives, marks in (("receiptio", latin, 100), ("receipt-printer-encoder", latin | right_to_left, 47),
                                       ("node-thermal-printer", latin | right_to_left | {"Thai"}, 23)):
            paper, _ = self.print(client, file=str(SCRIPTS))
            self.assertEqual({script for script, words in scripts if words in paper}, arrives, client)
            self.assertEqual(paper.count("?"), marks, client)

    def test_receiptio_prints_and_reads_the_status_in_each_emulation(self):
        for mode in MODES:
            self.check("receiptio", mode)

    def test_receiptio_detects_the_emulation_of_the_printer(self):
        self.start("both")
        self.check("receiptio")

    def test_node_thermal_printer_connects_and_prints(self):
        self.check("node-thermal-printer")

    def test_escpos_prints(self):
        self.check("escpos")

    def test_node_escpos_gets_every_status_and_prints(self):
        self.check("@node-escpos")

    def test_receipt_printer_encoder_selects_code_pages_that_the_printer_has(self):
        self.assertIn("Grüße €", self.check("receipt-printer-encoder"))


if __name__ == "__main__":
    if why := install():
        print(why)
        sys.exit(SKIPPED)
    unittest.main()
