"""The manual page and the completions agree with the command's help."""

import os
import re
import subprocess
import unittest
from pathlib import Path

from programs import QUORPORT, SOURCES, ProgramTest

SHARE = Path(QUORPORT).parent.parent / "share"
MANUAL = SHARE / "man/man1/quorport.1"
BASH = SHARE / "bash-completion/completions/quorport"
ZSH = SHARE / "zsh/vendor-completions/_quorport"
IN_PATH = f"PATH={Path(QUORPORT).parent}:{os.environ['PATH']}"  # the completions ask the command


def help_of(*command: str) -> str:
    return subprocess.run([QUORPORT, *command, "--help"], check=True, capture_output=True, text=True).stdout


def commands() -> list[str]:
    listing = help_of().partition("Commands:\n")[2].partition("\n\n")[0]
    return re.findall(r"^  (\S+)", listing, re.M)


def options(help_text: str) -> set[str]:
    """The long options that begin a line of the help."""
    return set(re.findall(r"^  (?:-\w,)?(--[\w-]+)", help_text, re.M))


def all_options() -> set[str]:
    return options(help_of()).union(*(options(help_of(command)) for command in commands()))


def schemes() -> list[str]:
    listing = help_of().partition("A SPEC is one of these")[2].partition("Every form takes")[0]
    return sorted(set(re.findall(r"^  (\w+:)", listing, re.M)))


def settings() -> list[str]:
    """The keys that `simulate --set` accepts, each with an equals sign: the printer's state, the faults, and `seed`."""
    refusal = subprocess.run([QUORPORT, "simulate", "--listen", "tcp:", "--set", "nonsense=1"], capture_output=True, text=True)
    state = refusal.stderr.partition("; there are ")[2].strip().split(", ")
    faults = re.findall(r'FaultKind::\w+, "([\w-]+)"', (SOURCES / "simulator/Faults.cpp").read_text())
    return sorted(f"{key}=" for key in {*state, *faults, "seed"})


def proofs() -> list[str]:
    """The proofs that `print` lists if it is given an unknown proof."""
    refusal = subprocess.run([QUORPORT, "print", "--proof", "nonsense", "-"], capture_output=True, text=True, input="")
    return re.split(", | or ", re.search(r"takes (auto, .*), not", refusal.stderr).group(1))


class Manual(ProgramTest):
    def text(self) -> str:
        rendered = self.run_program("groff", "-man", "-ww", "-Tutf8", "-P-c", MANUAL)
        self.assertEqual(rendered.stderr, "")
        return re.sub(".\b", "", rendered.stdout).replace("‐", "-").replace("−", "-")

    def test_the_manual_page_names_every_command_and_exactly_the_options_of_the_help(self):
        text = self.text()
        self.assertEqual(all_options(), set(re.findall(r"(?<!\S)\[?(--[a-z-]+)", text)))
        for command in commands():
            self.assertRegex(text, rf"(?m)^ +{command}\b")

    def test_the_manual_page_names_exactly_the_faults_of_the_simulator(self):
        listed = re.findall(r'FaultKind::\w+, "([\w-]+)"', (SOURCES / "simulator/Faults.cpp").read_text())
        self.assertGreater(len(listed), 10)
        text = " ".join(self.text().split())
        told = re.search(r"And it takes faults: (.*?), which causes", text).group(1)
        self.assertEqual(sorted(re.split(r", and |, | and ", told)), sorted([*listed, "seed"]))

    def test_the_manual_page_names_every_exit_status(self):
        told = re.findall(r"(?m)^ {7}(\d+) ", self.text().partition("EXIT STATUS")[2].partition("ENVIRONMENT")[0])
        self.assertEqual(told, "0 1 2 3 4 5 6 7 129 130 143".split())

    def test_the_manual_page_has_the_version_of_the_command(self):
        version = self.run_program(QUORPORT, "--version").stdout.split()[-1]
        self.assertIn(f"QuorIOPort {version}", MANUAL.read_text())


