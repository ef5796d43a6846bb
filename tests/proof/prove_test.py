"""The table in docs/proof.md, which `./dev prove` writes, is true.

Each row of the table has cases and names the commit that was run. No unit, which is one run of a program, is counted
twice.
"""

import json
import os
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import unittest
from pathlib import Path
from unittest import mock

import areas
import breaks
import coverage
import ledger
import mutation
import page
import prove
import rows
import steps


def printing(text: str, cases_of=steps.plainly) -> steps.Step:
    return steps.Step((sys.executable, "-c", f"print({text!r})"), {}, cases_of)


class Folder(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)


@unittest.skipUnless(shutil.which("git"), "needs git")
class ProofRows(Folder):
    def setUp(self):
        super().setUp()
        patch = mock.patch.object(prove, "described_tree", return_value="a1b2c3d")
        patch.start()
        self.addCleanup(patch.stop)
        self.addCleanup(setattr, steps.Clock, "end", float("inf"))

    def row(self, *its_steps) -> rows.Row:
        return rows.Row("key", "Title", "what it shows", its_steps, rows.WHOLE_ROW)

    def run_row(self, *its_steps, state: str = "state") -> dict[str, str]:
        row = self.row(*its_steps)
        done = prove.run(row, steps.COMMIT, ledger.Ledger("units", self.folder), state)
        return prove.summary(row, steps.COMMIT, done)

    def counting(self, count: int, text: str = "1 cases") -> steps.Portions:
        """A program that runs in portions, each of which writes a line to a file."""
        code = f"import os; open({str(self.folder / 'runs')!r}, 'a').write(os.environ['PORTION'] + '\\n'); print({text!r})"
        return steps.Portions((sys.executable, "-c", code.replace("{", "{{").replace("}", "}}")), (count,) * 3, (1, 1, 1),
                              lambda number, _: {"PORTION": str(number)})

    def runs(self) -> list[str]:
        return (self.folder / "runs").read_text().split()

    def test_the_case_counts_of_all_steps_of_a_row_are_summed(self):
        fuzzing = printing("a: 7 inputs, nothing found\nb: 5 inputs, nothing found", steps.fuzzing)
        self.assertEqual(self.run_row(printing("30 jobs in 10 s"), fuzzing)["cases"], "42")

    def test_a_row_fails_if_one_of_its_steps_tests_no_case(self):
        for idle in (printing("0 cases"), printing("all is well"), printing("a: 0 inputs", steps.fuzzing)):
            with self.assertRaisesRegex(prove.Failed, "no case was run"):
                self.run_row(printing("3 cases"), idle)

    def test_a_finished_program_run_is_not_repeated(self):
        for _ in range(2):
            self.assertEqual(self.run_row(self.counting(3))["cases"], "3")
        self.assertEqual(self.runs(), ["0", "1", "2"])

    def test_no_finished_run_is_repeated_if_a_row_needs_further_program_runs(self):
        self.run_row(self.counting(2))
        self.assertEqual(self.run_row(self.counting(4))["cases"], "4")
        self.assertEqual(self.runs(), ["0", "1", "2", "3"])

    def test_a_failed_program_run_is_repeated(self):
        with self.assertRaises(prove.Failed):
            self.run_row(self.counting(1, "0 cases"))
        self.assertEqual(self.run_row(self.counting(1))["far"], "100%")

    def test_all_program_runs_are_repeated_if_the_sources_have_changed(self):
        self.run_row(self.counting(2))
        self.run_row(self.counting(2), state="another state")
        self.assertEqual(self.runs(), ["0", "1", "0", "1"])

    def test_an_unfinished_row_reports_the_percentage_of_finished_program_runs(self):
        self.run_row(self.counting(1))
        steps.Clock.end = 0
        self.assertEqual(self.run_row(self.counting(4))["far"], "25.0%")

    def test_a_program_that_still_runs_at_the_time_limit_is_ended_and_not_counted(self):
        steps.Clock.end = time.monotonic() + 0.2
        sleeper = steps.Step((sys.executable, "-c", "import time; time.sleep(600); print('1 cases')"))
        with self.assertRaises(steps.Stopped):
            self.run_row(sleeper)

    def test_a_stopped_program_that_counts_its_own_cases_reports_the_finished_percentage(self):
        begun = self.folder / "begun"
        os.mkfifo(begun)
        code = f"import signal, time\ntry:\n    signal.signal(signal.SIGTERM, lambda *_: 1 / 0); open({str(begun)!r}, 'w').close()\n" \
               "    time.sleep(600)\nexcept ZeroDivisionError: print('port: 3 of 3 killed\\n3 of 12 cases')"
        with mock.patch.object(steps.Clock, "left", side_effect=lambda: len(begun.read_text())):
            figures = self.run_row(steps.Step((sys.executable, "-c", code), ends_itself=True))
        self.assertEqual((figures["cases"], figures["far"], figures["result"]), ("3", "25.0%", "port: 3 of 3 killed"))


