"""Shared by the checks of the tree: which files belong to it, and how a check reports."""

import sys
from collections.abc import Callable, Iterator
from pathlib import Path

OUTSIDE = (".git", "build", "__pycache__")


def files(root: Path, *suffixes: str) -> Iterator[Path]:
    """The project's files below root, by path; with suffixes, only those that end in one."""
    for entry in sorted(root.iterdir()):
        if entry.name in OUTSIDE or entry.name.startswith("build-"):
            continue
        if entry.is_dir():
            yield from files(entry, *suffixes)
        elif not suffixes or entry.name.endswith(suffixes):
            yield entry


def report(check: Callable[..., list[str]], *arguments: str) -> None:
    """Runs a check, prints its objections, and ends the program: 0 if there are none."""
    objections = check(*map(Path, arguments))
    for objection in objections:
        print(objection)
    sys.exit(1 if objections else 0)
