"""Runs the proof, row by row, and writes docs/proof.md. See `./dev prove --help`.

What each row measured is kept in docs/proof.json, so that rows may be run one at a time and at different
sizes; the page says of each figure when it was taken and at which size.
"""

import argparse
import datetime
import json
import os
import re
import subprocess
import sys
import time
import xml.etree.ElementTree as xml
from concurrent.futures import ThreadPoolExecutor
from dataclasses import dataclass, field
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
PROOF = Path(__file__).parent
RECORD = ROOT / "docs/proof.json"
PAGE = ROOT / "docs/proof.md"
COMMIT, NIGHTLY, RELEASE = SIZES = ("commit", "nightly", "release")
CORES = os.cpu_count() or 1


class Failed(Exception):
    """What a step printed when it failed."""


@dataclass(frozen=True)
class Step:
    """One program of a row. A value that differs from size to size is a tuple of three."""

    command: tuple
    environment: dict = field(default_factory=dict)
    sizes: tuple = SIZES

    def at(self, size: str) -> tuple[list[str], dict[str, str]]:
        def chosen(value):
            return str(value[SIZES.index(size)] if isinstance(value, tuple) else value)

        return [chosen(word) for word in self.command], {k: chosen(v) for k, v in self.environment.items()}

    def run(self, size: str) -> tuple[int, list[str]]:
        """How many cases it ran, and what is to be told of it. Its last line says both."""
        command, environment = self.at(size)
        lines = execute(command, environment).strip().splitlines()
        return self.cases(lines), lines

    @staticmethod
    def cases(lines: list[str]) -> int:
        found = [re.match(r"(\d+) (?:cases|jobs|exits)\b", line) for line in lines]
        return next((int(match.group(1)) for match in reversed(found) if match), 0)


class Fuzzing(Step):
    """The fuzzing engine, which counts the inputs of each target."""

    @staticmethod
    def cases(lines: list[str]) -> int:
        return sum(int(match.group(1)) for line in lines if (match := re.search(r": (\d+) inputs", line)))


class Tests(Step):
    """A test program, in as many processes as there are cores. Its tests tell their cases in their report."""

    def run(self, size: str) -> tuple[int, list[str]]:
        command, environment = self.at(size)
        with ThreadPoolExecutor(CORES) as pool:
            return sum(pool.map(lambda shard: self.run_shard(command, environment, shard), range(CORES))), []

    @staticmethod
    def run_shard(command: list[str], environment: dict[str, str], shard: int) -> int:
        report = ROOT / f"build/proof-{shard}-{os.getpid()}.xml"
        shards = {"GTEST_TOTAL_SHARDS": str(CORES), "GTEST_SHARD_INDEX": str(shard), "GTEST_OUTPUT": f"xml:{report}"}
        execute(command, environment | shards)
        suites = xml.parse(report).getroot()
        report.unlink()
        tests = [test for test in suites.iter("testcase") if test.get("status") == "run"]
        cases = [int(entry.get("value")) for entry in suites.iter("property") if entry.get("name") == "cases"]
        return sum(cases) if cases else len(tests)


def execute(command: list[str], environment: dict[str, str]) -> str:
    done = subprocess.run(command, cwd=ROOT, env=os.environ | environment, stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT, text=True)
    if done.returncode != 0:
        raise Failed(f"{' '.join(command)}\n{done.stdout[-6000:]}")
    return done.stdout


@dataclass(frozen=True)
class Row:
    key: str
    title: str
    shows: str
    steps: tuple[Step, ...]
    suite: str  # what the ordinary tests, which run at each commit, do of it


def python(script: str, *arguments) -> tuple:
    return (sys.executable, "-B", f"tests/proof/{script}", *arguments)


def faults(*filters: str) -> Tests:
    return Tests(("build/bin/faults_tests", "--gtest_filter=" + ":".join(filters)))


def lifecycle(build: str, cycles: tuple, releases: tuple, writes: tuple) -> Step:
    sizes = {"QUOR_PORT_CYCLES": cycles, "QUOR_PORT_RELEASES": releases, "QUOR_PROPERTY_WRITES": writes,
             "QUOR_LOG_RECORDS": writes}
    return Tests((f"{build}/bin/lifecycle_tests",), sizes)


def exits(build: str) -> Step:
    # The thread sanitizer holds up each exit by a second otherwise.
    return Step((sys.executable, "-B", "tests/lifecycle/exits_test.py", f"{build}/bin/exit_with_live_port"),
                {"QUOR_EXITS": 1000, "TSAN_OPTIONS": "atexit_sleep_ms=100"})


PARSERS = ("status_length", "line_status", "escpos_status", "firmware_reply", "dip_switch_reply")
TEXTS = ("port_name", "port_settings", "bluetooth_address", "network_address", "device_spec", "log_record",
         "simulator_input", "control_line")
WHOLE = ("at_reply", "operation", "print_job")


def fuzz(targets: tuple[str, ...], runs: tuple) -> Step:
    return Fuzzing(("scripts/fuzz.sh", "build-fuzz", tuple(f"-runs={count}" for count in runs), *targets), {})


