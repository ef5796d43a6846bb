"""The programs that a row of docs/proof.md runs, divided into units. A unit that was run is not run again."""

import os
import re
import signal
import subprocess
import sys
import time
import xml.etree.ElementTree as xml
from concurrent.futures import ThreadPoolExecutor
from dataclasses import dataclass, field
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
COMMIT, NIGHTLY, RELEASE = SIZES = ("commit", "nightly", "release")
CORES = os.cpu_count() or 1


class Failed(Exception):
    """A program failed or ran no case. The exception holds the command, and the output of a program that failed."""


class Stopped(Exception):
    """`./dev prove` was stopped while the program ran. The exception holds the program's output."""


class Clock:
    """Says when `./dev prove` must end: after the time that --minutes gives, or when a signal interrupts it."""

    end = float("inf")

    @classmethod
    def left(cls) -> float | None:
        return None if cls.end == float("inf") else max(0, cls.end - time.monotonic())

    @classmethod
    def is_over(cls) -> bool:
        return time.monotonic() >= cls.end

    @classmethod
    def interrupt(cls, _signal=None, _frame=None):
        cls.end = 0
        raise KeyboardInterrupt


def execute(command: list[str], environment: dict[str, str], ends_itself: bool = False) -> str:
    """Runs the program and returns its output. If `./dev prove` is stopped, stops the program and the processes that
    the program started. With `ends_itself`, stops only the program, which then stops its processes itself."""
    process = subprocess.Popen(command, cwd=ROOT, env=os.environ | environment, stdout=subprocess.PIPE,
                               stderr=subprocess.STDOUT, text=True, errors="replace", start_new_session=True)
    try:
        output, _ = process.communicate(timeout=Clock.left())
    except (subprocess.TimeoutExpired, KeyboardInterrupt):
        (os.kill if ends_itself else os.killpg)(process.pid, signal.SIGTERM)
        raise Stopped(process.communicate()[0]) from None
    if process.returncode != 0:
        raise Failed(f"{' '.join(map(str, command))}\n{output[-6000:]}")
    return output


@dataclass(frozen=True)
class Unit:
    """One run of a program with its settings."""

    command: list[str]
    environment: dict[str, str]
    cases_of: object
    ends_itself: bool = False

    def key(self) -> str:
        settings = [f"{name}={value}" for name, value in self.environment.items() if name != "QUORPORT"]
        return " ".join([*settings, *("python3" if word == sys.executable else word for word in self.command)])

    def run(self) -> dict:
        """Runs the program. Returns the number of finished cases ("cases"), the finished share of this run from 0 to 1
        ("share"), the time in seconds ("seconds"), and the lines of the program's report ("told")."""
        began, share = time.monotonic(), 1
        try:
            cases, lines = self.cases_of(self)
        except Stopped as stopped:
            if not self.ends_itself:
                raise
            lines, share = str(stopped).strip().splitlines(), 0
            cases = counted(lines)
        if told := re.search(r"^(\d+) of (\d+) cases\b", "\n".join(lines), re.M):
            share = int(told.group(1)) / max(1, int(told.group(2)))
        return {"cases": cases, "share": share, "seconds": round(time.monotonic() - began, 1), "told": lines}


def counted(lines: list[str]) -> int:
    found = [re.match(r"(\d+) (?:of \d+ )?(?:cases|jobs|exits)\b", line) for line in lines]
    return next((int(match.group(1)) for match in reversed(found) if match), 0)


def plainly(unit: Unit) -> tuple[int, list[str]]:
    lines = execute(unit.command, unit.environment, unit.ends_itself).strip().splitlines()
    return counted(lines), lines


def fuzzing(unit: Unit) -> tuple[int, list[str]]:
    """Runs the fuzzing engine, and adds up the inputs that it counts for each target."""
    lines = execute(unit.command, unit.environment).strip().splitlines()
    return sum(int(match.group(1)) for line in lines if (match := re.search(r": (\d+) inputs", line))), lines


