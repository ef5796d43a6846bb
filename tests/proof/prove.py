"""Runs the proof and writes its summary, the table in docs/proof.md. See `./dev prove --help`.

Each row of the table states a claim, which one or more programs test. A row can be run alone. The work for a row is
divided into units; a unit is one run of a program. The figures of a finished unit are kept in build/proof/. The unit is
run again only after the product or its tests have changed. So `./dev prove`, if it was stopped, continues at the same
point.
"""

import argparse
import datetime
import re
import signal
import subprocess
import sys
import time
from pathlib import Path

from ledger import FOLDER, Ledger, digest
from page import FIGURES, PAGE, details, figures, shown, table, written
from rows import ROWS, Row
from steps import COMMIT, CORES, NIGHTLY, RELEASE, ROOT, Clock, Failed, Stopped, merged

NOT_PRODUCT = ("docs", "examples", "debian", ".ci")


def described_tree(root: Path) -> str:
    """The commit, followed by -dirty if the tree has changes. Changes of docs/proof.md do not count, because each run
    writes this file."""

    def git(*words: str) -> str:
        return subprocess.run(["git", *words], cwd=root, check=True, stdout=subprocess.PIPE, text=True).stdout.strip()

    changes = git("status", "--porcelain", "--", ".", f":!{PAGE.relative_to(ROOT)}")
    return git("rev-parse", "--short", "HEAD") + ("-dirty" if changes else "")


def state_of_sources() -> str:
    names = subprocess.run(["git", "ls-files", "--cached", "--others", "--exclude-standard"], cwd=ROOT, check=True,
                           stdout=subprocess.PIPE, text=True).stdout.splitlines()
    files = [ROOT / name for name in names if Path(name).parts[0] not in NOT_PRODUCT and not name.endswith(".md")]
    return digest(sorted(file for file in files if file.is_file()))


def run(row: Row, size: str, ledger: Ledger, state: str) -> dict[str, dict]:
    """Runs the units that are not done yet, and returns all units that are done."""
    units, done = [unit for step in row.steps for unit in step.units(size)], ledger.of(row.key, state)
    for unit in units:
        if Clock.is_over():
            break
        if done.get(unit.key(), {"share": 0})["share"] == 1:
            continue
        answer = unit.run() | {"commit": described_tree(ROOT), "date": datetime.date.today().isoformat()}
        if answer["cases"] == 0 and answer["share"] == 1:
            raise Failed(f"no case was run: {unit.key()}")
        done[unit.key()] = answer
        ledger.keep()
    keys = [unit.key() for unit in units]
    return {key: done[key] for key in keys if key in done}


def summary(row: Row, size: str, done: dict[str, dict]) -> dict[str, str]:
    units = sum(len(step.units(size)) for step in row.steps)
    share = sum(unit["share"] for unit in done.values()) / units
    last = list(done.values())[-1]
    results = merged(line for unit in done.values() for line in unit["told"] if re.match(r"[\w-]+: [\d,]+ of [\d,]+ ", line))
    return {"size": size, "far": f"{share:.0%}" if share in (0, 1) else f"{share:.1%}",
            "cases": f"{sum(unit['cases'] for unit in done.values()):,}",
            "time": shown(sum(unit["seconds"] for unit in done.values())), "result": "; ".join(results) or "nothing found",
            "run at": f"{last['commit']}, {last['date']}, {CORES} cores"}


def check_defects():
    """Each regression test that defects.md names must exist."""
    sources = "\n".join(file.read_text() for folder in ("tests", "fuzz") for file in (ROOT / folder).rglob("*")
                        if file.suffix in (".cpp", ".py", ".c", ".txt"))
    for line in table("defects.md")[2:]:
        for test in re.findall(r"`([\w/.]+)`", line.strip("|").split("|")[-1]):
            if test.split(".")[-1] not in sources and not (ROOT / test).exists():
                raise SystemExit(f"tests/proof/defects.md names no test: {test}")


def options() -> argparse.Namespace:
    parser = argparse.ArgumentParser(prog="./dev prove", description="Run the proof and write docs/proof.md. A run that is "
                                     "stopped, by --minutes or by Ctrl-C, continues at the same point next time.")
    size = parser.add_mutually_exclusive_group()
    size.add_argument("--nightly", action="store_const", dest="size", const=NIGHTLY, default=COMMIT)
    size.add_argument("--release", action="store_const", dest="size", const=RELEASE)
    parser.add_argument("--minutes", type=float, metavar="N", help="stop after N minutes")
    parser.add_argument("--page", action="store_true", help="write the page anew, and run nothing")
    parser.add_argument("rows", nargs="*", metavar="ROW", help="these rows alone: " + ", ".join(row.key for row in ROWS))
    chosen = parser.parse_args()
    keys = {row.key for row in ROWS}
    if unknown := set(chosen.rows) - keys:
        parser.error(f"no row {', '.join(sorted(unknown))}; there are {', '.join(row.key for row in ROWS)}")
    return chosen


def prove(row: Row, size: str, ledger: Ledger, state: str) -> bool:
    """Runs the programs of one row of docs/proof.md, and writes the row's results so far to this page. Stops when the
    time that --minutes gives is over, or when interrupted. Returns false if a program fails or runs no case."""
    print(f"== {row.title}, {size} size", flush=True)
    failure = None
    try:
        run(row, size, ledger, state)
    except Failed as failed:
        failure = failed
        print(failed, file=sys.stderr)
    except (Stopped, KeyboardInterrupt):
        pass  # the results of the finished units are written below
    keys = [unit.key() for step in row.steps for unit in step.units(size)]
    done = {key: unit for key, unit in ledger.of(row.key, state).items() if key in keys}
    known = figures(PAGE.read_text()) if PAGE.exists() else {}
    if done:
        known[row.title] = summary(row, size, done)
        (FOLDER / f"{row.key}.md").write_text(details(row, done))
        print(f"   {known[row.title]['cases']} cases, {known[row.title]['far']} of all cases of size {size}", flush=True)
    if failure:
        known[row.title] = known.get(row.title, dict.fromkeys(FIGURES, "") | {"size": size}) | {"result": "**failed**"}
    PAGE.write_text(written(known))
    return failure is None


def main() -> int:
    chosen = options()
    check_defects()
    for number in (signal.SIGINT, signal.SIGTERM):
        signal.signal(number, Clock.interrupt)
    if chosen.minutes is not None:
        Clock.end = time.monotonic() + 60 * chosen.minutes
    if chosen.page:
        PAGE.write_text(written(figures(PAGE.read_text())))
        return 0
    FOLDER.mkdir(parents=True, exist_ok=True)
    ledger, state = Ledger("units"), state_of_sources()
    rows = [row for row in ROWS if not chosen.rows or row.key in chosen.rows]
    failed = [row.title for row in rows if not Clock.is_over() and not prove(row, chosen.size, ledger, state)]
    parts = [FOLDER / f"{row.key}.md" for row in ROWS]
    (FOLDER / "details.md").write_text("# The proof in detail\n\n" + "\n".join(part.read_text() for part in parts if part.exists()))
    print(f"failed: {', '.join(failed)}" if failed else "docs/proof.md is written")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
