"""How many branches of the port, the parsers, the print job and the logger the tests take.

Usage: coverage.py BUILD, a folder built by the coverage preset. Runs its test programs and counts the
branches of what is written in the sources: those that the compiler adds for an exception that leaves a
call (gcovr's --exclude-throw-branches) and for code that it made unreachable by itself are not counted.
Prints each branch that no test takes, with its explanation from uncovered.md. Fails when one is not
explained or fewer than 98 of 100 are taken.
"""

import json
import os
import re
import subprocess
import sys
from collections import Counter
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
FOLDERS = ("iphone-IOPort", "parsers", "job", "logging")
ENOUGH = 0.98
PROGRAMS = ("unit_parsers", "unit_port", "unit_job", "unit_logging", "trace", "faults", "simulation", "lifecycle")
SIZES = {"QUOR_SCRIPTS": "20000", "QUOR_SIMULATED_JOBS": "4000",
         "QUOR_PORT_CYCLES": "500", "QUOR_PORT_RELEASES": "200"}


def run_tests(build: Path):
    for data in build.rglob("*.gcda"):
        data.unlink()
    for program in PROGRAMS:
        subprocess.run([build / "bin" / f"{program}_tests", "--gtest_brief=1"], check=True, cwd=build,
                       stdout=subprocess.DEVNULL, env=SIZES | dict(os.environ))


def measure(build: Path) -> list[dict]:
    filters = [option for folder in FOLDERS for option in ("--filter", f"{ROOT}/{folder}/")]
    done = subprocess.run(
        ["gcovr", "--root", ROOT, *filters, "--exclude-throw-branches", "--exclude-unreachable-branches",
         "--gcov-ignore-parse-errors", "--json", "-", build],
        check=True, stdout=subprocess.PIPE, text=True)
    return json.loads(done.stdout)["files"]


def explanations() -> dict[str, str]:
    """By file and line of code."""
    rows = (Path(__file__).parent / "uncovered.md").read_text().splitlines()
    cells = [[cell.strip(" `") for cell in re.split(r"(?<!\\)\|", row)[1:-1]] for row in rows if row.startswith("| `")]
    return {"|".join(row[:2]): row[2] for row in cells}


def main() -> int:
    build = Path(sys.argv[1]).resolve()
    run_tests(build)
    known = explanations()
    taken, everything, lines = Counter(), Counter(), Counter()
    rows, unexplained = [], 0
    for file in measure(build):
        folder = file["file"].split("/")[0]
        source = (ROOT / file["file"]).read_text().splitlines()
        for line in file["lines"]:
            lines["all"] += 1
            lines["run"] += line["count"] > 0
            counted = [branch for branch in line["branches"] if not branch["throw"]]
            missing = sum(branch["count"] == 0 for branch in counted)
            everything[folder] += len(counted)
            taken[folder] += len(counted) - missing
            if missing:
                code = " ".join(source[line["line_number"] - 1].split()).replace("|", r"\|")
                why = known.get(f"{file['file']}|{code}", "")
                unexplained += not why
                rows.append(f"| `{file['file']}` | `{code}` | {why or '**not explained**'} |")
    print("\n".join(rows))
    for folder in FOLDERS:
        print(f"{folder}: {taken[folder]} of {everything[folder]} branches")
    total, all_of_them = sum(taken.values()), sum(everything.values())
    print(f"{all_of_them} cases: {total} of {all_of_them} branches taken ({total / all_of_them:.2%}), "
          f"{lines['run'] / lines['all']:.2%} of the lines run")
    return 1 if unexplained or total < ENOUGH * all_of_them else 0


if __name__ == "__main__":
    sys.exit(main())
