"""Runs the tests that docs/security.md names. Usage: audit.py BUILD

Fails when a test that is named there does not exist or does not pass.
"""

import json
import os
import re
import subprocess
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
NAMED = re.compile(r"`([\w/]+\.(?:cpp|py))`(?::((?: `\w+`,?)+))?")


def named_tests() -> list[tuple[str, list[str]]]:
    """The test files that the table of docs/security.md names, each with its named tests; [] means all tests of the file."""
    rows = [row for row in (ROOT / "docs/security.md").read_text().splitlines() if row.startswith("| **")]
    return [(file, re.findall(r"\w+", tests)) for row in rows for file, tests in NAMED.findall(row)]


def ctest_names(file: str, tests: list[str]) -> list[str]:
    """Patterns for the names that ctest gives to `tests`, tests in `file`; [] means all tests of the file."""
    path = Path(file)
    source = (ROOT / path).read_text()
    if absent := [test for test in tests if not re.search(rf"\b{test}\b", source)]:
        raise SystemExit(f"{file} holds no {', '.join(absent)}")
    if path.parts[0] == "fuzz":
        return [f"^fuzz/{path.stem}\\."]
    if path.suffix == ".py":
        return [f"^{path.parts[1]}/{path.stem}$"]
    named = tests or re.findall(r"^TEST(?:_[FP])?\(\w+,\s*(\w+)\)", source, re.M)
    return [rf"{path.parent.relative_to('tests')}/.*\.{test}(/|$)" for test in named]


def numbers(build: str, patterns: set[str]) -> list[str]:
    """The positions of the matching tests in ctest's list; each pattern must match at least one test."""
    listing = subprocess.run(["ctest", "--test-dir", build, "--show-only=json-v1"], stdout=subprocess.PIPE,
                             check=True)
    names = [test["name"] for test in json.loads(listing.stdout)["tests"]]
    if idle := [pattern for pattern in patterns if not any(re.search(pattern, name) for name in names)]:
        raise SystemExit(f"ctest knows no {', '.join(idle)}")
    return [str(k) for k, name in enumerate(names, 1) if any(re.search(pattern, name) for pattern in patterns)]


def main() -> int:
    build = sys.argv[1]
    chosen = numbers(build, {pattern for named in named_tests() for pattern in ctest_names(*named)})
    done = subprocess.run(
        ["ctest", "--test-dir", build, "--output-on-failure", "-j", str(os.cpu_count()), "-I", "0,0,0," + ",".join(chosen)],
        stdout=subprocess.PIPE, text=True)
    print(done.stdout if done.returncode else "", end="")
    print(f"{len(chosen)} cases: all tests that docs/security.md names")
    return done.returncode


if __name__ == "__main__":
    sys.exit(main())
