"""Every test in the sources is run. Usage: built_tests.py ROOT BUILD CTEST

A test file that is in no program, or a test that ctest does not know, would never run and so never fail.
"""

import json
import re
import subprocess
import sys
from pathlib import Path

import tree

TEST = re.compile(r"^(TEST|TEST_F|TEST_P|TYPED_TEST|TYPED_TEST_P)\(\s*(\w+)\s*,\s*(\w+)\s*\)", re.M)


def built_files(build: Path) -> set[Path]:
    commands = json.loads((build / "compile_commands.json").read_text())
    return {Path(command["directory"], command["file"]).resolve() for command in commands}


def run_names(build: Path, ctest: Path) -> list[str]:
    listing = subprocess.run(
        [ctest, "--test-dir", build, "--show-only=json-v1"], check=True, capture_output=True, text=True
    )
    return [test["name"] for test in json.loads(listing.stdout)["tests"]]


def runs(kind: str, suite: str, name: str, names: list[str]) -> bool:
    # The form of a name in ctest: [folder/][instance/]suite[/type number].name[/parameter]
    typed = r"/\w+" if kind.startswith("TYPED") else ""
    parameter = "/.+" if kind == "TEST_P" else ""
    pattern = re.compile(rf"(.*/)?{suite}{typed}\.{name}{parameter}")
    return any(pattern.fullmatch(candidate) for candidate in names)


def left_out_folders(root: Path, build: Path) -> list[Path]:
    """The folders whose tests were not built, because their packages are missing."""
    listing = build / "left_out.txt"
    lines = listing.read_text().splitlines() if listing.is_file() else []
    return [root / line for line in lines]


def violations(root: Path, build: Path, ctest: Path) -> list[str]:
    root = root.resolve()
    built = built_files(build)
    names = run_names(build, ctest)
    left_out = left_out_folders(root, build)
    found = []
    for source in tree.files(root / "tests", "_test.cpp"):
        if any(source.is_relative_to(folder) for folder in left_out):
            continue
        path = source.relative_to(root)
        if source not in built:
            found.append(f"{path}: not built")
            continue
        tests = TEST.findall(source.read_text())
        if not tests:
            found.append(f"{path}: holds no test")
        for kind, suite, name in tests:
            if not runs(kind, suite, name, names):
                found.append(f"{path}: {suite}.{name} is not run")
    return found


if __name__ == "__main__":
    tree.report(violations, *sys.argv[1:])
