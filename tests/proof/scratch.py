"""Builds and tests a second copy of the tree, in which a source is broken on purpose."""

import os
import re
import shutil
import subprocess
import time
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

from areas import Area, sentences

ROOT = Path(__file__).resolve().parents[2]
FOLDER = ROOT / "build-scratch"
TREE = FOLDER / "tree"
BUILD = FOLDER / "build"

ENVIRONMENT = os.environ | {
    "QUOR_SCRIPTS": "4000", "QUOR_SIMULATED_JOBS": "2000", "QUOR_SIMULATED_PROOFS": "2000", "QUOR_PORT_CYCLES": "100", "QUOR_PORT_RELEASES": "50",
    "QUOR_PROPERTY_WRITES": "1000", "QUOR_LOG_RECORDS": "1000", "GTEST_FAIL_FAST": "1", "GTEST_BRIEF": "1",
}
SHARDS = 4  # how many processes share the tests of a program that mostly waits
QUICK_LINKER = ["-DCMAKE_EXE_LINKER_FLAGS=-fuse-ld=mold", "-DCMAKE_SHARED_LINKER_FLAGS=-fuse-ld=mold"] if shutil.which("mold") else []


# The time limit of each program in seconds: several times its time with the unbroken source on this machine. If the
# broken source makes a program hang, the program exceeds the limit, which counts as a failed test. A program that is
# slow only because the machine is busy stays below the limit.
limits: dict[str, float] = {}
LONGEST_RUN, SHORTEST_LIMIT, SLACK = 600, 60, 4


def quietly(*command, **options) -> subprocess.CompletedProcess:
    return subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, errors="replace", **options)


def prepare(areas: tuple[Area, ...]):
    """Copies the tree as it is now, and builds it without optimisation, because each changed source is compiled once and
    run once. Later builds do not look for added files."""
    files = quietly("git", "-C", ROOT, "ls-files", "--cached", "--others", "--exclude-standard").stdout.split("\n")
    for name in filter(None, files):
        source, target = ROOT / name, TREE / name
        if source.is_file() and not (target.is_file() and target.read_bytes() == source.read_bytes()):
            target.parent.mkdir(parents=True, exist_ok=True)
            shutil.copy(source, target)
    for target in [file for file in TREE.rglob("*") if file.is_file() and not (ROOT / file.relative_to(TREE)).exists()]:
        target.unlink()
    done = quietly("cmake", "-S", TREE, "-B", BUILD, "-G", "Ninja", "-DCMAKE_BUILD_TYPE=None", "-DCMAKE_CXX_FLAGS=-O0 -w -D_GLIBCXX_ASSERTIONS",
                   "-DCMAKE_GTEST_DISCOVER_TESTS_DISCOVERY_MODE=PRE_TEST", "-DCMAKE_SUPPRESS_REGENERATION=ON", *QUICK_LINKER)
    for area in areas if done.returncode == 0 else ():
        done = build(*area.programs)
        if done.returncode == 0 and (caught := failure(area)):
            raise SystemExit(f"the unbroken tree fails {caught}")
    if done.returncode != 0:
        raise SystemExit(f"the unbroken tree does not build:\n{done.stdout[-4000:]}")


def build(*programs: str) -> subprocess.CompletedProcess:
    return quietly("cmake", "--build", BUILD, "--target", *(program.split()[0] for program in programs))


def failure(area: Area) -> str | None:
    """The first test that fails, and fails again when it is run alone; "compiler" if a program does not build; or None.
    Builds and runs one program after the other, and stops after the first that fails."""
    for program in area.programs:
        if build(program).returncode != 0:
            return "compiler"
        run = run_sentences if program == "c_interface_tests" else run_tests
        began = time.monotonic()
        if caught := run(program, area.waits):
            return caught
        limits.setdefault(program.split()[0], max(SHORTEST_LIMIT, SLACK * (time.monotonic() - began)))
    return None


def run_tests(program: str, waits: bool) -> str | None:
    name, *chosen = program.split()
    shards = SHARDS if waits else 1
    with ThreadPoolExecutor(shards) as pool:
        answers = list(pool.map(lambda shard: run_shard(name, *chosen, shards=shards, shard=shard), range(shards)))
    return next((f"{name} {answer}" if answer.startswith(("ends ", "does ")) else answer for answer in answers
                 if answer and is_repeated(name, answer)), None)


def run_shard(program: str, chosen: str = "*", *, shards: int, shard: int) -> str | None:
    return ended(BUILD / "bin" / program, {"GTEST_FILTER": chosen, "GTEST_TOTAL_SHARDS": str(shards), "GTEST_SHARD_INDEX": str(shard)})


def is_repeated(program: str, answer: str) -> bool:
    """Whether the failed test fails again when it runs alone. A test that failed only because the machine was busy
    then passes. If the program crashed or hung, it named no test: nothing is run again, and the result is True."""
    if answer.startswith(("ends ", "does ")):
        return True
    return ended(BUILD / "bin" / program, {"GTEST_FILTER": answer}) is not None


def ended(program: Path, environment: dict[str, str], *arguments: str) -> str | None:
    """How the program failed: the name of a test, an exit status, or that it did not end; None if it did not fail."""
    try:
        done = quietly(program, *arguments, cwd=BUILD, env=ENVIRONMENT | environment,
                       timeout=limits.get(program.name, LONGEST_RUN))
    except subprocess.TimeoutExpired:
        return "does not end"
    if done.returncode == 0:
        return None
    failed = re.search(r"^\[  FAILED  \] ([\w./]+)", done.stdout, re.M)
    return failed.group(1) if failed else f"ends with status {done.returncode}"


def run_sentences(program: str, _waits: bool) -> str | None:
    """Runs the tests that are written in C. Returns the name of the first test that fails, or None."""
    names = sentences(TREE)
    with ThreadPoolExecutor(SHARDS) as pool:
        answers = pool.map(lambda name: ended(BUILD / "bin" / program, {}, name) and name, names)
        return next(filter(None, answers), None)


def try_text(area: Area, path: str, text: str) -> str | None:
    """Tests the tree with `text` in the file at `path`. Returns the test that fails, "compiler" if the tree does not
    build, or None."""
    file = TREE / path
    original = file.read_text()
    file.write_text(text)
    try:
        return failure(area)
    finally:
        file.write_text(original)
