"""Functions that all checks of the source tree use: the list of its files, and the report of a check."""

import sys
from collections.abc import Callable, Iterator
from pathlib import Path

OUTSIDE = (".git", "build", "__pycache__")


def files(root: Path, *suffixes: str) -> Iterator[Path]:
    """The project's files below `root`, sorted by path. If there are suffixes, only files that end in one of them."""
    for entry in sorted(root.iterdir()):
        if entry.name in OUTSIDE or entry.name.startswith("build-"):
            continue
        if entry.is_dir():
            yield from files(entry, *suffixes)
        elif not suffixes or entry.name.endswith(suffixes):
            yield entry


def report(check: Callable[..., list[str]], *arguments: str) -> None:
    """Runs a check and prints its objections. Ends the program: with status 0 without objections, otherwise with 1."""
    objections = check(*map(Path, arguments))
    for objection in objections:
        print(objection)
    sys.exit(1 if objections else 0)
