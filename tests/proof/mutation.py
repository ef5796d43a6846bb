"""Changes small things in the port and its parsers, one at a time, and sees whether a test notices.

Usage: mutation.py COUNT [SEED]. Of all mutants that the operators make of the sources, COUNT are drawn
by SEED (1 unless given); 0 is all of them. A mutant that does not compile is drawn again. Survivors must
be explained in survivors.md; fails when one is not, or when fewer than 95 of 100 are killed.
"""

import random
import re
import sys
from dataclasses import dataclass
from pathlib import Path

import scratch

SOURCES = sorted([*Path(scratch.ROOT, "iphone-IOPort").glob("*.cpp"), *Path(scratch.ROOT, "parsers").glob("*.cpp"),
                  scratch.ROOT / "iphone-IOPort/WholeSeconds.h", scratch.ROOT / "iphone-IOPort/Subrange.h"])
ENOUGH = 0.95

# What becomes of what. Blanks around an operator keep templates, arrows and includes out.
OPERATORS = (
    (r" == ", " != "),
    (r" != ", " == "),
    (r" < ", " <= "),
    (r" < ", " > "),
    (r" <= ", " < "),
    (r" > ", " >= "),
    (r" > ", " < "),
    (r" >= ", " > "),
    (r" && ", " || "),
    (r" \|\| ", " && "),
    (r" \+ ", " - "),
    (r" - ", " + "),
    (r" & ", " | "),
    (r"\bif \(!", "if ("),
    (r"\bif \((?!!|const|constexpr|auto)", "if (!"),
    (r"\btrue\b", "false"),
    (r"\bfalse\b", "true"),
    (r"\bcontinue;", "break;"),
    (r"\bbreak;", "continue;"),
    (r"\b(?<![.\w])([0-9]+)(?![.\w])", lambda number: str(int(number.group()) + 1)),
    (r"\b0x[0-9a-f]{2}\b", lambda number: f"0x{int(number.group(), 16) ^ 1:02x}"),
    # A statement that stands alone on its line: a call whose result nobody wants.
    (r"(?m)^ +(?!return|throw|const|auto|QUOR_LOG)[\w.>:-]+\([^;{}]*\);$", ""),
)


@dataclass(frozen=True)
class Mutant:
    path: str
    start: int
    end: int
    new: str

    def apply(self, text: str) -> str:
        return text[: self.start] + self.new + text[self.end :]

    def describe(self, text: str) -> tuple[str, str]:
        """The line, as it is and as it becomes."""
        begin = text.rfind("\n", 0, self.start) + 1
        end = text.find("\n", self.end)
        changed = text[begin : self.start] + self.new + text[self.end : end]
        return " ".join(text[begin:end].split()), " ".join(changed.split())


def is_code(text: str, place: int) -> bool:
    """Neither in a comment nor in a text, an include or a record: what a log says is compared elsewhere."""
    line = text[text.rfind("\n", 0, place) + 1 : place]
    statement = text[max(text.rfind(mark, 0, place) for mark in ";{}") + 1 : place]
    return not ("//" in line or line.count('"') % 2 or line.lstrip().startswith("#") or "QUOR_LOG" in statement
                or "static_assert" in statement or "constexpr auto selector" in statement)


def mutants() -> list[Mutant]:
    found = []
    for source in SOURCES:
        text = source.read_text()
        for pattern, new in OPERATORS:
            for match in re.finditer(pattern, text):
                if is_code(text, match.start()):
                    replacement = new(match) if callable(new) else new
                    found.append(Mutant(str(source.relative_to(scratch.ROOT)), *match.span(), replacement))
    return found


def explanations() -> dict[str, str]:
    """Each survivor that is known, by its file and both lines."""
    rows = (Path(__file__).parent / "survivors.md").read_text().splitlines()
    cells = [[cell.strip(" `") for cell in re.split(r"(?<!\\)\|", row)[1:-1]] for row in rows if row.startswith("| `")]
    return {"|".join(row[:3]): row[3] for row in cells}


def main() -> int:
    count, seed = int(sys.argv[1]), int(sys.argv[2]) if len(sys.argv) > 2 else 1
    everything = mutants()
    random.Random(seed).shuffle(everything)
    scratch.prepare()
    known = explanations()
    killed, survivors, unexplained = 0, [], 0
    for mutant in everything:
        tried = killed + len(survivors)
        if count and tried == count:
            break
        text = (scratch.TREE / mutant.path).read_text()
        caught = scratch.try_text(mutant.path, mutant.apply(text))
        if caught == "compiler":
            continue
        killed += caught is not None
        old, new = (line.replace("|", r"\|") for line in mutant.describe(text))
        if caught is None:
            why = known.get(f"{mutant.path}|{old}|{new}", "")
            unexplained += not why
            survivors.append(f"| `{mutant.path}` | `{old}` | `{new}` | {why or '**not explained**'} |")
        print(f"{tried + 1}: {mutant.path}: {new}: {caught or 'SURVIVED'}", file=sys.stderr, flush=True)
    tried = killed + len(survivors)
    print("\n".join(survivors))
    print(f"{tried} cases: of {len(everything)} mutants, {tried} drawn by seed {seed}; {killed} killed "
          f"({killed / tried:.1%}), {len(survivors)} survived")
    return 1 if unexplained or killed < ENOUGH * tried else 0


if __name__ == "__main__":
    sys.exit(main())