@unittest.skipUnless(shutil.which("git"), "needs git")
class ProveCommand(Folder):
    def test_prove_without_time_for_any_row_succeeds_and_keeps_the_page(self):
        folder, page_before = self.folder / "build/proof", page.PAGE.read_text()
        self.addCleanup(setattr, steps.Clock, "end", float("inf"))
        for number in (signal.SIGINT, signal.SIGTERM):
            self.addCleanup(signal.signal, number, signal.getsignal(number))
        with mock.patch.object(sys, "argv", ["prove", "--minutes", "0", "clocks"]), mock.patch.object(prove, "FOLDER", folder), \
                mock.patch.object(prove, "Ledger", lambda name: ledger.Ledger(name, folder)):
            self.assertEqual(prove.main(), 0)
        self.assertEqual(page.PAGE.read_text(), page_before)


class Mutants(Folder):
    SOURCE = "int f(int a) {\n  return a + 1;\n}\nint g(int a) {\n  return a + 2;\n}\n"
    TEST = "TEST(F, AddsOne) {\n  EXPECT_EQ(f(1), 2);\n}\n"

    def setUp(self):
        super().setUp()
        for module in (areas, ledger):
            patch = mock.patch.object(module, "ROOT", self.folder)
            patch.start()
            self.addCleanup(patch.stop)
        (self.folder / "tests").mkdir()
        self.write("one.cpp", self.SOURCE)
        self.write("tests/one_test.cpp", self.TEST)

    def write(self, file: str, text: str):
        (self.folder / file).write_text(text)

    def tried(self) -> mutation.Tried:
        area = areas.Area("room", ("*.cpp",), ("tests",), ("room_tests",))
        return mutation.Tried(area, 1, ledger.Ledger("mutants", self.folder))

    def answer_all(self, answer: str):
        tried = self.tried()
        for mutant in tried.drawn:
            tried.answers[tried.names[mutant]] = {"answer": answer, "state": tried.state(mutant, answer)}
        tried.ledger.keep()

    def kept(self) -> int:
        tried = self.tried()
        return sum(tried.answer(mutant) is not None for mutant in tried.drawn)

    def test_added_lines_do_not_change_which_mutants_of_the_old_lines_are_chosen(self):
        drawn = [mutant.describe(self.SOURCE) for mutant in self.tried().drawn]
        self.assertEqual(len(drawn), 4)
        self.write("one.cpp", "// above\n" + self.SOURCE)
        self.write("two.cpp", "int h(int a) {\n  return a - 3;\n}\n")
        tried = self.tried()
        again = [mutant.describe(tried.sources[mutant.path]) for mutant in tried.drawn if mutant.path == "one.cpp"]
        self.assertEqual(again, drawn)

    def test_a_killed_mutant_is_tried_again_when_its_test_or_its_source_changes(self):
        self.answer_all("F.AddsOne")
        self.write("tests/more_test.cpp", "TEST(G, AddsTwo) {\n  EXPECT_EQ(g(1), 3);\n}\n")
        self.assertEqual(self.kept(), 4)
        self.write("tests/one_test.cpp", self.TEST.replace("f(1), 2", "f(2), 3"))
        self.assertEqual(self.kept(), 0)
        self.write("tests/one_test.cpp", self.TEST)
        self.write("one.cpp", self.SOURCE.replace("a + 2", "2 + a"))
        self.assertEqual(self.kept(), 0)

    def test_a_mutant_that_survived_or_crashed_is_tried_again_after_each_change(self):
        for answer in ("survived", "room_tests ends with status -6"):
            self.answer_all(answer)
            self.assertEqual(self.kept(), 4)
            self.write("tests/more_test.cpp", f'const char* answer = "{answer}";\n')
            self.assertEqual(self.kept(), 0)

    def test_no_mutant_is_tried_again_after_a_change_of_a_comment(self):
        for answer in ("F.AddsOne", "compiler", "survived"):
            self.answer_all(answer)
            self.write("one.cpp", "// another word\n" + self.SOURCE.replace("a + 1;", "a + 1;  // and one more"))
            self.write("tests/one_test.cpp", self.TEST.replace("{\n", "{\n  // why\n", 1))
            self.assertEqual(self.kept(), 4, answer)
            self.write("one.cpp", self.SOURCE)
            self.write("tests/one_test.cpp", self.TEST)

    def test_a_surviving_mutant_that_must_be_tried_again_is_still_counted(self):
        self.answer_all("survived")
        self.write("tests/more_test.cpp", "int added;\n")
        self.assertEqual(len(self.tried().counted(0)), 4)
        self.assertEqual(len(self.tried().missing(0)), 4)

    def test_the_body_of_a_test_of_any_kind_is_found_by_its_name(self):
        sources = self.TEST + "TEST_P(Link,\n       Waits) {\n}\nstatic void APortWrites(void) {\n  a();\n}\n"
        self.assertIn("f(1)", mutation.body_of("F.AddsOne", sources))
        self.assertIn("Waits", mutation.body_of("Posix/Link.Waits/Tcp", sources))
        self.assertIn("a();", mutation.body_of("APortWrites", sources))
        self.assertEqual(mutation.body_of("room_tests does not end", sources), "")
        self.assertEqual(mutation.body_of("G.IsNot", sources), "")


