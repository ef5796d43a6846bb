"""Changes small things in the product, one at a time, and sees whether a test notices. A mutant is one such change.

Usage: mutation.py COUNT [--seed SEED] [AREA …]. Puts the mutants of each area in a random order, and tries the first
COUNT; 0 means all. SEED (1 unless given) decides the order. If a source is changed, the mutants of all unchanged lines
keep this order. A mutant that does not compile is not counted.

The result of each mutant is kept in build/proof/mutants.json, so that a run that was stopped (SIGINT, SIGTERM)
continues at the same point. A mutant that a test noticed is tried again only after its source file or that test has
changed. A mutant that no test noticed is tried again after each change of its area's sources or tests. Changes of
comments do not count.

A survivor is a mutant that no test noticed; other mutants are killed. survivors.md must explain each survivor and say
whether a test could notice it. Fails if a survivor is not explained, or if the tests kill fewer than 95 of 100
mutants that a test could notice.
"""

import argparse
import hashlib
import re
import signal
import sys
from collections import Counter
from dataclasses import dataclass

import areas
import scratch
from ledger import Ledger, digest_of_texts

ENOUGH = 0.95
AT_ONCE = 40  # the size of a batch; within a batch, the mutants of a file follow each other

# Each pattern with its replacement. The blanks around an operator exclude templates, arrows and includes. The pattern
# for + excludes a + next to a string literal, because the replacement, a -, would not compile there.
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
    (r"(?<!\") \+ (?!\")", " - "),
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
    # Deletes a call whose result is not used, if the call is the whole line.
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
        """Returns the text of the line without the change, and its text with the change."""
        begin = text.rfind("\n", 0, self.start) + 1
        end = text.find("\n", self.end)
        changed = text[begin : self.start] + self.new + text[self.end : end]
        return " ".join(text[begin:end].split()), " ".join(changed.split())


def is_code(text: str, place: int) -> bool:
    """Whether the place is in code that may be changed: not in a comment, a string literal, an include or a log record.
    Log records are left out because other tests compare them."""
    line = text[text.rfind("\n", 0, place) + 1 : place]
    statement = text[max(text.rfind(mark, 0, place) for mark in ";{}") + 1 : place]
    return not ("//" in line or line.count('"') % 2 or line.lstrip().startswith("#") or "QUOR_LOG" in statement
                or "static_assert" in statement or "constexpr auto selector" in statement)


def bare(text: str) -> str:
    """Returns the text in one line and without comments."""
    return " ".join(re.sub(r"(?m)(?:^|(?<=\s))//[^\"\n]*$", "", text).split())


def mutants(area: areas.Area) -> list[Mutant]:
    found = []
    for source in area.files():
        text = source.read_text()
        for pattern, new in OPERATORS:
            for match in re.finditer(pattern, text):
                if is_code(text, match.start()):
                    replacement = new(match) if callable(new) else new
                    found.append(Mutant(str(source.relative_to(areas.ROOT)), *match.span(), replacement))
    return found


@dataclass(frozen=True)
class Explanation:
    is_noticeable: bool = True  # whether a test could notice the change
    why: str = ""


def explanations() -> dict[str, Explanation]:
    """The explanations in survivors.md. Each key is "FILE|LINE BEFORE THE CHANGE|LINE AFTER THE CHANGE"."""
    rows = (areas.ROOT / "tests/proof/survivors.md").read_text().splitlines()
    cells = [[cell.strip(" `") for cell in re.split(r"(?<!\\)\|", row)[1:-1]] for row in rows if row.startswith("| `")]
    return {"|".join(row[:3]): Explanation(row[3] == "yes", row[4]) for row in cells}


def body_of(test: str, sources: str) -> str:
    """The source text of the test with this name, in C++ or C; empty if there is no such test."""
    named = re.fullmatch(r"(?:\w+/)?(?:(\w+)\.)?(\w+)(?:/\w+)?", test)
    head = named and (rf"TEST(?:_F|_P)?\({named[1]},\s+{named[2]}\)" if named[1] else rf"static void {named[2]}\(void\)")
    found = head and re.search(rf"^{head} \{{.*?^\}}", sources, re.M | re.S)
    return found.group() if found else ""


