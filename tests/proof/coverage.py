"""Counts how many branches of the product the tests take. It counts in the sources of the port, the parsers, the print
job, the text functions, the logger, the back ends, the C interface and the virtual printer's replies.

Usage: coverage.py BUILD [--again]. BUILD is the build folder of the preset "coverage". Runs the test programs in BUILD
and counts both outcomes of each condition in the sources; with --again, counts the results of the previous run. Clang
counts the branches of the sources and not those of the machine code: branches that a compiler adds for exceptions and
for the destruction of temporaries are omitted. Conditions that are constants, as in `while (true)` and `if constexpr`,
are omitted, because they have only one outcome.

Prints each branch that no test takes, with its explanation from uncovered.md. Fails if a branch that no test takes
has no explanation, or if an explanation belongs to a branch that a test takes or that does not exist. Also fails if
the tests take fewer than 95 of 100 branches of one folder of the product, or fewer than 98 of 100 of all branches.
"""

import json
import os
import re
import subprocess
import sys
from collections import Counter
from pathlib import Path

import areas

ROOT = Path(__file__).resolve().parents[2]
ROOMS = ("iphone-IOPort", "parsers", "job", "text", "logging", "backends", "c-interface", "simulator")
ENOUGH, ENOUGH_OF_A_ROOM = 0.98, 0.95
REPLIES = {file.relative_to(areas.ROOT) for file in areas.area("replies").files()}
PROGRAMS = ("unit_parsers", "unit_port", "unit_job", "unit_text", "unit_logging", "trace", "faults", "simulation", "lifecycle",
            "unit_posix", "unit_backends", "contract", "unit_c-interface", "unit_simulator")
SENTENCES = "c_interface_tests"  # each test of this program is run in a process of its own
SIZES = {"QUOR_SCRIPTS": "20000", "QUOR_SIMULATED_JOBS": "4000",
         "QUOR_PORT_CYCLES": "500", "QUOR_PORT_RELEASES": "200"}


def run_tests(build: Path):
    for data in build.glob("*.profraw"):
        data.unlink()
    for program in PROGRAMS:
        environment = os.environ | SIZES | {"LLVM_PROFILE_FILE": f"{build}/{program}.profraw"}
        run([build / "bin" / f"{program}_tests", "--gtest_brief=1"], build, environment)
    for sentence in areas.sentences(ROOT):
        run([build / "bin" / SENTENCES, sentence], build, os.environ | {"LLVM_PROFILE_FILE": f"{build}/{sentence}.profraw"})


def run(command: list, build: Path, environment: dict[str, str]):
    done = subprocess.run(command, cwd=build, env=environment, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
                          errors="replace")
    if done.returncode != 0:
        raise SystemExit(f"{' '.join(map(str, command))} fails:\n{done.stdout[-3000:]}")


def tool(name: str) -> str:
    """The name of the LLVM tool that has the same version as the compiler."""
    version = subprocess.run(["clang", "-dumpversion"], stdout=subprocess.PIPE, text=True, check=True).stdout
    return f"{name}-{version.split('.')[0]}"


def measure(build: Path) -> list[dict]:
    merged = build / "all.profdata"
    subprocess.run([tool("llvm-profdata"), "merge", "-o", merged, *build.glob("*.profraw")], check=True)
    first, *others = [build / "bin" / program for program in (*(f"{name}_tests" for name in PROGRAMS), SENTENCES)]
    done = subprocess.run(
        [tool("llvm-cov"), "export", f"-instr-profile={merged}", first, *(f"-object={other}" for other in others)],
        check=True, stdout=subprocess.PIPE, text=True)
    return json.loads(done.stdout)["data"][0]["files"]


def source_of(file: dict, build: Path) -> Path:
    """The file's path from the root of the tree. The build writes paths from this root, or from the build folder if it
    uses a compiler cache. llvm-cov reads both kinds as relative to the build folder."""
    path = Path(os.path.normpath(file["filename"]))
    base = ROOT if path.is_absolute() else Path(build.name)
    return path.relative_to(base) if path.is_relative_to(base) else path


def room_of(path: Path) -> str | None:
    """The folder of the product to which the file belongs; None if its branches are not counted."""
    room = path.parts[0]
    return room if room in ROOMS and (room != "simulator" or path in REPLIES) else None


def branches(file: dict) -> dict[tuple[int, int], list[int]]:
    """How often each condition was true, and how often false, by its line and column. Adds up a template's instances."""
    found: dict[tuple[int, int], list[int]] = {}
    for line, column, _, _, taken, not_taken, *_ in file["branches"]:
        counts = found.setdefault((line, column), [0, 0])
        counts[0] += taken
        counts[1] += not_taken
    return found


def is_constant(line: str) -> bool:
    return line.strip() == "while (true) {" or "if constexpr (" in line


def explanations() -> dict[str, str]:
    """Why no test takes a branch. Each key is "FILE|LINE OF CODE|OUTCOME OF THE CONDITION"."""
    rows = (Path(__file__).parent / "uncovered.md").read_text().splitlines()
    cells = [[cell.strip(" `") for cell in re.split(r"(?<!\\)\|", row)[1:-1]] for row in rows if row.startswith("| `")]
    return {"|".join(row[:3]): row[3] for row in cells}


def main() -> int:
    build = Path(sys.argv[1]).resolve()
    if "--again" not in sys.argv:
        run_tests(build)
    known = explanations()
    unused = set(known)
    taken, everything = Counter(), Counter()
    rows, unexplained = [], 0
    for file in measure(build):
        path = source_of(file, build)
        room = room_of(path)
        if room is None:
            continue
        source = (ROOT / path).read_text().splitlines()
        for (line, _), counts in sorted(branches(file).items()):
            if is_constant(source[line - 1]):
                continue
            everything[room] += 2
            taken[room] += sum(count > 0 for count in counts)
            for way, count in zip(("true", "false"), counts):
                if not count:
                    code = " ".join(source[line - 1].split()).replace("|", r"\|")
                    branch = f"{path}|{code}|{way}"
                    unused.discard(branch)
                    why = known.get(branch, "")
                    unexplained += not why
                    rows.append(f"| `{path}` | `{code}` | {way} | {why or '**not explained**'} |")
    print("\n".join(rows))
    for branch in sorted(unused):
        print(f"no longer needed in uncovered.md: {branch}")
    for room in ROOMS:
        print(f"{room}: {taken[room]} of {everything[room]} branches ({taken[room] / everything[room]:.1%})")
    total, all_of_them = sum(taken.values()), sum(everything.values())
    print(f"{all_of_them} cases: {total} of {all_of_them} branches taken ({total / all_of_them:.2%})")
    return 0 if not unexplained and not unused and is_enough(taken, everything) else 1


def is_enough(taken: Counter, everything: Counter) -> bool:
    return (sum(taken.values()) >= ENOUGH * sum(everything.values())
            and all(taken[room] >= ENOUGH_OF_A_ROOM * everything[room] for room in ROOMS))


if __name__ == "__main__":
    sys.exit(main())
