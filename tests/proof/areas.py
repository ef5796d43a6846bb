"""The areas of the product that are broken on purpose, each with the test programs that must notice this.

For each such change of a source, the programs of its area run in order, the quickest first, until one fails. The
programs have few cases, because many changes are tried.
"""

import re
from dataclasses import dataclass
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]


@dataclass(frozen=True)
class Area:
    name: str
    sources: tuple[str, ...]  # patterns of paths, from the root of the tree
    tests: tuple[str, ...]  # the folders of the tests; at least one test must fail if a source is broken
    programs: tuple[str, ...]  # the test programs; a filter after a program's name selects a part of its tests
    waits: bool = False  # whether the tests wait for real time; several processes then share the tests of a program

    def files(self) -> list[Path]:
        return sorted(file for pattern in self.sources for file in ROOT.glob(pattern))

    def everything(self) -> list[Path]:
        """All files on which the results of the tests depend."""
        tests = [file for folder in self.tests for file in (ROOT / folder).rglob("*.*") if file.suffix in (".cpp", ".h", ".c")]
        return sorted({*self.files(), *tests})


AREAS = (
    Area("port", ("iphone-IOPort/*.cpp", "iphone-IOPort/WholeSeconds.h", "iphone-IOPort/Subrange.h", "parsers/*.cpp"),
         ("tests/unit/parsers", "tests/unit/port", "tests/unit/job", "tests/trace", "tests/model"),
         ("unit_parsers_tests", "unit_port_tests", "unit_job_tests", "trace_tests")),
    Area("job", ("job/*.cpp",), ("tests/unit/job", "tests/simulation"), ("unit_job_tests", "simulation_tests -*EverySchedule*")),
    Area("logging", ("logging/*.cpp", "text/*.cpp"),
         ("tests/unit/text", "tests/unit/logging", "tests/lifecycle", "tests/faults"),
         ("unit_text_tests", "unit_logging_tests", "lifecycle_tests", "faults_tests LogDelivery*")),
    Area("backends", ("backends/*.cpp", "backends/virtual/*.cpp"),
         ("tests/unit/backends", "tests/contract"),
         ("unit_backends_tests", "contract_tests"), waits=True),
    Area("posix", ("backends/posix/*.cpp",), ("tests/unit/backends", "tests/unit/posix", "tests/contract", "tests/counts"),
         ("unit_backends_tests", "unit_posix_tests", "contract_tests", "counts_tests"), waits=True),
    Area("discovery", ("discovery/*.cpp",), ("tests/unit/discovery", "tests/bluez"),
         ("unit_discovery_tests", "bluez_tests PrinterSearch.*"), waits=True),
    Area("c-interface", ("c-interface/*.cpp",), ("tests/unit/c-interface", "tests/c-interface"),
         ("unit_c-interface_tests", "c_interface_tests")),
    # This area includes only the virtual printer's answers and their times. Other tests compare the printer's drawings.
    Area("replies", tuple(f"simulator/{name}.cpp" for name in
                          ("StatusReplies", "ReplyPath", "BluetoothModule", "PrinterLink", "CommandScanner", "Reception")),
         ("tests/unit/simulator",),
         ("unit_simulator_tests -RandomBytes.*:HugeCount.*:EndlessJob.*:CodePages.*:UnknownCodePage.*:CodePageSetting.*"
          ":ByteWithoutACharacter.*:PageMode.*:PaperPicture.*",)),
)
NAMES = tuple(area.name for area in AREAS)


def sentences(root: Path) -> list[str]:
    """The names of the tests that are written in C. Each of these tests runs in a process of its own."""
    return [name for source in sorted((root / "tests/c-interface").glob("*.c"))
            for name in re.findall(r"^static void ([A-Z][A-Za-z]*)\(void\)", source.read_text(), re.M)]


def area(name: str) -> Area:
    return AREAS[NAMES.index(name)]


def area_of(path: str) -> Area:
    """Returns the area to which this source file belongs."""
    return next(one for one in AREAS if ROOT / path in one.files())
