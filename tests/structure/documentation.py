"""The documentation refers to nothing that is missing. Usage: documentation.py ROOT

Checks the links between pages and to headings, the paths of project files in `code`, and the commands of ./dev. Each
operation of the port must be in the source that docs/architecture.md names for it.
"""

import re
import sys
from pathlib import Path

import tree

FENCE = re.compile(r"^```.*?^```", re.M | re.S)
LINK = re.compile(r"\[[^\]]*\]\(([^)\s]+)\)")
CODE = re.compile(r"`([^`\n]+)`")
HEADING = re.compile(r"^#+ +(.+?) *$", re.M)
PORT = "ExternalAccessoryPort"
PORT_HEADER = f"iphone-IOPort/{PORT}.h"
ARCHITECTURE = "docs/architecture.md"
COMMENT = re.compile(r"//.*$", re.M)
PUBLIC_PART = re.compile(r"^ public:$(.*?)^ private:$", re.M | re.S)
DECLARATION = re.compile(r"^  \S[^;{}()]*\b(\w+)\((?:[^()]|\([^()]*\))*\)(?: const)?;", re.M)
SOURCE_ROW = re.compile(r"^\| (`.+`) \| `(iphone-IOPort/\w+\.cpp)` \|", re.M)
DEV_COMMAND = re.compile(r"\./dev ([a-z]+)")
DEV_CASE = re.compile(r"^ *([a-z |]+)\) \"\$\{command\}_command\"", re.M)


def anchors(page: str) -> set[str]:
    """The headings of a page, in the form in which links name them."""
    headings = HEADING.findall(FENCE.sub("", page))
    return {re.sub(r"[^\w\- ]", "", heading.lower()).replace(" ", "-") for heading in headings}


def broken_link(page: Path, target: str) -> bool:
    if re.match(r"[a-z]+:", target):
        return False
    name, _, anchor = target.partition("#")
    file = page.parent / name if name else page
    if not file.exists():
        return True
    return bool(anchor) and anchor not in anchors(file.read_text())


def missing_file(root: Path, code: str) -> bool:
    """True if `code` is the path of a file that does not exist. A path begins with a folder of the project."""
    head, slash, _ = code.partition("/")
    is_path = bool(head and slash) and re.fullmatch(r"[\w./-]+", code) and (root / head).is_dir()
    return bool(is_path) and head != "build" and not (root / code).exists()


def text_of(file: Path) -> str:
    return file.read_text() if file.exists() else ""


def operations(header: str) -> set[str]:
    """The operations that the port declares and does not define in its class."""
    parts = PUBLIC_PART.findall(COMMENT.sub("", header))
    return {name for part in parts for name in DECLARATION.findall(part)} - {PORT}


def misplaced_operations(root: Path) -> list[str]:
    sources = {name: file for names, file in SOURCE_ROW.findall(text_of(root / ARCHITECTURE))
               for name in CODE.findall(names)}
    offered = operations(text_of(root / PORT_HEADER))
    found = [f"{ARCHITECTURE}: no source for the port's {name}" for name in sorted(offered - set(sources))]
    found += [f"{ARCHITECTURE}: the port has no {name}" for name in sorted(set(sources) - offered)]
    found += [f"{ARCHITECTURE}: {name} is not in {file}" for name, file in sources.items()
              if f"{PORT}::{name}(" not in text_of(root / file)]
    return found


def violations(root: Path) -> list[str]:
    commands = {word for case in DEV_CASE.findall((root / "dev").read_text()) for word in case.split(" | ")}
    found = []
    for page in tree.files(root, ".md"):
        text = page.read_text()
        prose = FENCE.sub("", text)
        broken = [f"link to {t}" for t in LINK.findall(prose) if broken_link(page, t)]
        broken += [f"file {code}" for code in CODE.findall(prose) if missing_file(root, code)]
        broken += [f"./dev {word}" for word in DEV_COMMAND.findall(text) if word not in commands]
        found += [f"{page.relative_to(root)}: there is no {what}" for what in broken]
    return found + misplaced_operations(root)


if __name__ == "__main__":
    tree.report(violations, *sys.argv[1:])
