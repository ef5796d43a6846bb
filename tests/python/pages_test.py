"""The programs in Python that the README and docs/python.md show: the README's program runs, the others compile."""

import ast
import re
import subprocess
import sys
import textwrap
import unittest
from pathlib import Path

from quorioport import VirtualPrinter

ROOT = Path(__file__).resolve().parents[2]


def programs(page: str) -> list[str]:
    return re.findall(r"^```python\n(.*?)^```", (ROOT / page).read_text(), re.M | re.S)


class ProgramsInTheGuides(unittest.TestCase):
    def test_the_python_program_of_the_readme_prints(self):
        program, = programs("README.md")
        self.assertLessEqual(len([line for line in program.splitlines() if line]), 6)
        with VirtualPrinter() as printer:
            done = subprocess.run([sys.executable, "-c", program.replace("tcp:127.0.0.1:9100", printer.device)],
                                  capture_output=True, text=True, timeout=60)
            self.assertEqual((done.returncode, done.stdout.split()), (0, ["printed"]), done.stderr)
            self.assertIn("THE CORNER BAKERY", printer.next_receipt().text)

    def test_every_program_of_the_python_guide_is_valid_syntax(self):
        shown = programs("docs/python.md")
        self.assertGreater(len(shown), 4)
        for program in shown:
            ast.parse("async def program():\n" + textwrap.indent(program, "    "))


if __name__ == "__main__":
    unittest.main()
