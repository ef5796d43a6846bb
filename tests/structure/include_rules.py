"""Checks the includes of each room. Usage: include_rules.py ROOT

A room is a folder. RULES lists, for a room, the other rooms whose headers its files may include. The files of a room
that is not in RULES may include everything.
"""

import re
import sys
from dataclasses import dataclass
from fnmatch import fnmatch
from pathlib import Path

import tree

# Every header of the C++ standard library that the project uses, grouped by purpose.
PLAIN = set(
    """algorithm any array atomic bit cassert cctype charconv climits cmath compare concepts cstddef
    cstdint cstdio cstdlib cstring deque exception functional initializer_list iterator limits list map
    memory mutex new numeric optional queue random ranges set shared_mutex source_location span
    stdexcept string string_view system_error tuple type_traits typeinfo unordered_map unordered_set
    utility variant vector""".split()
)
TIME = {"chrono"}
THREADS = {"condition_variable", "thread"}
STREAMS = {"cerrno", "filesystem", "fstream", "iomanip", "iostream", "istream", "ostream", "sstream"}
STANDARD = PLAIN | TIME | THREADS | STREAMS
DESCRIPTORS = {"fcntl.h", "poll.h", "signal.h", "sys/stat.h", "sys/types.h", "unistd.h"}
DRAWING = {"cairo.h", "fontconfig/fontconfig.h", "zlib.h"}

PUBLIC = "include"
EVERY_SYSTEM_HEADER = None


@dataclass(frozen=True)
class Rule:
    # The folder, or the pattern of file names, to which the rule applies, as a path from the root of the tree. If
    # several rules match a file, the one with the longest path applies.
    place: str
    # The rooms whose headers the files may include. Headers to which the same rule applies are always allowed.
    rooms: tuple[str, ...]
    headers: set[str] | None  # the headers in angle brackets that the files may include; None: all
    forbidden: str = ""  # a pattern that no line of the files may contain


NO_CLOCK = r"\b\w+_clock\b"
# The locale of the program must not change how a text or a record is read.
NO_LOCALE = r"\b(strto\w+|ato[fil]+|sto[fdil]+|s?n?(print|scan)f|setlocale)\b"
NO_CLOCK_OR_LOCALE = NO_CLOCK + "|" + NO_LOCALE

