"""Ten places of the port are broken on purpose, one at a time: the tests of a commit must catch each.

Prints a row for each break: its name, the place, and the first test that failed. Fails when one is not
caught.
"""

import sys
from dataclasses import dataclass

import scratch


@dataclass(frozen=True)
class Break:
    what: str
    path: str
    old: str
    new: str


PORT = "iphone-IOPort/"
BREAKS = (
    Break("a failed write is counted as written", PORT + "Transport.cpp",
          "if (bytesWritten == -1) {", "if (bytesWritten == -2) {"),
    Break("a read appends a stream's claim, not what there is", PORT + "Transport.cpp",
          "const auto received = movedBytes(readSize, recvSize);",
          "const auto received = static_cast<std::uint64_t>(readSize);"),
    Break("the status is taken before all of it has come", PORT + "Status.cpp",
          "if (expectedSize > static_cast<std::int32_t>(buffer.size())) {",
          "if (expectedSize > static_cast<std::int32_t>(buffer.size()) + 1) {"),
    Break("leftovers of an earlier exchange are not thrown away", PORT + "Status.cpp",
          "  readLeftovers(drainSize);", "  readLeftovers(0);"),
    Break("a block's end takes any count for its own", PORT + "CheckedBlock.cpp",
          "if (quorPrinterStatus->etbCounter == 2) {", "if (quorPrinterStatus->etbCounter >= 1) {"),
    Break("a report that counts nothing ends the block", PORT + "CheckedBlock.cpp",
          "if (afterBytes[reportedCount] != 0) {", "if (afterBytes[reportedCount] == 0) {"),
    Break("a time-out ends a second early", PORT + "WholeSeconds.h",
          "return end_ - start_ > limit;", "return end_ - start_ >= limit;"),
    Break("an address is found inside a longer one", PORT + "Util.cpp",
          "if (!startsInside && !goesOn && isAddress", "if (!startsInside && isAddress"),
    Break("a session that was not closed outlives a new choice", PORT + "Session.cpp",
          "  _session.set(nullptr);\n  _selectedAccessory.set(nullptr);\n  const auto chosen",
          "  const auto chosen"),
    Break("a close leaves the port thread running", PORT + "PortThread.cpp",
          "    stopThread71 = true;\n", ""),
)


def main() -> int:
    scratch.prepare()
    missed = 0
    for number, one in enumerate(BREAKS, 1):
        text = (scratch.TREE / one.path).read_text()
        if text.count(one.old) != 1:
            raise SystemExit(f"{one.path} does not hold this once: {one.old}")
        caught = scratch.try_text(one.path, text.replace(one.old, one.new))
        if caught in (None, "compiler"):
            missed += 1
        print(f"| {number} | {one.what} | `{one.path}` | {f'`{caught}`' if caught else '**not caught**'} |", flush=True)
    print(f"{len(BREAKS)} cases: {len(BREAKS) - missed} of {len(BREAKS)} breaks caught")
    return 1 if missed else 0


if __name__ == "__main__":
    sys.exit(main())
