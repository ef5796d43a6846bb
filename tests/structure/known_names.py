"""The names by which users know the parts of the port remain in its code. Usage: known_names.py ROOT

Logs, printers' manuals and old programs use these names for operations, members, commands and steps of the port. A
reader of a log record must find the same word in the source. So each name in known_names.txt must remain in the code,
and the members must remain in their order.
"""

import re
import sys
from pathlib import Path

import tree

ROOMS = ("include", "iphone-IOPort", "logging", "parsers", "platform")
LIST = Path(__file__).with_name("known_names.txt")
MEMBERS = """portName_ portSettings_ timeout_ _selectedAccessory _session p_emulation stopThread71 _isBrondel
    _endCheckedBlockTimeoutMillis _holdPrintTimeoutMillis _secInterval1 _secInterval2 _dataTimeoutSeconds
    _firmwareInformation _dipSwitchInformation _thread71 _result71 _name _serialNumber _connectionID""".split()


def code(text: str) -> str:
    """The source without comments and string literals."""
    return re.sub(r'//[^\n]*|/\*.*?\*/|"(?:\\.|[^"\\\n])*"', " ", text, flags=re.S)


def violations(root: Path) -> list[str]:
    sources = [file for room in ROOMS for file in tree.files(root / room, ".h", ".cpp")]
    words = {word for file in sources for word in re.findall(r"\w+", code(file.read_text()))}
    found = [f"{name}: no name of the code" for name in LIST.read_text().split() if name not in words]
    port = code((root / "iphone-IOPort/ExternalAccessoryPort.h").read_text())
    declared = [name for name in re.findall(r"^  (?! )[\w:<>* ]+ (\w+)(?: = [\w.-]+)?;$", port, re.M) if name in MEMBERS]
    return found + ([] if declared == MEMBERS else [f"the members are declared in another order: {declared}"])


if __name__ == "__main__":
    tree.report(violations, sys.argv[1])
