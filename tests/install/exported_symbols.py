"""A library exports the names in its list and no others. Usage: exported_symbols.py LIST LIBRARY HEADER …

Names that are marked QUOR_EXPORT are exported. This test fails if these names differ from the list, so that nobody
removes a name by mistake: programs that use a removed name no longer run. The test also fails if the library does not
export a name that a HEADER declares for C. After an intended change, rewrite the list with

    tests/install/exported_symbols.py --write LIST LIBRARY
"""

import re
import subprocess
import sys
from pathlib import Path


def exported(library: Path) -> list[str]:
    """The exported names in their linked form; each C++ name is followed by its readable form."""
    table = subprocess.run(["nm", "-D", "--defined-only", library], check=True, capture_output=True, text=True)
    rows = [row.split() for row in table.stdout.splitlines()]
    # The name of the library's symbol version has the type A; it is omitted. Weak names are omitted because they
    # depend on the code that the compiler inlines.
    names = sorted(name.split("@")[0] for _, kind, name in rows if kind not in "AVWu")
    readable = subprocess.run(["c++filt"], input="\n".join(names), check=True, capture_output=True, text=True)
    meanings = readable.stdout.splitlines()
    return [name if name == meaning else f"{name}  # {meaning}" for name, meaning in zip(names, meanings, strict=True)]


def declared_for_c(headers: list[Path]) -> set[str]:
    return {name for header in headers for name in re.findall(r"^QUOR_EXPORT [^;(]*\b(\w+)\(", header.read_text(), re.M)}


def objections(names: Path, library: Path, headers: list[Path]) -> list[str]:
    agreed, there, for_c = set(names.read_text().splitlines()), set(exported(library)), declared_for_c(headers)
    found = [f"is missing: {name}" for name in sorted(agreed - there)]
    found += [f"is exported and not listed: {name}" for name in sorted(there - agreed)]
    found += [f"is declared for C and not exported: {name}" for name in sorted(for_c - there)]
    return found or ([] if for_c else ["the headers for C declare nothing"])


def main(arguments: list[str]) -> int:
    writes = arguments[:1] == ["--write"]
    names, library, *headers = map(Path, arguments[1:] if writes else arguments)
    if writes:
        names.write_text("\n".join(exported(library)) + "\n")
        return 0
    complaints = objections(names, library, headers)
    print("\n".join(complaints + ([__doc__.strip()] if complaints else [])))
    return 1 if complaints else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
