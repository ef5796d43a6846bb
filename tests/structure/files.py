"""Checks the names of files, and looks for needless lists of sources in CMakeLists.txt. Usage: files.py ROOT

A reader finds the class Foo in Foo.h and Foo.cpp, and its test in foo_test.cpp. If a folder has a single library,
CMake finds the library's sources in the folder. No list names them, so a new source cannot be missing from a list.
"""

import re
import sys
from pathlib import Path

import tree

TESTS = ("tests", "fuzz", "examples")
PRODUCT_NAME = re.compile(r"([A-Z][A-Za-z0-9]*\.(h|cpp)|main\.cpp)")
TEST_NAME = re.compile(r"[a-z0-9]+(_[a-z0-9]+)*_test\.cpp")
TEST = re.compile(r"^(TEST|TEST_F|TEST_P|TYPED_TEST|TYPED_TEST_P)\(", re.M)
# The exception from the rule for names: this header of the port has the same name on every platform.
KEPT_NAMES = ("iphone-IOPort/enum.h",)
LIBRARY = re.compile(r"^quor_library\((.*?)\)$", re.M | re.S)


def badly_named(path: Path, text: str) -> str | None:
    if path.parts[0] in TESTS:
        return "a file with tests is named foo_test.cpp" if TEST.search(text) and not TEST_NAME.fullmatch(path.name) else None
    if str(path) in KEPT_NAMES or PRODUCT_NAME.fullmatch(path.name):
        return None
    return "a file of the product is named Foo.h or Foo.cpp"


def lists_its_sources(text: str) -> bool:
    """Whether this CMakeLists.txt has a single library and lists its sources, which CMake would find in the folder."""
    libraries = LIBRARY.findall(text)
    return len(libraries) == 1 and bool(re.search(r"\bSOURCES\s[^)]*\.cpp", libraries[0]))


def violations(root: Path) -> list[str]:
    found = []
    for file in tree.files(root, ".h", ".cpp"):
        path = file.relative_to(root)
        if reason := badly_named(path, file.read_text()):
            found.append(f"{path}: {reason}")
    for file in tree.files(root, "CMakeLists.txt"):
        if lists_its_sources(file.read_text()):
            found.append(f"{file.relative_to(root)}: lists its sources; the library takes all of the folder")
    return found


if __name__ == "__main__":
    tree.report(violations, *sys.argv[1:])