WHOLE_ROW, REPLAYS, NOTHING = "all of it", "the corpora, replayed", "nothing"

ROWS = (
    Row("model", "Independent model", "random scripts of link behaviour run alike, in everything, on the port and on a "
        "model written from its contracts alone",
        (Tests(("build/bin/trace_tests",), {"QUOR_SCRIPTS": (100_000, 1_000_000, 10_000_000)}),), WHOLE_ROW),
    Row("faults", "Fault sweep", "every call to the platform fails, in every way, once and from there on: each "
        "operation ends as its contract says", (faults("*FaultSweep*", "*MainThreadSweep*"),), WHOLE_ROW),
    Row("allocations", "Allocation sweep", "every allocation fails in turn: nothing but std::bad_alloc, nothing out of "
        "open and close", (faults("*AllocationSweep*", "*WithoutMemory*", "*NoMemoryAtAll*"),), WHOLE_ROW),
    Row("torture", "Link torture", "every reply and command is split, stalled, cut, doubled and preceded by a stray byte "
        "at each of its bytes", (faults("*LinkTorture*"),), WHOLE_ROW),
    Row("jobs", "Job simulation", "seeded print jobs on a truthful printer with everything going wrong: `printed` never "
        "without the paper",
        (Tests(("build/bin/simulation_tests",), {"QUOR_SIMULATED_JOBS": (20_000, 1_000_000, 10_000_000)}),), WHOLE_ROW),
    Row("clocks", "Clocks", "the wall clock steps at every reading: no early time-out, no delay beyond the step",
        (faults("*Clock*"),), WHOLE_ROW),
    Row("bounds", "Bounds", "every operation ends within its limit, and what has none ends with the link",
        (faults("Bounds.*"),), WHOLE_ROW),
    Row("fuzz", "Fuzzing", "arbitrary input to parsers, texts, the virtual printer and whole operations",
        (fuzz(PARSERS, (100_000, 10_000_000, 10_000_000)), fuzz(TEXTS, (20_000, 1_000_000, 10_000_000)),
         fuzz(WHOLE, (1_000, 100_000, 1_000_000))), REPLAYS),
    Row("threads", "Threads", "ports opened, closed and released by the thousand, properties and the logger from many "
        "threads, processes that end with a live port thread",
        (lifecycle("build", (10_000, 100_000, 100_000), (1_000, 10_000, 10_000), (20_000, 200_000, 1_000_000)),
         exits("build")), WHOLE_ROW),
    Row("sanitizers", "Threads, under the sanitizers", "the same, silent under the thread sanitizer, and under the "
        "address, leak and undefined-behaviour sanitizers, without suppressions",
        tuple(step for build in ("build-tsan", "build-asan")
              for step in (lifecycle(build, (2_000, 100_000, 100_000), (500, 10_000, 10_000), (5_000, 50_000, 200_000)),
                           exits(build))), NOTHING),
    Row("soak", "Soak", "tills in real time over a local socket and a terminal, through a relay that slices, throttles, "
        "delays and cuts: no failed clean job, no descriptor, thread or memory left behind",
        (Step((sys.executable, "-B", "tests/soak/soak_test.py", "build/bin/till"),
              {"QUOR_SOAK_SECONDS": (10, 600, 28_800), "QUORPORT": str(ROOT / "build/bin/quorport")}),), WHOLE_ROW),
    Row("coverage", "Branch coverage", "of the port, the parsers, the print job and the logger",
        (Step(python("coverage.py", "build-coverage")),), NOTHING),
    Row("mutation", "Mutation", "small changes of the port and its parsers, drawn by a seed, are noticed",
        (Step(python("mutation.py", (40, 200, 0))),), NOTHING),
    Row("breaks", "Ten chosen breaks", "each of ten breaks of the port fails a test of the commit tier",
        (Step(python("breaks.py")),), NOTHING),
    Row("audit", "Untrusted input", "the tests that [security.md](security.md) names",
        (Step(python("audit.py", "build")),), WHOLE_ROW),
)


def described_tree(root: Path) -> str:
    """The commit, with -dirty behind it where the tree is another one. What a run itself writes does not count."""

    def git(*words: str) -> str:
        return subprocess.run(["git", *words], cwd=root, check=True, stdout=subprocess.PIPE, text=True).stdout.strip()

    changes = git("status", "--porcelain", "--", ".", *(f":!{file.relative_to(ROOT)}" for file in (RECORD, PAGE)))
    return git("rev-parse", "--short", "HEAD") + ("-dirty" if changes else "")


def run(row: Row, size: str) -> dict:
    print(f"== {row.title}, {size} size", flush=True)
    commit, began = described_tree(ROOT), time.monotonic()
    cases, told = 0, []
    for step in row.steps:
        count, lines = step.run(size)
        if count == 0:
            raise Failed(f"no case was run: {' '.join(step.at(size)[0])}")
        cases += count
        told += lines
    return {"size": size, "cases": cases, "seconds": round(time.monotonic() - began, 1), "told": told,
            "date": datetime.date.today().isoformat(), "commit": commit}


