"""The package passes mypy's strict checks, and ruff's rules if ruff is installed. Needs mypy."""

import shutil
import subprocess
import unittest
from pathlib import Path

PACKAGE = Path(__file__).resolve().parents[2] / "python"


class Typing(unittest.TestCase):
    def assertSilent(self, *command: str):
        done = subprocess.run(command, cwd=PACKAGE, capture_output=True, text=True, timeout=300)
        self.assertEqual(done.returncode, 0, done.stdout + done.stderr)

    def test_mypy_finds_no_error_in_the_package(self):
        self.assertSilent("mypy", "--config-file", "pyproject.toml", "--cache-dir", "/dev/null", "quorioport")

    @unittest.skipUnless(shutil.which("ruff"), "needs ruff")
    def test_ruff_finds_no_error_in_the_package(self):
        self.assertSilent("ruff", "check", "--no-cache", ".")


if __name__ == "__main__":
    unittest.main()