class Tried:
    """The mutants of one area, in the random order that the seed decides, and their results."""

    def __init__(self, area: areas.Area, seed: int, ledger: Ledger):
        self.area, self.ledger = area, ledger
        self.sources = {str(file.relative_to(areas.ROOT)): file.read_text() for file in area.files()}
        self.tests = "\n".join(file.read_text() for file in area.everything() if file not in area.files())
        self.whole = digest_of_texts(*map(bare, self.sources.values()), bare(self.tests))
        self.names = {mutant: self.name(mutant) for mutant in mutants(area)}
        self.drawn = sorted(self.names, key=lambda one: hashlib.sha256(f"{seed} {self.names[one]}".encode()).digest())
        self.answers = ledger.of(area.name, "")

    def name(self, mutant: Mutant) -> str:
        """The mutant's name, which does not depend on the rest of the file or on comments."""
        text = self.sources[mutant.path]
        earlier = text[: mutant.start].count("\n" + text[text.rfind("\n", 0, mutant.start) + 1 : mutant.end])
        return f"{mutant.path} {tuple(map(bare, mutant.describe(text)))} {earlier}"

    def state(self, mutant: Mutant, answer: str) -> str:
        """A hash of all texts on which this result of the mutant depends."""
        source = bare(self.sources[mutant.path])
        if answer == "compiler":
            return digest_of_texts(source)
        test = body_of(answer, self.tests)
        return digest_of_texts(source, bare(test)) if test else self.whole

    def answer(self, mutant: Mutant) -> str | None:
        kept = self.answers.get(self.names[mutant])
        return kept["answer"] if kept and kept["state"] == self.state(mutant, kept["answer"]) else None

    def shown(self, mutant: Mutant) -> str | None:
        """The mutant's result, or None. A survivor that must be tried again counts as a survivor until it is tried."""
        survived = self.answers.get(self.names[mutant], {}).get("answer") == "survived"
        return self.answer(mutant) or ("survived" if survived else None)

    def counted(self, count: int) -> list[Mutant]:
        """The first COUNT mutants that were tried and that compile."""
        tried = [one for one in self.drawn if self.shown(one) not in (None, "compiler")]
        return tried[: count or None]

    def missing(self, count: int) -> list[Mutant]:
        """The next mutants to try: among the first `count`, those without a result, at most AT_ONCE, ordered by file. A
        mutant that does not compile is not counted."""
        known = {one: self.answer(one) for one in self.drawn}
        compiling = [one for one in self.drawn if known[one] != "compiler"][: count or None]
        untried = [one for one in compiling if known[one] is None]
        return sorted(untried[:AT_ONCE], key=lambda one: (one.path, one.start))

    def run(self, count: int):
        while handful := self.missing(count):
            for mutant in handful:
                text = (scratch.TREE / mutant.path).read_text()
                answer = scratch.try_text(self.area, mutant.path, mutant.apply(text)) or "survived"
                self.answers[self.names[mutant]] = {"answer": answer, "state": self.state(mutant, answer)}
                self.ledger.keep()
                print(f"{mutant.path}: {mutant.describe(text)[1]}: {answer}", file=sys.stderr, flush=True)

    def survivors(self, count: int, known: dict[str, Explanation]) -> list[tuple[str, Explanation]]:
        """For each survivor, its row for the table in survivors.md and its explanation."""
        rows = []
        for mutant in self.counted(count):
            if self.shown(mutant) == "survived":
                lines = mutant.describe((areas.ROOT / mutant.path).read_text())
                old, new = (line.replace("|", r"\|") for line in lines)
                known_as = known.get(f"{mutant.path}|{old}|{new}", Explanation())
                noticeable = "yes" if known_as.is_noticeable else "no"
                why = known_as.why or "**not explained**"
                rows.append((f"| `{mutant.path}` | `{old}` | `{new}` | {noticeable} | {why} |", known_as))
        return rows


def stop(_signal, _frame):
    raise KeyboardInterrupt


def main() -> int:
    parser = argparse.ArgumentParser()
    parser.add_argument("count", type=int)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("areas", nargs="*", choices=[*areas.NAMES, []], metavar="AREA")
    options = parser.parse_args()
    signal.signal(signal.SIGTERM, stop)
    chosen = tuple(area for area in areas.AREAS if not options.areas or area.name in options.areas)
    ledger = Ledger("mutants")
    tried = [Tried(area, options.seed, ledger) for area in chosen]
    try:
        if waiting := tuple(one.area for one in tried if one.missing(options.count)):
            scratch.prepare(waiting)
        for one in tried:
            one.run(options.count)
    except KeyboardInterrupt:
        pass  # the report counts only the mutants that were tried
    return report(tried, options.count, options.seed)


def report(tried: list[Tried], count: int, seed: int) -> int:
    known, total, isGood = explanations(), Counter(), True
    for one in tried:
        counted, survivors = one.counted(count), one.survivors(count, known)
        goal = sum(one.answer(mutant) != "compiler" for mutant in one.drawn)
        killed = len(counted) - len(survivors)
        total.update(counted=len(counted), killed=killed, goal=min(count, goal) if count else goal)
        print("\n".join(row for row, _ in survivors))
        noticeable = killed + sum(known_as.is_noticeable for _, known_as in survivors)
        print(f"{one.area.name}: {killed} of {noticeable} killed" + (f" ({killed / noticeable:.1%})" if noticeable else "")
              + f"; {len(counted) - noticeable} others that no test can notice; drawn from {goal:,} mutants")
        isGood = isGood and all(known_as.why for _, known_as in survivors) and killed >= ENOUGH * noticeable
    print(f"{total['counted']} of {total['goal']} cases: {total['killed']} killed, drawn by seed {seed}")
    return 0 if isGood else 1


if __name__ == "__main__":
    sys.exit(main())