class ProofPage(unittest.TestCase):
    FIGURES = {"size": "nightly", "far": "12.5%", "cases": "1,000", "time": "3.0 min", "result": "nothing found",
               "run at": "a1b2c3d, 2026-11-21, 2 cores"}

    def test_each_row_of_the_page_names_its_tests_that_run_at_each_commit(self):
        for row in rows.ROWS:
            self.assertIn(f"| {row.shows} | {row.suite} | not run |", page.written({}))

    def test_the_figures_of_a_row_can_be_read_back_from_the_page(self):
        text = page.written({"Soak": self.FIGURES})
        self.assertEqual(page.figures(text), {"Soak": self.FIGURES})

    def test_the_committed_docs_proof_md_contains_exactly_the_rows_of_rows_py(self):
        lines = page.PAGE.read_text().splitlines()
        titles = [page.cells(line)[0] for line in lines[lines.index(page.HEAD) + 2:] if line.startswith("| ")]
        self.assertEqual(titles, [row.title for row in rows.ROWS], "./dev prove --page writes it anew")

    def test_no_two_rows_have_the_same_title(self):
        titles = [row.title for row in rows.ROWS]
        self.assertEqual(len(set(titles)), len(titles))


class ProofTables(unittest.TestCase):
    """survivors.md, uncovered.md and breaks.py quote lines of the product. Each quoted line exists."""

    def assert_line(self, file: str, line: str):
        lines = [" ".join(one.split()) for one in (steps.ROOT / file).read_text().splitlines()]
        self.assertIn(line.replace(r"\|", "|"), lines, file)

    def test_each_source_line_in_survivors_md_and_uncovered_md_exists(self):
        for table in ("survivors.md", "uncovered.md"):
            for file, line, *_ in (page.cells(row) for row in page.table(table)[2:]):
                with self.subTest(table=table):
                    self.assert_line(file.strip("`"), line.strip("`"))

    def test_prove_writes_the_columns_of_survivors_md_and_uncovered_md(self):
        self.assertEqual(page.HEADS["mutation"], page.table("survivors.md")[:2])
        self.assertEqual(page.HEADS["coverage"], page.table("uncovered.md")[:2])

    def test_each_deliberate_defect_replaces_a_line_that_exists_exactly_once(self):
        for one in breaks.BREAKS:
            with self.subTest(one.what):
                self.assertEqual((steps.ROOT / one.path).read_text().count(one.old), 1)
                self.assertIn(steps.ROOT / one.path, areas.area_of(one.path).files())

    def test_the_coverage_runs_exactly_the_programs_that_its_preset_builds(self):
        presets = json.loads((steps.ROOT / "CMakePresets.json").read_text())["buildPresets"]
        targets = next(one["targets"] for one in presets if one["name"] == "coverage")
        self.assertCountEqual(targets, [*(f"{name}_tests" for name in coverage.PROGRAMS), coverage.SENTENCES])
        for name in coverage.PROGRAMS:
            self.assertTrue((steps.ROOT / "tests" / name.replace("_", "/", 1)).is_dir(), name)


@unittest.skipUnless(shutil.which("git"), "needs git")
class DescribedTree(Folder):
    def setUp(self):
        super().setUp()
        (self.folder / "docs").mkdir()
        self.write("source.cpp", "1")
        for words in (("init", "--quiet"), ("add", "."),
                      ("-c", "user.name=n", "-c", "user.email=e", "commit", "--quiet", "-m", "first")):
            subprocess.run(["git", *words], cwd=self.folder, check=True)

    def write(self, file: str, text: str):
        (self.folder / file).write_text(text)

    def test_a_tree_is_clean_even_if_prove_has_rewritten_docs_proof_md(self):
        self.write("docs/proof.md", "new")
        self.assertRegex(prove.described_tree(self.folder), "^[0-9a-f]+$")

    def test_a_tree_is_dirty_if_a_file_is_changed_or_new(self):
        for file in ("source.cpp", "more.cpp"):
            with self.subTest(file):
                self.write(file, "2")
                self.assertRegex(prove.described_tree(self.folder), "^[0-9a-f]+-dirty$")
                subprocess.run(["git", "stash", "--quiet", "--include-untracked"], cwd=self.folder, check=True)


if __name__ == "__main__":
    unittest.main()
