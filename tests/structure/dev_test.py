"""./dev reports wrong arguments and missing packages; the commit hook reports bad messages. Usage: dev_test.py ROOT"""

import json
import os
import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

ROOT = Path(sys.argv.pop()).resolve()


def dev(*words: str) -> subprocess.CompletedProcess:
    return subprocess.run([ROOT / "dev", *words], capture_output=True, text=True, timeout=60)


class DevHelp(unittest.TestCase):
    def test_dev_shows_its_help_by_a_command_and_by_an_option(self):
        for words in (["help"], ["--help"], ["-h"], []):
            with self.subTest(words):
                done = dev(*words)
                self.assertEqual(done.returncode, 0, done.stderr)
                self.assertTrue(done.stdout.startswith("usage: ./dev COMMAND\n"), done.stdout)

    def test_the_error_of_an_unknown_command_lists_the_commands(self):
        done = dev("fly")
        self.assertEqual(done.returncode, 2)
        self.assertIn("no command 'fly'", done.stderr)
        self.assertIn("usage: ./dev", done.stderr)

    def test_an_unknown_argument_is_refused_before_the_command_starts(self):
        for words, takes in ((("test", "--fast"), "--real"), (("demo", "--help"), "no argument"),
                             (("check", "all"), "--all"), (("package", "--try", "me"), "--try")):
            with self.subTest(words):
                done = dev(*words)
                self.assertEqual(done.returncode, 2)
                self.assertIn(f"./dev: {words[0]} takes {takes}, not '{words[-1]}'", done.stderr)
                self.assertEqual(done.stdout, "")


