"""Keeps the results of a run in build/proof/, so that a run that was stopped continues at the same point."""

import hashlib
import json
import os
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
FOLDER = ROOT / "build/proof"


def digest(files: list[Path]) -> str:
    """A hash of the names and texts of the files. A kept result is valid as long as this hash does not change."""
    total = hashlib.sha256()
    for file in files:
        text = file.read_bytes()
        total.update(f"{file.relative_to(ROOT)} {len(text)}\n".encode() + text)
    return total.hexdigest()[:16]


def digest_of_texts(*texts: str) -> str:
    return hashlib.sha256("\0".join(texts).encode()).hexdigest()[:16]


class Ledger:
    """A table of results for each subject, in one file. A subject is an area of the product or a row of docs/proof.md.

    Only one process at a time may write the file."""

    def __init__(self, name: str, folder: Path = FOLDER):
        self.file = folder / f"{name}.json"
        self.subjects = json.loads(self.file.read_text()) if self.file.exists() else {}

    def of(self, subject: str, state: str) -> dict:
        """Returns the subject's results for this state of the sources. If the kept results belong to another state, deletes
        them and returns an empty table."""
        if self.subjects.get(subject, {}).get("state") != state:
            self.subjects[subject] = {"state": state, "answers": {}}
        return self.subjects[subject]["answers"]

    def keep(self):
        """Replaces the file. If the process ends meanwhile, the old file or the new file remains whole."""
        self.file.parent.mkdir(parents=True, exist_ok=True)
        new = self.file.with_suffix(f".{os.getpid()}")
        new.write_text(json.dumps(self.subjects, indent=1) + "\n")
        new.replace(self.file)
