"""Breaks chosen lines of the product on purpose, one at a time. The ordinary tests must notice each break.

Prints a row for each break: its name, the place, and the first test that failed. Fails if a break is not noticed.
"""

import sys
from dataclasses import dataclass

import areas
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
    Break("a read appends as many bytes as a stream claims", PORT + "Transport.cpp",
          "const auto received = movedBytes(readSize, recvSize);",
          "const auto received = static_cast<std::uint64_t>(readSize);"),
    Break("the status is taken before all of it has arrived", PORT + "Status.cpp",
          "if (expectedSize > static_cast<std::int32_t>(buffer.size())) {",
          "if (expectedSize > static_cast<std::int32_t>(buffer.size()) + 1) {"),
    Break("leftovers of an earlier exchange are not thrown away", PORT + "Status.cpp",
          "  readLeftovers(drainSize);", "  readLeftovers(0);"),
    Break("a block is confirmed by any count of marks, not by 2 alone", PORT + "CheckedBlock.cpp",
          "if (quorPrinterStatus->etbCounter == 2) {", "if (quorPrinterStatus->etbCounter >= 1) {"),
    Break("a report that counts nothing ends the block", PORT + "CheckedBlock.cpp",
          "if (afterBytes[reportedCount] != 0) {", "if (afterBytes[reportedCount] == 0) {"),
    Break("a time-out ends a second early", PORT + "WholeSeconds.h",
          "return end_ - start_ > timeoutSec;", "return end_ - start_ >= timeoutSec;"),
    Break("an address is found inside a longer one", PORT + "Util.cpp",
          "if (!startsInside && !goesOn && isAddress", "if (!startsInside && isAddress"),
    Break("a session that was not closed remains while a new accessory is chosen", PORT + "Session.cpp",
          "  _session.set(nullptr);\n  _selectedAccessory.set(nullptr);\n  const auto chosen",
          "  const auto chosen"),
    Break("a close leaves the port thread running", PORT + "PortThread.cpp",
          "    stopThread71 = true;\n", ""),
    Break("a job is called printed without its proof", "job/CheckedBlock.cpp",
          "  return judgeProof();\n", "  return std::nullopt;\n"),
    Break("one answer alone confirms a job", "job/LineModeBlock.cpp", "if (!isConfirmed_) {", "if (false) {"),
    Break("a record that finds the queue full is dropped and not counted", "logging/LogQueue.cpp",
          "      ++counts_.dropped;\n", ""),
    Break("control characters of eight-bit terminals reach a sink", "text/PrintableText.cpp",
          "(codePoint >= 0x7F && codePoint < 0xA0)", "codePoint == 0x7F"),
    Break("a byte of the link is read twice", "backends/posix/Link.cpp",
          "  next_ += count;\n", "  next_ += count - 1;\n"),
    Break("the end of a connection does not wait for the last bytes", "backends/posix/Link.cpp",
          "isAwaited ? now + lingerLimit : now", "now"),
    Break("a write that failed leaves the caller's count as it was", "c-interface/Port.cpp",
          'given(written, "the count") = 0;', 'given(written, "the count");'),
    Break("a reply that cannot be read has the code of a wrong argument", "c-interface/Failures.cpp",
          "keep(QUOR_UNREADABLE,", "keep(QUOR_USAGE,"),
    Break("the flags of the virtual printer lie one bit further", "simulator/StatusReplies.cpp",
          "1U << k % 8", "1U << (k + 1) % 8"),
    Break("the virtual printer's report names no count", "simulator/StatusReplies.cpp",
          "0x00, state.etbCounter, 0x00}", "0x00, 0x00, 0x00}"),
)


def main() -> int:
    scratch.prepare(tuple(area for area in areas.AREAS if any(areas.area_of(one.path) == area for one in BREAKS)))
    missed = 0
    for number, one in enumerate(BREAKS, 1):
        text = (scratch.TREE / one.path).read_text()
        if text.count(one.old) != 1:
            raise SystemExit(f"{one.path} does not contain this text exactly once: {one.old}")
        caught = scratch.try_text(areas.area_of(one.path), one.path, text.replace(one.old, one.new))
        if caught in (None, "compiler"):
            missed += 1
        print(f"| {number} | {one.what} | `{one.path}` | {f'`{caught}`' if caught else '**not caught**'} |", flush=True)
    print(f"{len(BREAKS)} cases: {len(BREAKS) - missed} of {len(BREAKS)} breaks caught")
    return 1 if missed else 0


if __name__ == "__main__":
    sys.exit(main())
