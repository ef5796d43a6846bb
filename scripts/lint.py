"""Runs clang-tidy on the product's sources. Usage: lint.py [--all] BUILD

BUILD is a configured build folder; its compile_commands.json contains the command that compiles each source. A source
that passes leaves a stamp in BUILD/lint. The stamp is a digest of everything that affects the result: the source, the
project's headers that it includes, its compile command, the rules, the version of clang-tidy. A source with a current
stamp is skipped, unless --all is given. The tests and fuzz targets are not linted, because the macros of the test
framework break many rules.
"""

import hashlib
import json
import os
import re
import subprocess
import sys
from concurrent.futures import ThreadPoolExecutor
from functools import cache
from pathlib import Path

ROOT = Path.cwd()
INCLUDE = re.compile(rb'^\s*#\s*include\s*["<]([^">]+)[">]', re.M)
NOT_LINTED = ("tests", "fuzz")
RULES = ".clang-tidy"


@cache
def included(file: Path) -> tuple[Path, ...]:
    """Returns the project's headers that the file includes directly."""
    names = [name.decode() for name in INCLUDE.findall(file.read_bytes())]
    places = (file.parent, ROOT, ROOT / "include")
    found = (next((place / name for place in places if (place / name).is_file()), None) for name in names)
    return tuple(header.resolve() for header in found if header)


def closure(source: Path) -> list[Path]:
    """Returns the source, and all of the project's headers that it includes, directly or indirectly."""
    seen, left = set(), [source]
    while left:
        file = left.pop()
        if file not in seen:
            seen.add(file)
            left += included(file)
    return sorted(seen)


@cache
def content(file: Path) -> bytes:
    return hashlib.sha256(file.read_bytes()).digest()


def sources(build: Path) -> dict[Path, str]:
    """Returns the product's sources, each with its compile command."""
    found = {}
    for entry in json.loads((build / "compile_commands.json").read_text()):
        file = Path(entry["directory"], entry["file"]).resolve()
        inside = file.is_relative_to(ROOT) and not file.is_relative_to(build.resolve())
        if inside and file.relative_to(ROOT).parts[0] not in NOT_LINTED:
            found.setdefault(file, entry["command"])
    return found


class Lint:
    def __init__(self, build: Path):
        self.build = build
        self.version = subprocess.run(["clang-tidy", "--version"], check=True, capture_output=True).stdout

    @staticmethod
    def rules(source: Path) -> list[Path]:
        """Returns the files that configure the checks for a source: those in its folder and in the folders above."""
        folders = [folder for folder in source.parents if folder.is_relative_to(ROOT)]
        return [folder / RULES for folder in folders if (folder / RULES).is_file()]

    def stamp(self, source: Path) -> Path:
        return self.build / "lint" / f"{source.relative_to(ROOT)}.stamp"

    def digest(self, source: Path, command: str) -> str:
        parts = [self.version, command.encode()]
        for file in [*self.rules(source), *closure(source)]:
            parts += [str(file).encode(), content(file)]
        return hashlib.sha256(b"\0".join(parts)).hexdigest()

    def passed_before(self, source: Path, command: str) -> bool:
        stamp = self.stamp(source)
        return stamp.is_file() and stamp.read_text() == self.digest(source, command)

    def passes(self, source: Path, command: str) -> bool:
        done = subprocess.run(["clang-tidy", "--quiet", "-p", self.build, source], text=True,
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        if done.returncode != 0:
            errors = [line for line in done.stderr.splitlines() if not line.endswith("warnings generated.")]
            print(done.stdout, *errors, sep="\n", flush=True)
            return False
        self.stamp(source).parent.mkdir(parents=True, exist_ok=True)
        self.stamp(source).write_text(self.digest(source, command))
        return True


def main(words: list[str]) -> int:
    lint = Lint(Path(words[-1]))
    commands = sources(lint.build)
    due = {source: command for source, command in commands.items()
           if "--all" in words or not lint.passed_before(source, command)}
    print(f"checking {len(due)} of {len(commands)} sources")
    with ThreadPoolExecutor(os.cpu_count()) as pool:
        results = list(pool.map(lint.passes, due.keys(), due.values()))
    return 0 if all(results) else 1


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
