"""Helpers for tests of installed programs. They run a program, read its output line by line, and start a virtual printer.

Nothing here sleeps for a fixed time: each wait ends with a line of output, with the end of a program, or at a deadline.
"""

import os
import queue
import subprocess
import tempfile
import threading
import unittest
from pathlib import Path

QUORPORT = os.environ["QUORPORT"]
EXAMPLES = Path(os.environ["EXAMPLES"])
SOURCES = Path(os.environ["SOURCES"])
DEADLINE = 30  # seconds; far beyond the time of any test here


class Program:
    """A running program, whose output is read line by line. It is killed by `end` or when the test ends."""

    def __init__(self, test: unittest.TestCase, *command):
        self.process = subprocess.Popen(
            list(map(str, command)), stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True, bufsize=1
        )
        self.lines = queue.Queue()
        self.reader = threading.Thread(target=self.read)
        self.reader.start()
        test.addCleanup(self.end)

    def read(self):
        for line in self.process.stdout:
            self.lines.put(line.rstrip("\n"))

    def line(self) -> str:
        return self.lines.get(timeout=DEADLINE)

    def write(self, line: str):
        self.process.stdin.write(line + "\n")

    def end(self):
        self.process.kill()
        self.process.wait()
        self.reader.join()
        self.process.stdin.close()
        self.process.stdout.close()


class ProgramTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)

    def printer(self, listen: str) -> tuple[Program, str]:
        """Starts a virtual printer, which runs until the test ends. Returns its program and its device name."""
        program = Program(self, QUORPORT, "simulate", "--listen", listen)
        return program, program.line().removeprefix("listening ")

    def run_program(self, *command) -> subprocess.CompletedProcess:
        return subprocess.run(list(map(str, command)), capture_output=True, text=True, timeout=DEADLINE)
