"""The examples in examples/your-tests: each passes with the right receipt, and fails with a wrong receipt."""

import os
import shutil
import subprocess
import unittest
from pathlib import Path

from harness import DEADLINE, QUORPORT, Case, main

EXAMPLES = Path(__file__).parents[2] / "examples/your-tests"


class ExampleTests(Case):
    def check(self, command: list[str], name: str):
        """Runs the example unchanged, and with a receipt whose code page lacks a character."""
        source = (EXAMPLES / name).read_text(encoding="utf-8")
        wrong = source.replace(r"\x1bt\x13Caf", r"\x1bt\x10Caf").replace(r"2.80 \xd5", r"2.80 \x81")
        self.assertNotEqual(source, wrong)
        environment = os.environ | {"PATH": f"{Path(QUORPORT).parent}:{os.environ['PATH']}", "LC_ALL": "C.UTF-8"}
        for text, is_right in ((source, True), (wrong, False)):
            file = Path(self.file(name, text.encode()))
            ran = subprocess.run([*command, file], env=environment, capture_output=True, timeout=DEADLINE, check=False)
            self.assertEqual(ran.returncode == 0, is_right, ran)

    def test_the_python_example_of_a_test_passes(self):
        self.check(["python3"], "receipt_test.py")

    def test_the_shell_example_of_a_test_passes(self):
        self.check(["bash"], "receipt_test.sh")

    @unittest.skipUnless(shutil.which("node"), "node is not installed")
    def test_the_javascript_example_of_a_test_passes(self):
        self.check(["node", "--test"], "receipt.test.js")


if __name__ == "__main__":
    main()