RULES = (
    Rule("include", (), {"stdint.h"}),
    Rule("include/quordalvane/Quor*C.h", (PUBLIC,), {"stddef.h", "stdint.h"}),
    # Only the platform provides time, waiting and threads; <chrono> is allowed for its units.
    Rule("iphone-IOPort", ("iphone-IOPort", "platform", "logging", "text", PUBLIC), PLAIN | TIME, NO_CLOCK_OR_LOCALE),
    Rule("iphone-IOPort/PortC.h", ("parsers",), set()),
    Rule("platform", (PUBLIC,), STANDARD | {"cxxabi.h"}),
    Rule("parsers", (PUBLIC,), PLAIN, NO_CLOCK_OR_LOCALE),
    Rule("text", (PUBLIC,), PLAIN | TIME, NO_LOCALE),
    Rule("logging", ("text", PUBLIC), STANDARD | DESCRIPTORS),
    Rule("simulator", ("text",), (STANDARD - THREADS) | {"iconv.h", "zint.h"}, NO_CLOCK),
    Rule("simulator/drawing", ("simulator/*", "text"), (STANDARD - THREADS) | DRAWING, NO_CLOCK),
    Rule("backends", ("platform", "text", PUBLIC), STANDARD, NO_CLOCK),
    Rule("backends/DeviceIdentity.cpp", ("platform", "text", "backends/*", PUBLIC), STANDARD, NO_CLOCK),
    Rule("backends/DeviceSpec.cpp", ("platform", "text", "backends/*", PUBLIC), STANDARD, NO_CLOCK),
    Rule("backends/Devices*", ("platform", "backends", PUBLIC), STANDARD, NO_CLOCK),
    Rule("backends/Schemes*", ("platform", "backends", PUBLIC), STANDARD, NO_CLOCK),
    Rule("backends/virtual", ("platform", "backends/*", "simulator"), STANDARD | {"csignal"}, NO_CLOCK),
    Rule("backends/posix", ("platform", "text", "backends/*", PUBLIC), EVERY_SYSTEM_HEADER),
    # The Bluetooth service makes the connection; a link of backends/posix takes over the connection's descriptor.
    Rule("backends/bluez", ("platform", "backends", PUBLIC), EVERY_SYSTEM_HEADER),
    Rule("backends/bluez/BluetoothScheme.h", (PUBLIC,), set()),
    # On the handheld device, the system has the frameworks' headers. For other systems, a sub-folder has headers of the
    # same names.
    Rule("backends/handheld", ("platform", PUBLIC), EVERY_SYSTEM_HEADER),
    Rule("discovery", ("backends", "text", PUBLIC), EVERY_SYSTEM_HEADER),
    Rule("job", ("iphone-IOPort", "platform", PUBLIC), STANDARD, NO_CLOCK),
    # The wait for a lock uses the system's clock and not that of a platform, because the process that holds the lock
    # does not use the platform.
    Rule("locks", (PUBLIC,), STANDARD | DESCRIPTORS),
    Rule("journal", ("job", "locks", "text", "iphone-IOPort", PUBLIC),
         STANDARD | DESCRIPTORS | {"sys/vfs.h", "sqlite3.h", "nettle/sha2.h"}),
    Rule("render", ("text",), STANDARD | {"cairo.h", "csetjmp", "glib.h", "iconv.h", "jpeglib.h", "pango/pangocairo.h", "png.h"}, NO_CLOCK),
    Rule("c-interface", ("job", "iphone-IOPort", "logging", "backends/*", PUBLIC), STANDARD, NO_CLOCK),
    # The folder belongs to the journal's library, so that a program without named jobs loads no database.
    Rule("c-interface/journal", ("c-interface/*", "journal", "locks", "job", "backends/*", PUBLIC), STANDARD, NO_CLOCK),
    # The command may include the simulator, because it offers virtual printers to other programs.
    Rule("tools", ("job", "journal", "locks", "iphone-IOPort", "logging", "text", "backends", "discovery", "platform", "render",
                   "simulator", "tools/http", "tools/process", PUBLIC), EVERY_SYSTEM_HEADER),
    # The web server knows nothing of printers: besides `text`, it includes only microhttpd.h and headers of the system.
    Rule("tools/http", ("text",), EVERY_SYSTEM_HEADER),
    Rule("tools/process", (), EVERY_SYSTEM_HEADER),
    # The printer application and the back end for CUPS may not include the simulator.
    Rule("tools/printer-app", ("render", "job", "journal", "locks", "iphone-IOPort", "text", "backends", "discovery",
                               "platform", PUBLIC), EVERY_SYSTEM_HEADER),
    Rule("tools/cups-backend", ("job", "journal", "locks", "iphone-IOPort", "logging", "text", "backends", "discovery",
                                "platform", "tools/process", PUBLIC), EVERY_SYSTEM_HEADER),
)

INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]')


def rule_of(path: str) -> Rule | None:
    fitting = [r for r in RULES if fnmatch(path, r.place) or path.startswith(r.place + "/")]
    return max(fitting, key=lambda rule: len(rule.place), default=None)


def is_in(path: str, room: str) -> bool:
    if room.endswith("/*"):  # the files of that folder, not its sub-folders
        return str(Path(path).parent) == room[:-2]
    return path.startswith(room + "/")


def included(root: Path, source: Path, quote: str, name: str) -> str | None:
    """The project's header that an #include names, as a path from the root of the tree; None for any other header."""
    if quote == "<":
        public = f"{PUBLIC}/{name}"
        return public if (root / public).is_file() else None
    beside = (source.parent / name).resolve()
    return str(beside.relative_to(root)) if beside.is_file() else name


def objection(rule: Rule, root: Path, source: Path, quote: str, name: str) -> str | None:
    target = included(root, source, quote, name)
    if target is None:
        allowed = quote == "<" and (rule.headers is EVERY_SYSTEM_HEADER or name in rule.headers)
        return None if allowed else f"may not include {name}"
    allowed = rule_of(target) is rule or any(is_in(target, room) for room in rule.rooms)
    return None if allowed else f"may not include {target}"


def violations(root: Path) -> list[str]:
    root = root.resolve()
    found = []
    for source in tree.files(root, ".h", ".cpp", ".c"):
        path = str(source.relative_to(root))
        rule = rule_of(path)
        if rule is None:
            continue
        for number, line in enumerate(source.read_text().splitlines(), 1):
            wrong = None
            if directive := INCLUDE.match(line):
                wrong = objection(rule, root, source, *directive.groups())
            elif rule.forbidden and re.search(rule.forbidden, line):
                wrong = f"may not use {re.search(rule.forbidden, line).group()}"
            if wrong:
                found.append(f"{path}:{number}: {rule.place} {wrong}")
    return found


if __name__ == "__main__":
    tree.report(violations, *sys.argv[1:])
