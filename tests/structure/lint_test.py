"""The lint checks only the sources that changed since they last passed. Usage: lint_test.py ROOT

A stand-in for clang-tidy records its sources, and reports those that contain the word BAD.
"""

import json
import os
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

LINT = Path(sys.argv.pop()).resolve() / "scripts/lint.py"

CLANG_TIDY = """#!/bin/sh
[ "$1" = --version ] && exec cat version
for source; do :; done
echo "${source##*/}" >> read
! grep -H BAD "$source"
"""


class Lint(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = Path(folder.name).resolve()
        self.write("bin/clang-tidy", CLANG_TIDY).chmod(0o755)
        self.write("version", "clang-tidy 1")
        self.write(".clang-tidy", "Checks: a\n")
        self.write("job/Job.h", '#include "deep.h"\n')
        self.write("job/deep.h", "#pragma once\n")
        self.write("job/Job.cpp", '#include "job/Job.h"\n')
        self.write("job/Other.cpp", "#include <vector>\n")
        self.write("include/own/Public.h", "#pragma once\n")
        self.write("job/Third.cpp", "#include <own/Public.h>\n")
        self.write("tests/a_test.cpp", "BAD\n")
        self.commands({"job/Job.cpp": "-O2", "job/Other.cpp": "-O2", "job/Third.cpp": "-O2", "tests/a_test.cpp": ""})
        self.lint()

    def write(self, path: str, text: str) -> Path:
        file = self.root / path
        file.parent.mkdir(parents=True, exist_ok=True)
        file.write_text(text)
        return file

    def commands(self, options: dict[str, str]):
        self.write("build/compile_commands.json", json.dumps(
            [{"directory": str(self.root), "file": file, "command": f"g++ {words} {file}"}
             for file, words in options.items()]))

    def lint(self, *options: str) -> tuple[bool, set[str]]:
        """Whether the lint passed, and which sources it read."""
        (self.root / "read").write_text("")
        path = f"{self.root}/bin:{os.environ['PATH']}"
        self.done = subprocess.run([sys.executable, "-B", LINT, *options, "build"], cwd=self.root, text=True,
                                   env={**os.environ, "PATH": path}, capture_output=True, timeout=60)
        return self.done.returncode == 0, set((self.root / "read").read_text().split())

    def test_a_source_that_passed_is_not_checked_again(self):
        self.assertEqual(self.lint(), (True, set()))

    def test_every_source_is_checked_on_request(self):
        self.assertEqual(self.lint("--all"), (True, {"Job.cpp", "Other.cpp", "Third.cpp"}))

    def test_a_changed_source_is_checked(self):
        self.write("job/Other.cpp", "int other;\n")
        self.assertEqual(self.lint(), (True, {"Other.cpp"}))

    def test_all_sources_that_include_a_changed_header_are_checked(self):
        self.write("job/deep.h", "#pragma once\nint deep;\n")
        self.assertEqual(self.lint(), (True, {"Job.cpp"}))
        self.write("include/own/Public.h", "#pragma once\nint own;\n")
        self.assertEqual(self.lint(), (True, {"Third.cpp"}))

    def test_every_source_is_checked_again_if_the_rules_or_the_linter_change(self):
        for file in (".clang-tidy", "version"):
            with self.subTest(file):
                self.write(file, "b\n")
                self.assertEqual(len(self.lint()[1]), 3)

    def test_only_the_sources_of_a_folder_are_checked_when_its_rules_change(self):
        self.write("tools/Tool.cpp", "int tool;\n")
        self.commands({"job/Other.cpp": "-O2", "tools/Tool.cpp": "-O2"})
        self.lint()
        self.write("tools/.clang-tidy", "Checks: b\n")
        self.assertEqual(self.lint(), (True, {"Tool.cpp"}))

    def test_a_source_is_checked_again_when_its_compile_command_changes(self):
        self.commands({"job/Job.cpp": "-O2", "job/Other.cpp": "-O0", "job/Third.cpp": "-O2"})
        self.assertEqual(self.lint(), (True, {"Other.cpp"}))

    def test_a_failing_source_is_reported_and_checked_until_it_passes(self):
        self.write("job/Other.cpp", "BAD\n")
        for _ in range(2):
            self.assertEqual(self.lint(), (False, {"Other.cpp"}))
            self.assertIn("job/Other.cpp:BAD", self.done.stdout)
        self.write("job/Other.cpp", "good\n")
        self.assertEqual(self.lint(), (True, {"Other.cpp"}))


if __name__ == "__main__":
    unittest.main()
