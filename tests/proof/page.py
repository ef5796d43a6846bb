"""Writes docs/proof.md, the summary. It has one line for each row of the proof, with the figures of the row's last run."""

import re
from pathlib import Path

from rows import ROWS, Row
from steps import ROOT

PROOF = Path(__file__).parent
PAGE = ROOT / "docs/proof.md"
HEAD = "| row | what it shows | at each commit | size | how far | cases | time | result | found and mended | run at |"
FIGURES = ("size", "far", "cases", "time", "result", "run at")


def shown(seconds: float) -> str:
    return f"{seconds / 3600:.1f} h" if seconds >= 5400 else f"{seconds / 60:.1f} min" if seconds >= 90 else f"{seconds:.0f} s"


def cells(line: str) -> list[str]:
    return [cell.strip() for cell in re.split(r"(?<!\\)\|", line)[1:-1]]


def table(name: str) -> list[str]:
    return [line for line in (PROOF / name).read_text().splitlines() if line.startswith("|")]


def figures(page: str) -> dict[str, dict[str, str]]:
    """The figures that the page shows for each row that was run, by the title of the row."""
    lines = page.splitlines()
    if HEAD not in lines:
        return {}
    rows = [cells(line) for line in lines[lines.index(HEAD) + 2:] if line.startswith("| ")]
    return {row[0]: dict(zip(FIGURES, [*row[3:8], row[9]])) for row in rows if len(row) == 10 and row[3] != "not run"}


def written(figures: dict[str, dict[str, str]]) -> str:
    lines = [
        "# The proof", "",
        "`./dev prove` writes this page. Each row shows the figures of its last run, and the size of this run: `commit`,",
        "`nightly` or `release`. `nightly` has more cases than `commit`, and `release` has more than `nightly`. The column",
        "*how far* shows which share of the cases of this size was run. If a run was stopped, the next run continues with",
        "the remaining cases. A row that was not run says so. The column *at each commit* says which part of a row",
        "`./dev test` runs, at the size `commit`; only `./dev prove` runs the other parts.", "",
        HEAD, "|" + "---|" * 10,
    ]
    defects = [cells(line) for line in table("defects.md")[2:]]
    for row in ROWS:
        found = sum(row.key in one[0].split(", ") for one in defects) or "nothing"
        figure = figures.get(row.title, dict.fromkeys(FIGURES, "") | {"size": "not run"})
        values = [row.title, row.shows, row.suite, *(figure[name] for name in FIGURES[:5]), str(found), figure["run at"]]
        lines.append("| " + " | ".join(values) + " |")
    lines += [
        "", "Other programs ran on the same machines and may have lengthened the times. After a run, `build/proof/details.md`",
        "contains the commands, the output of each program, and the tables of mutants, branches and breaks.", "",
        "[tests/proof/defects.md](../tests/proof/defects.md) lists the defects that were found, each with the test that would",
        "find it again. Beside that file, `uncovered.md` lists the branches that no test takes, and `survivors.md` lists the",
        "mutants that no test kills; both give the reasons.",
    ]
    return "\n".join(lines) + "\n"


HEADS = {
    "coverage": ["| file | line | the condition is never | why |", "|---|---|---|---|"],
    "mutation": ["| file | line | changed line | can a test notice it? | why it survives |", "|---|---|---|---|---|"],
    "breaks": ["| | what is broken | in | caught by |", "|---|---|---|---|"],
}


def details(row: Row, units: dict[str, dict]) -> str:
    """The part of build/proof/details.md about one row: the commands that were run, then their output."""
    lines = [f"## {row.title}", ""]
    for key, unit in units.items():
        lines.append(f"    {key}")
    told = [line for unit in units.values() for line in unit["told"] if line]
    rows = [line for line in told if line.startswith("|")]
    lines += ["", *(f"- {line}" for line in told if not line.startswith("|"))]
    return "\n".join(lines + (["", *HEADS[row.key], *rows] if rows else []) + [""])
