"""Every installed header compiles by itself. Usage: headers.py INCLUDE CC CXX

The headers for C also compile as C, and include only <quordalvane/…>.
"""

import os
import subprocess
import sys
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

WARNINGS = ["-Wall", "-Wextra", "-Wpedantic", "-Werror", "-fsyntax-only"]


def compiles(compiler: str, language: str, standard: str, include: Path, header: Path) -> bool:
    name = header.relative_to(include)
    command = [compiler, "-x", language, f"-std={standard}", *WARNINGS, f"-I{include}", "-"]
    if language == "c++":
        command.insert(-1, f"-I{include / 'quordalvane'}")
    result = subprocess.run(command, input=f"#include <{name}>\nint used;\n", text=True, stderr=subprocess.PIPE)
    if result.returncode != 0:
        print(f"{name} does not compile alone in {language}:\n{result.stderr}")
    return result.returncode == 0


def main(include: Path, cc: str, cxx: str) -> int:
    headers = sorted((include / "quordalvane").rglob("*.h"))
    for_c = [header for header in headers if header.parent == include / "quordalvane"]
    with ThreadPoolExecutor(os.cpu_count()) as compilations:
        results = [compilations.submit(compiles, cxx, "c++", "c++20", include, header) for header in headers]
        results += [compilations.submit(compiles, cc, "c", "c11", include, header) for header in for_c]
    return 0 if for_c and all(result.result() for result in results) else 1


if __name__ == "__main__":
    sys.exit(main(Path(sys.argv[1]), *sys.argv[2:]))
