"""A second copy of the tree in which a source is broken on purpose, built and tested."""

import os
import shutil
import subprocess
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
FOLDER = ROOT / "build-scratch"
TREE = FOLDER / "tree"
BUILD = FOLDER / "build"

# What a break of the port is caught by, the quickest first. Few scripts: each mutant runs them all.
PROGRAMS = ("unit_parsers_tests", "unit_port_tests", "unit_job_tests", "trace_tests")
ENVIRONMENT = os.environ | {"QUOR_SCRIPTS": "4000", "GTEST_FAIL_FAST": "1", "GTEST_BRIEF": "1"}
LONGEST_RUN = 60  # seconds; a test that hangs has seen the break, too


def quietly(*command, **options) -> subprocess.CompletedProcess:
    return subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, **options)


def prepare():
    """Copies the tree as it is now, and builds it. Unoptimised: a mutant is compiled once and run once."""
    files = quietly("git", "-C", ROOT, "ls-files", "--cached", "--others", "--exclude-standard").stdout.split("\n")
    for name in filter(None, files):
        source, target = ROOT / name, TREE / name
        if source.is_file() and not (target.is_file() and target.read_bytes() == source.read_bytes()):
            target.parent.mkdir(parents=True, exist_ok=True)
            shutil.copy(source, target)
    done = quietly("cmake", "-S", TREE, "-B", BUILD, "-G", "Ninja", "-DCMAKE_BUILD_TYPE=None",
                   "-DCMAKE_CXX_FLAGS=-O1 -w")
    if done.returncode == 0:
        done = build()
    if done.returncode != 0:
        raise SystemExit(f"the unbroken tree does not build:\n{done.stdout[-4000:]}")
    if caught := failure():
        raise SystemExit(f"the unbroken tree fails {caught}")


def build() -> subprocess.CompletedProcess:
    return quietly("cmake", "--build", BUILD, "--target", *PROGRAMS)


def failure() -> str | None:
    """The first test that fails, or None."""
    for program in PROGRAMS:
        try:
            done = quietly(BUILD / "bin" / program, cwd=BUILD, env=ENVIRONMENT, timeout=LONGEST_RUN)
        except subprocess.TimeoutExpired:
            return f"{program} does not end"
        if done.returncode != 0:
            failed = [line.split("]", 1)[1].split()[0].rstrip(",") for line in done.stdout.splitlines()
                      if line.startswith("[  FAILED  ]")]
            return failed[0] if failed else f"{program} ends with status {done.returncode}"
    return None


def try_text(path: str, text: str) -> str | None:
    """What catches the tree with this text in the place of a file's; "compiler" where it does not build."""
    file = TREE / path
    original = file.read_text()
    file.write_text(text)
    try:
        return "compiler" if build().returncode != 0 else failure()
    finally:
        file.write_text(original)
