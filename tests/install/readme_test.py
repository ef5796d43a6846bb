"""The program in the README, compiled against the installed package as it stands there, and run."""

import os
import re
import shlex
import subprocess
import unittest
from pathlib import Path

from programs import SOURCES, ProgramTest

PRINTER = "tcp:192.0.2.10:9100"  # the README's, which nobody has


class Readme(ProgramTest):
    def compile(self, program: str) -> Path:
        source, binary = self.folder / "program.cpp", self.folder / "program"
        source.write_text(program)
        flags = subprocess.run(["pkg-config", "--cflags", "--libs", "QuorIOPort"],
                               check=True, capture_output=True, text=True).stdout
        command = [os.environ["CXX"], "-std=c++20", "-Wall", "-Wextra", "-Werror",
                   *shlex.split(os.environ["CXXFLAGS"]), source, "-o", binary, *shlex.split(flags)]
        subprocess.run(command, check=True)
        return binary

    def test_its_program_finds_a_printer_ready(self):
        (program,) = re.findall(r"^```cpp\n(.*?)^```", (SOURCES / "README.md").read_text(), re.M | re.S)
        self.assertIn(PRINTER, program)
        self.compile(program)
        _, device = self.printer("tcp:0")
        result = self.run_program(self.compile(program.replace(PRINTER, device)))
        self.assertEqual((result.stdout, result.stderr), ("ready to print\n", ""))


if __name__ == "__main__":
    unittest.main()