def booting(unit: Unit) -> tuple[int, list[str]]:
    """Runs tests in virtual machines and adds up their cases. Each line of the output begins with its test's number."""
    text = execute(unit.command, unit.environment)
    cases = [int(count) for count in re.findall(r"^\d+: (\d+) cases\b", text, re.M)]
    return sum(cases), text.strip().splitlines()


def testing(unit: Unit) -> tuple[int, list[str]]:
    """Runs a test program in as many processes as there are cores. The program's report says how many cases each test
    ran; without such figures, each test is a case."""
    with ThreadPoolExecutor(CORES) as pool:
        reports = list(pool.map(lambda shard: run_shard(unit, shard), range(CORES)))
    return sum(cases for cases, _ in reports), merged(line for _, lines in reports for line in lines)


def merged(lines) -> list[str]:
    """Adds up the lines "NAME: N of M MEANING" that have the same name and the same meaning."""
    sums: dict[tuple[str, str], tuple[int, int]] = {}
    for line in lines:
        name, done, total, meaning = re.match(r"([\w-]+): ([\d,]+) of ([\d,]+) (.*)", line).groups()
        before = sums.get((name, meaning), (0, 0))
        sums[name, meaning] = tuple(one + int(count.replace(",", "")) for one, count in zip(before, (done, total)))
    return [f"{name}: {done:,} of {total:,} {meaning}" for (name, meaning), (done, total) in sums.items()]


def run_shard(unit: Unit, shard: int) -> tuple[int, list[str]]:
    report = ROOT / f"build/proof/{shard}-{os.getpid()}.xml"
    report.parent.mkdir(parents=True, exist_ok=True)
    shards = {"GTEST_TOTAL_SHARDS": str(CORES), "GTEST_SHARD_INDEX": str(shard), "GTEST_OUTPUT": f"xml:{report}"}
    execute(unit.command, unit.environment | shards)
    suites = xml.parse(report).getroot()
    report.unlink()
    tests = [test for test in suites.iter("testcase") if test.get("status") == "run"]
    cases = [int(entry.get("value")) for entry in suites.iter("property") if entry.get("name") == "cases"]
    told = [f"{entry.get('name')}: {entry.get('value')}" for entry in suites.iter("property")
            if re.match(r"\d+ of \d+ ", entry.get("value"))]
    return sum(cases) if cases else len(tests), told


@dataclass(frozen=True)
class Step:
    """A program that is run as a whole. A value that depends on the size of the run is a tuple, with a value for each of
    SIZES."""

    command: tuple
    environment: dict = field(default_factory=dict)
    cases_of: object = plainly
    ends_itself: bool = False

    def units(self, size: str) -> list[Unit]:
        command = [self.chosen(word, size) for word in self.command]
        return [Unit(command, {name: self.chosen(value, size) for name, value in self.environment.items()}, self.cases_of,
                     self.ends_itself)]

    @staticmethod
    def chosen(value, size: str) -> str:
        return str(value[SIZES.index(size)] if isinstance(value, tuple) else value)


@dataclass(frozen=True)
class Portions:
    """A program whose work is divided: each run does one portion, which its environment variables choose."""

    command: tuple
    counts: tuple  # the whole amount of work for each of SIZES, in cases, inputs or seconds
    portion: tuple  # the work of one run for each of SIZES, in the unit of `counts`
    settings: object  # a function that takes the number and the amount of a portion, and returns its environment variables
    cases_of: object = plainly

    def units(self, size: str) -> list[Unit]:
        count, portion = (values[SIZES.index(size)] for values in (self.counts, self.portion))
        return [Unit([word.format(amount=portion) for word in map(str, self.command)], self.settings(number, portion),
                     self.cases_of) for number in range(count // portion)]


def seeds(program: str, variable: str, counts: tuple, *options: str) -> Portions:
    portion = min(counts)
    return Portions((program, *options), counts, (portion,) * len(counts),
                    lambda number, amount: {variable: str(amount), "QUOR_FIRST_SEED": str(1 + number * amount)}, testing)
