"""Finds words that no text of the project may contain. Usage: wording.py ROOT

A text must state its reasons itself. It must not refer to a paper, a tracker or a machine that the reader does not
have. Every text file must end with exactly one line feed.
"""

import re
import sys
from pathlib import Path

import tree

# Each pattern is written so that it does not find itself.
PATTERNS = {
    "points into a paper": r"\bspec(ification)?s?\b.{0,30}\b[p]art\b|\b[p]arts? [1-9]\.[0-9]\b",
    "points into a tracker": r"\bthe [i]ssue\b|\b[i]ssues? #?[0-9]|\bticket\s?#?[0-9]",
    "names a place on one machine": r"(?<![\w.])/(w[o]rk|f[a]rm|h[o]me/\w+|r[o]ot)/",
    "is a note to oneself": r"\b(T[O]DO|F[I]XME|X[X]X)\b",
}


def objections(data: bytes) -> list[tuple[int, str]]:
    """The lines that break the rule, with the reason; a file with NUL bytes is data, not text."""
    if not data or b"\0" in data:
        return []
    lines = data.decode(errors="replace").splitlines()
    found = [
        (number, reason)
        for number, line in enumerate(lines, 1)
        for reason, pattern in PATTERNS.items()
        if re.search(pattern, line, re.I)
    ]
    if not data.endswith(b"\n") or data.endswith(b"\n\n"):
        found.append((len(lines), "does not end with one line feed"))
    return found


def is_data(path: Path) -> bool:
    """Receipts and the fuzzers' inputs are bytes and not texts."""
    return "corpus" in path.parts or (path.parts[0] == "examples" and path.suffix in (".txt", ".bin"))


def violations(root: Path) -> list[str]:
    found = []
    for file in tree.files(root):
        path = file.relative_to(root)
        if not is_data(path):
            found += [f"{path}:{number}: {reason}" for number, reason in objections(file.read_bytes())]
    return found


if __name__ == "__main__":
    tree.report(violations, *sys.argv[1:])