class DevPackages(unittest.TestCase):
    """The functions of scripts/packages.sh, on a system whose packages the test chooses."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.bin = Path(folder.name)

    def has(self, program: str, text: str = "exit 0"):
        file = self.bin / program
        file.write_text(f"#!/bin/sh\n{text}\n")
        file.chmod(0o755)

    def shell(self, command: str) -> subprocess.CompletedProcess:
        script = f"set -eu; source scripts/quietly.sh; source scripts/packages.sh; {command}"
        return subprocess.run([shutil.which("bash"), "-c", script], cwd=ROOT, capture_output=True, text=True,
                              env={**os.environ, "PATH": str(self.bin)}, timeout=60)

    def test_the_suggested_install_command_updates_the_package_lists_first(self):
        self.has("sudo")
        self.assertEqual(self.shell("command_for_others cmake g++").stdout,
                         "sudo sh -c 'apt-get update && apt-get install --yes --no-install-recommends cmake g++'\n")

    def test_the_suggested_install_command_uses_su_if_sudo_is_missing(self):
        self.assertTrue(self.shell("command_for_others cmake").stdout.startswith("su -c 'apt-get update && "))

    def test_no_command_is_suggested_if_all_packages_are_installed(self):
        self.has("dpkg-query", "echo installed")
        done = self.shell("need_packages cmake g++")
        self.assertEqual((done.returncode, done.stdout, done.stderr), (0, "", ""))

    def test_the_packages_for_building_and_for_packaging_include_a_compiler(self):
        """dpkg-buildpackage refuses to start without build-essential, even if all other packages are installed."""
        self.assertIn("g++", self.shell('echo "${build_packages[@]}"').stdout)
        self.assertIn("build-essential", self.shell('echo "${package_packages[@]}"').stdout)

    def test_the_build_dependencies_of_the_debian_packages_include_every_library(self):
        """A missing package does not make the build fail: the build omits a part of the product."""
        libraries = [name for name in self.shell('echo "${build_packages[@]} ${package_packages[@]}"').stdout.split()
                     if name.endswith("-dev") and name not in ("libgtest-dev", "libgmock-dev")]
        control = (ROOT / "debian/control").read_text().split("Standards-Version")[0]
        needed = {line.split()[0].rstrip(",") for line in control.splitlines() if line.startswith(" ")}
        self.assertGreater(len(libraries), 10)
        self.assertEqual(set(libraries) - needed, set())

    def test_the_licence_of_every_library_is_listed(self):
        lists = " ".join(f'"${{{command}_packages[@]}}"' for command in ("build", "check", "package", "real", "bench"))
        libraries = {name for name in self.shell(f"echo {lists}").stdout.split() if name.endswith("-dev")}
        listed = (ROOT / "docs/licences.md").read_text()
        self.assertGreater(len(libraries), 10)
        self.assertEqual([name for name in sorted(libraries) if f"`{name}`" not in listed], [])


class DevOutput(unittest.TestCase):
    def quietly(self, command: str) -> tuple[subprocess.CompletedProcess, str]:
        with tempfile.TemporaryDirectory() as folder:
            log = Path(folder) / "log/step.txt"
            script = f"set -euo pipefail; source scripts/quietly.sh; quietly compiling {log} sh -c '{command}'; echo after"
            done = subprocess.run(["bash", "-c", script], cwd=ROOT, capture_output=True, text=True, timeout=60)
            return done, log.read_text()

    def test_a_successful_step_shows_only_its_name(self):
        done, log = self.quietly("seq 1000")
        self.assertEqual((done.returncode, len(done.stdout.splitlines())), (0, 2), done.stdout)
        self.assertEqual(len(log.splitlines()), 1000)

    def test_a_failed_step_shows_the_end_of_its_output_and_ends_the_script(self):
        done, log = self.quietly("seq 1000; echo the error >&2; exit 3")
        self.assertEqual((done.returncode, len(log.splitlines())), (1, 1001))
        self.assertIn("the error\n./dev: compiling failed; the whole log is ", done.stderr)
        self.assertNotIn("\n900\n", done.stderr)
        self.assertNotIn("after", done.stdout)


class CompilerWarnings(unittest.TestCase):
    """A newer compiler gives more warnings; these must not stop the build of a user who only needs the program."""

    def commands(self, preset: str) -> list[str]:
        """The compiler's commands for the project's own sources."""
        with tempfile.TemporaryDirectory() as folder:
            done = subprocess.run(["cmake", "--preset", preset, "-B", folder], cwd=ROOT, capture_output=True, text=True,
                                  timeout=110)
            self.assertEqual(done.returncode, 0, done.stderr)
            return [entry["command"] for entry in json.loads((Path(folder) / "compile_commands.json").read_text())]

    def test_compiler_warnings_are_errors_only_in_the_developer_preset(self):
        for preset, are_errors in (("default", False), ("developer", True)):
            with self.subTest(preset):
                commands = self.commands(preset)
                self.assertTrue(any(" -Wall " in command for command in commands))
                self.assertEqual(any(" -Werror" in command for command in commands), are_errors)


class CommitMessage(unittest.TestCase):
    """The hook for commit messages. It writes reminders, and never refuses a commit."""

    def reminders(self, message: str) -> list[str]:
        with tempfile.NamedTemporaryFile("w") as file:
            file.write(message)
            file.flush()
            done = subprocess.run([ROOT / "scripts/hooks/commit-msg", file.name], capture_output=True, text=True)
        self.assertEqual((done.returncode, done.stdout), (0, ""))
        return done.stderr.splitlines()

    def test_a_good_commit_message_causes_no_output(self):
        self.assertEqual(self.reminders("job: do this\n\nFor that reason.\n# a comment\n"), [])
        self.assertEqual(self.reminders("Merge branch 'x'\n"), [])

    def test_each_fault_of_a_commit_message_is_reported(self):
        for message, fault in (("Do this\n\nWhy.\n", "area"), ("Job: do this\n\nWhy.\n", "area"),
                               ("job: do this\n\n# only a comment\n", "body"),
                               ("job: " + "x" * 68 + "\n\nWhy.\n", "73 characters")):
            with self.subTest(message):
                reminders = self.reminders(message)
                self.assertEqual(len(reminders), 1, reminders)
                self.assertIn(fault, reminders[0])


if __name__ == "__main__":
    unittest.main()
