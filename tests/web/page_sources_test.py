"""The files of the page obey its content security policy, and are small and plain.

Usage: page_sources_test.py FOLDER
"""

import re
import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

FOLDER = Path(sys.argv.pop(1))
HERE = Path(__file__).parent
LONGEST_FILE, LONGEST_LINE = 400, 120

FORBIDDEN = {
    "a script in the document": (".html", r"<script(?![^>]*\bsrc=)"),
    "a style in the document": (".html", r"<style\b|\sstyle="),
    "a handler in the document": (".html", r"\son\w+="),
    "an address elsewhere": (".html .css .js", r"(?:https?:)?//\w+[.:]\w"),
    "markup made of a text": (".js", r"innerHTML|outerHTML|insertAdjacentHTML|document\.write|DOMParser"),
    "code made of a text": (".js", r"\beval\s*\(|new Function|setTimeout\(\s*[\"'`]"),
    "a style that is written as an attribute": (".js", r"setAttribute\(\s*[\"']style|\bstyle:"),
    "an import of a package": (".js", r"from \"(?!\./)"),
}


def files(*endings: str) -> list[Path]:
    return sorted(file for file in FOLDER.iterdir() if file.suffix in endings)


class PageSources(unittest.TestCase):
    def test_the_page_sources_follow_the_security_policy(self):
        for fault, (endings, pattern) in FORBIDDEN.items():
            for file in files(*endings.split()):
                with self.subTest(fault, file=file.name):
                    self.assertIsNone(re.search(pattern, file.read_text()))

    def test_each_pattern_of_the_policy_finds_its_violation(self):
        for fault, bad in {"a script in the document": "<script>go()</script>", "a style in the document": '<p style="x">',
                           "a handler in the document": '<p onclick="x()">', "an address elsewhere": "https://fonts.example/x",
                           "markup made of a text": "p.innerHTML = text", "code made of a text": "eval(text)",
                           "a style that is written as an attribute": 'make("p", {style: "x"})',
                           "an import of a package": 'import { x } from "react"'}.items():
            self.assertRegex(bad, FORBIDDEN[fault][1], fault)

    def test_each_module_is_used_and_each_import_exists(self):
        used = set()
        for file in files(".html", ".js"):
            text = file.read_text()
            names = re.findall(r"page/([\w.]+)\"", text) + re.findall(r"from \"\./([\w.]+)\"", text)
            self.assertEqual([name for name in names if not (FOLDER / name).is_file()], [], file.name)
            used |= set(names)
        self.assertEqual({file.name for file in files(".js", ".css", ".svg")} - used, set())

    def test_the_files_and_lines_of_the_page_sources_are_short(self):
        for file in files(".html", ".css", ".js"):
            lines = file.read_text().splitlines()
            self.assertLessEqual(len(lines), LONGEST_FILE, file.name)
            self.assertLessEqual(max(map(len, lines)), LONGEST_LINE, file.name)


@unittest.skipUnless(shutil.which("node"), "needs node")
class PageModules(unittest.TestCase):
    """Runs the page's modules under node, which reads a `.js` file as a module only if package.json says so."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)
        for file in (*files(".js"), HERE / "modules_test.js"):
            shutil.copy(file, self.folder)
        (self.folder / "package.json").write_text('{"type": "module"}')

    def test_the_page_modules_pass_their_unit_tests(self):
        done = subprocess.run(["node", "--experimental-vm-modules", "--no-warnings", "modules_test.js"], cwd=self.folder,
                              capture_output=True, text=True, timeout=60)
        self.assertEqual(done.returncode, 0, done.stdout + done.stderr)


if __name__ == "__main__":
    unittest.main()
