"""What the library exports is what was agreed upon. Usage: exported_symbols.py ROOT LIBRARY

The list in the tree is agreed upon: a name that is on it and not in the library breaks programs, and a
function of the C header that is not on it cannot be called.
"""

import re
import subprocess
import sys
from pathlib import Path


def listed(root: Path) -> set[str]:
    lines = (root / "cmake/exported_symbols.txt").read_text().splitlines()
    return {line.split()[0] for line in lines if line and not line.startswith("#")}


def exported(library: Path) -> set[str]:
    table = subprocess.run(["nm", "-D", "--defined-only", library], check=True, capture_output=True, text=True)
    rows = [row.split() for row in table.stdout.splitlines()]
    return {name.split("@")[0] for _, kind, name in rows if kind != "A"}  # A: the version itself


def declared(root: Path) -> set[str]:
    header = (root / "include/quordalvane/QuorIOPortC.h").read_text()
    return set(re.findall(r"^QUOR_EXPORT [^;(]*\b(\w+)\(", header, re.M))


def objections(root: Path, library: Path) -> list[str]:
    agreed, there, callable_from_c = listed(root), exported(library), declared(root)
    found = [f"{name} is gone" for name in sorted(agreed - there)]
    found += [f"{name} is exported and not listed" for name in sorted(there - agreed)]
    found += [f"{name} is declared for C and not listed" for name in sorted(callable_from_c - agreed)]
    return found or ([] if callable_from_c else ["the C header declares nothing"])


if __name__ == "__main__":
    complaints = objections(*map(Path, sys.argv[1:]))
    print("\n".join(complaints))
    sys.exit(1 if complaints else 0)