def measured() -> dict:
    """Of each row, what its last run measured; another run may have added to it meanwhile."""
    return json.loads(RECORD.read_text()) if RECORD.exists() else {}


def shown(seconds: float) -> str:
    return f"{seconds / 3600:.1f} h" if seconds >= 5400 else f"{seconds / 60:.1f} min" if seconds >= 90 else f"{seconds:.0f} s"


def table(name: str) -> list[str]:
    return [line for line in (PROOF / name).read_text().splitlines() if line.startswith("|")]


def page(records: dict) -> str:
    lines = [
        "# The proof", "",
        "Written by `./dev prove`, which ran what stands here; the figures are those of the run, at the size",
        "that is named: `commit`, `nightly` or `release`, each larger than the one before. A row that was not",
        "run says so. The third column says what of a row `./dev test` runs at each commit, at the size `commit`;",
        "the rest is run by `./dev prove` alone.", "",
        "| row | what it shows | at each commit | size | cases | time | found and mended | run at |",
        "|---|---|---|---|---|---|---|---|",
    ]
    defects = [[cell.strip() for cell in line.strip("|").split("|")] for line in table("defects.md")[2:]]
    for row in ROWS:
        found = sum(row.key in cells[0].split(", ") for cells in defects) or "none"
        if record := records.get(row.key):
            lines.append(f"| [{row.title}](#{row.title.lower().replace(' ', '-').replace(',', '')}) | {row.shows} | "
                         f"{row.suite} | {record['size']} | {record['cases']:,} | {shown(record['seconds'])} | {found} | "
                         f"{record['commit']}, {record['date']} |")
        else:
            lines.append(f"| {row.title} | {row.shows} | {row.suite} | not run | | | {found} | |")
    lines += ["", f"Times are of a machine with {CORES} cores that others used as well.", "", "## Defects found", ""]
    lines += ["Each with the test that would find it again, where there is one.", "", *table("defects.md")]
    for row in ROWS:
        if record := records.get(row.key):
            lines += ["", f"## {row.title}", "", *details(row, record)]
    return "\n".join(lines) + "\n"


HEADS = {
    "coverage": ["| file | line | never | why |", "|---|---|---|---|"],
    "mutation": ["| file | line | changed line | why it survives |", "|---|---|---|---|"],
    "breaks": ["| | what is broken | in | caught by |", "|---|---|---|---|"],
}


def details(row: Row, record: dict) -> list[str]:
    commands = []
    for step in row.steps:
        command, environment = step.at(record["size"])
        settings = " ".join(f"{name}={value}" for name, value in environment.items() if name != "QUORPORT")
        words = " ".join("python3" if word == sys.executable else word for word in command)
        commands.append(f"    {settings} {words}".replace("     ", "    "))
    rows = [line for line in record["told"] if line.startswith("|")]
    told = [f"- {line}" for line in record["told"] if line and not line.startswith("|")]
    return commands + ([""] if told or rows else []) + told + (["", *HEADS[row.key], *rows] if rows else [])


def check_defects():
    """A defect's regression test must be there."""
    sources = "\n".join(file.read_text() for folder in ("tests", "fuzz") for file in (ROOT / folder).rglob("*")
                        if file.suffix in (".cpp", ".py", ".c", ".txt"))
    for line in table("defects.md")[2:]:
        for test in re.findall(r"`([\w/.]+)`", line.strip("|").split("|")[-1]):
            if test.split(".")[-1] not in sources and not (ROOT / test).exists():
                raise SystemExit(f"tests/proof/defects.md names no test: {test}")


def main() -> int:
    parser = argparse.ArgumentParser(prog="./dev prove", description="Run the proof and write docs/proof.md.")
    size = parser.add_mutually_exclusive_group()
    size.add_argument("--nightly", action="store_const", dest="size", const=NIGHTLY, default=COMMIT)
    size.add_argument("--release", action="store_const", dest="size", const=RELEASE)
    parser.add_argument("--page", action="store_true", help="write the page from what was measured, and run nothing")
    parser.add_argument("rows", nargs="*", metavar="ROW", help="these rows alone: " + ", ".join(row.key for row in ROWS))
    options = parser.parse_args()
    keys = {row.key for row in ROWS}
    if unknown := set(options.rows) - keys:
        parser.error(f"no row {', '.join(sorted(unknown))}; there are {', '.join(row.key for row in ROWS)}")
    check_defects()
    failed = []
    for row in () if options.page else ROWS:
        if options.rows and row.key not in options.rows:
            continue
        try:
            record = run(row, options.size)
        except Failed as failure:
            print(failure, file=sys.stderr)
            failed.append(row.title)
            continue
        print(f"   {record['cases']:,} cases in {shown(record['seconds'])}", flush=True)
        RECORD.write_text(json.dumps(measured() | {row.key: record}, indent=1) + "\n")
    PAGE.write_text(page(measured()))
    print(f"failed: {', '.join(failed)}" if failed else "docs/proof.md is written")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
