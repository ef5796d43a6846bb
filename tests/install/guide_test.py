"""The guides and the README are true: each command in them is run, and prints the output that they show.

A block of kind "console" is run in a shell of its own, in a folder that holds the examples. A line that
begins with "$ " is a command; the lines after it are its output. A "…" matches any text. A command
that ends in "&" runs until its block ends. The block's next command begins after this command has
printed the lines that the guide shows.
"""

import os
import re
import socket
import subprocess
import tempfile
import unittest
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

from programs import DEADLINE, QUORPORT, SOURCES, ProgramTest

PORTS = ("9100", "9101", "9102", "8080")  # replaced by free ports, because other programs may use these
READERS_PRINTER = "192.0.2.10"  # an address that nobody has
RECEIPT = SOURCES / "examples/receipt.txt"
PAGES = [SOURCES / "README.md", *sorted((SOURCES / "docs").glob("*.md"))]

BLOCK = re.compile(r"^```(\w*)\n(.*?)^```", re.M | re.S)
INDENTED = re.compile(r"^ {4}(?:sudo )?((?:\./dev|git|cd|cmake|g\+\+|build/bin/quorport|quorport)\b.*)", re.M)
ROW = re.compile(r"^\| (?P<says>[^|]+) \| (?P<code>\d) \| (?P<record>[^|]+) \|.*\| `(?P<device>\w+:[^`]*)` \|$", re.M)

# The tests in tests/python check the blocks in Python and JavaScript. Shell blocks without a prompt install something,
# so no test runs them.
RUN = ("console", "cpp", "")
RUN_ELSEWHERE = ("javascript", "python", "sh")

# Commands that other tests run, or that no test may run: a clone, an installation as root, a build inside a build, and
# Bluetooth, which the tests in the virtual machine cover.
ELSEWHERE = re.compile(r"\./dev \w+|git clone |cd |cmake --install |quorport (--device YOUR-PRINTER|-d bluetooth:\S+) ")

AT_ONCE = 3  # how many blocks or rows run at the same time; most of them wait for their printers

# A machine without the fonts first prints a warning; the guides show the output of a machine that has them.
FONT_HINT = re.compile(r"^quorport: no font on this machine has .*\n", re.M)

WAIT_FOR_LINES = "until [ $(wc -l < {0}) -ge {1} ]; do sleep 0.01; done; cat {0}"


def free_port() -> str:
    with socket.socket() as probe:
        probe.bind(("127.0.0.1", 0))
        return str(probe.getsockname()[1])


def pieces(block: str) -> list[tuple[str, str]]:
    """The commands of a block, each with its output."""
    parts = re.split(r"^\$ (.*)\n", block, flags=re.M)
    assert parts[0] == "", f"output before the first command: {parts[0]}"
    return list(zip(parts[1::2], parts[2::2]))


def script(wanted: list[tuple[str, str]]) -> str:
    """A shell script that runs the commands and prints a NUL byte after each command's output.

    In each command, $? is the exit status of the command before it.
    """
    lines = ["last=0"]
    for number, (command, output) in enumerate(wanted):
        if command.endswith("&"):
            shown = f".shown{number}"
            lines.append(f": > {shown}; {command[:-1]} > {shown} 2>&1 &")
            lines.append(WAIT_FOR_LINES.format(shown, output.count("\n")))
        else:
            # The virtual printer writes a receipt after its connection has ended, so the file may appear late.
            lines += [f"until [ -s {paper} ]; do sleep 0.01; done" for paper in re.findall(r"paper/\S+", command)]
            lines += ["(exit $last)", command, "last=$?"]
        lines.append(r"printf '\0'")
    return "\n".join([*lines, 'kill $(jobs -p) 2>/dev/null; wait'])


def pattern(text: str) -> str:
    return ".*?".join(map(re.escape, text.split("…"))).replace(".*?\\\n", "[^\n]*\n")


