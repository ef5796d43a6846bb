"""What the page of the proof may be trusted in: no row without a case, and the tree that was really run."""

import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

import prove


def printing(text: str, kind: type[prove.Step] = prove.Step) -> prove.Step:
    return kind((sys.executable, "-c", f"print({text!r})"))


class Rows(unittest.TestCase):
    def run_row(self, *steps: prove.Step) -> dict:
        return prove.run(prove.Row("key", "Title", "what it shows", steps, prove.WHOLE_ROW), prove.COMMIT)

    def test_the_cases_of_all_steps_are_added(self):
        fuzzing = printing("a: 7 inputs, nothing found\nb: 5 inputs, nothing found", prove.Fuzzing)
        self.assertEqual(self.run_row(printing("30 jobs in 10 s"), fuzzing)["cases"], 42)

    def test_a_step_without_a_case_fails_its_row(self):
        for idle in (printing("0 cases"), printing("all is well"), printing("a: 0 inputs", prove.Fuzzing)):
            with self.assertRaisesRegex(prove.Failed, "no case was run"):
                self.run_row(printing("3 cases"), idle)

    def test_each_row_says_what_of_it_runs_at_each_commit(self):
        for row in prove.ROWS:
            self.assertIn(f"| {row.shows} | {row.suite} | not run |", prove.page({}))


@unittest.skipUnless(shutil.which("git"), "needs git")
class DescribedTree(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = Path(folder.name)
        (self.root / "docs").mkdir()
        self.write("source.cpp", "1")
        for words in (("init", "--quiet"), ("add", "."),
                      ("-c", "user.name=n", "-c", "user.email=e", "commit", "--quiet", "-m", "first")):
            subprocess.run(["git", *words], cwd=self.root, check=True)

    def write(self, file: str, text: str):
        (self.root / file).write_text(text)

    def test_it_is_the_commit_also_when_the_run_has_written_its_page(self):
        for file in ("docs/proof.json", "docs/proof.md"):
            self.write(file, "new")
        self.assertRegex(prove.described_tree(self.root), "^[0-9a-f]+$")

    def test_it_is_dirty_where_a_file_is_changed_or_new(self):
        for file in ("source.cpp", "more.cpp"):
            with self.subTest(file):
                self.write(file, "2")
                self.assertRegex(prove.described_tree(self.root), "^[0-9a-f]+-dirty$")
                subprocess.run(["git", "stash", "--quiet", "--include-untracked"], cwd=self.root, check=True)


if __name__ == "__main__":
    unittest.main()