class BashCompletion(ProgramTest):
    def offered(self, line: str) -> list[str]:
        script = SOURCES / "tests/install/complete.bash"
        result = self.run_program("env", IN_PATH, "bash", script, BASH, line)
        self.assertEqual(result.stderr, "")
        return result.stdout.split()

    def test_completion_offers_the_commands(self):
        self.assertEqual(self.offered("quorport "), commands())
        self.assertEqual(self.offered("quorport -d tcp:192.0.2.10:9100 onl"), ["online"])
        self.assertEqual(self.offered("quorport --log-level 3 --json can"), ["cancel"])

    def test_completion_offers_the_options_of_each_command(self):
        top = options(help_of())
        self.assertEqual(set(self.offered("quorport --")), top)
        for command in commands():
            expected = top - {"--version"} | options(help_of(command))
            self.assertEqual(set(self.offered(f"quorport {command} --")), expected, command)

    def test_completion_offers_the_values_in_the_help_texts(self):
        self.assertEqual(self.offered("quorport -e "), ["line", "escpos", "unknown"])
        self.assertEqual(self.offered("quorport print --proof "), proofs())
        self.assertEqual(self.offered("quorport simulate --per "), ["cut", "job", "connection"])

    def test_completion_offers_the_schemes_of_devices(self):
        for option in ("-d ", "--device ", "--device="):
            self.assertEqual(sorted(self.offered(f"quorport {option}")), schemes())
        self.assertEqual(self.offered("quorport -d v"), ["virtual:"])

    def test_completion_offers_the_address_forms_and_settings_of_a_virtual_printer(self):
        self.assertEqual(self.offered("quorport simulate --listen "), ["tcp:", "unix:", "pty:"])
        self.assertEqual(sorted(self.offered("quorport simulate --set ")), settings())
        self.assertEqual(self.offered("quorport simulate --set=coverO"), ["coverOpen="])

    def test_completion_offers_values_after_an_equals_sign(self):
        self.assertEqual(self.offered("quorport --emulation=es"), ["escpos"])

    def test_completion_offers_nothing_for_an_option_with_arbitrary_values(self):
        for line in ("quorport -p ", "quorport --timeout ", "quorport --timeout=", "quorport simulate --control "):
            self.assertEqual(self.offered(line), [], line)


class ZshCompletion(ProgramTest):
    def specifications(self, *command: str) -> list[str]:
        script = SOURCES / "tests/install/complete.zsh"
        result = self.run_program("env", IN_PATH, "zsh", "-f", script, ZSH, *command)
        self.assertEqual(result.stderr, "")
        return result.stdout.splitlines()

    def values(self, option: str, *command: str) -> list[str]:
        found, = (line for line in self.specifications(*command) if line.startswith(f"*{option}=["))
        return re.search(r":\((.*)\)$", found).group(1).replace("\\", "").split()

    def test_completion_offers_the_commands(self):
        self.assertEqual([line.partition(":")[0] for line in self.specifications()], commands())

    def test_completion_offers_the_options_of_each_command(self):
        top = options(help_of())
        for command in commands():
            offered = set(re.findall(r"(?m)^\*?(--[a-z-]+)", "\n".join(self.specifications(command))))
            self.assertEqual(offered, top - {"--version"} | options(help_of(command)), command)

    def test_completion_offers_the_values_of_options(self):
        self.assertEqual(sorted(self.values("--device", "list")), schemes())
        self.assertEqual(self.values("--emulation", "list"), ["line", "escpos", "unknown"])
        self.assertEqual(self.values("--proof", "print"), proofs())
        self.assertEqual(self.values("--listen", "simulate"), ["tcp:", "unix:", "pty:"])
        self.assertEqual(sorted(self.values("--set", "simulate")), settings())


if __name__ == "__main__":
    unittest.main()