@unittest.skipIf("-fsanitize" in os.environ["CXXFLAGS"], "a reader's program does not fit a library with a sanitizer")
class Guides(ProgramTest):
    def run_block(self, block: str, program: str):
        """Runs the block in a new folder and with free ports. `program` is the page's C++ program."""
        folder = Path(tempfile.mkdtemp(dir=self.folder))
        (folder / "examples").symlink_to(SOURCES / "examples")
        (folder / "docs").symlink_to(SOURCES / "docs")
        (folder / "build").symlink_to(Path(QUORPORT).parent.parent)
        ports = {port: free_port() for port in PORTS}
        if READERS_PRINTER in block:
            self.printer(f"tcp:{ports[PORTS[0]]}")

        def here(text: str) -> str:
            return re.sub("|".join(PORTS), lambda port: ports[port[0]], text).replace(READERS_PRINTER, "127.0.0.1")

        (folder / "program.cpp").write_text(here(program))
        wanted = pieces(block)
        result = subprocess.run(["bash", "-c", here(script(wanted))], cwd=folder,
                                env=os.environ | {"PATH": f"{Path(QUORPORT).parent}:{os.environ['PATH']}"},
                                stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, timeout=3 * DEADLINE)
        shown = FONT_HINT.sub("", result.stdout)
        for port, free in ports.items():
            shown = shown.replace(free, port)
        if READERS_PRINTER in block:
            shown = shown.replace("127.0.0.1", READERS_PRINTER)
        shown = shown.split("\0")
        for (command, expected), actual in zip(wanted, shown, strict=False):
            self.assertRegex(actual, re.compile(rf"\A{pattern(expected)}\Z", re.S), f"of: {command}")
        self.assertEqual(len(shown), len(wanted) + 1)

    def test_each_command_in_a_guide_prints_the_shown_output(self):
        runs = []
        with ThreadPoolExecutor(AT_ONCE) as pool:
            for page in PAGES:
                blocks = BLOCK.findall(page.read_text())
                program = next((block for kind, block in blocks if kind == "cpp" and "int main" in block), "")
                runs += [(page, block, pool.submit(self.run_block, block, program))
                         for kind, block in blocks if kind == "console"]
        for page, block, run in runs:
            with self.subTest(page=page.name, block=block):
                run.result()
        self.assertGreater(len(runs), 10)

    def test_each_command_that_a_guide_shows_is_run_by_a_test(self):
        for page in PAGES:
            text = page.read_text()
            for kind, block in BLOCK.findall(text):
                self.assertIn(kind, (*RUN, *RUN_ELSEWHERE), f"{page.name}: a block of a kind that is not run")
                self.assertFalse(kind == "" and "$ " in block, f"{page.name}: {block}")
            for command in INDENTED.findall(BLOCK.sub("", text)):
                self.assertRegex(command, ELSEWHERE, f"{page.name}: this command is not run")


class DecisionTable(ProgramTest):
    def print_at(self, row: re.Match[str], number: int) -> tuple[subprocess.CompletedProcess, list[str]]:
        """Prints on the printer that this row of the table names. Returns the result and the errors in the job's log."""
        job = RECEIPT
        if row["says"].endswith("cannot be confirmed"):
            job = self.folder / f"job{number}"
            job.write_bytes(b"\x17")
        # A printer with "at=" fails in the middle of the job; a short time-out might end the job before that.
        timeout = [] if "at=" in row["device"] else ["-t", "2000"]
        log = self.folder / f"log{number}"
        result = self.run_program(QUORPORT, "-d", row["device"], *timeout, "--log", log, "print", job)
        return result, [line for line in log.read_text().splitlines() if '"typeName":"Error"' in line]

    def test_each_row_of_the_guide_shows_the_message_that_its_fault_causes(self):
        rows = list(ROW.finditer((SOURCES / "docs/did-not-print.md").read_text()))
        self.assertGreater(len(rows), 10)
        with ThreadPoolExecutor(AT_ONCE) as pool:
            results = [pool.submit(self.print_at, row, number) for number, row in enumerate(rows)]
        for row, outcome in zip(rows, results, strict=True):
            with self.subTest(row["says"]):
                result, errors = outcome.result()
                self.assertEqual(result.returncode, int(row["code"]), result)
                self.assertIn(row["says"], result.stderr)
                if row["record"] == "none":
                    self.assertEqual(errors, [])
                else:
                    self.assertTrue(any(row["record"].strip("`") in line for line in errors), errors)


if __name__ == "__main__":
    unittest.main()
