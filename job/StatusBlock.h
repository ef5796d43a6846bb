#pragma once

#include <cstdint>

#include <quordalvane/QuorIOPort.h>

#include "iphone-IOPort/PortC.h"

namespace quordalvane {

/// Returns whether this byte can be the first byte of a line-mode status block. The two highest
/// bits of the byte must be 10. The other bits contain the length of the block, which must be at
/// least 2: this byte, and a byte with the version of the layout.
inline bool startsStatusBlock(std::uint8_t byte) {
  return (byte & 0xc0) == 0x80 && CalculateStatusLength(byte) >= 2;
}

/// Returns whether the record was filled from a status block. The port itself checks only the
/// length, so it may accept the bytes of another device as a block.
inline bool isStatusBlock(const QuorPrinterStatus_2& status) {
  constexpr std::uint8_t layout = 1;
  return status.rawLength >= 2 && startsStatusBlock(status.raw[0]) && status.raw[1] == layout;
}

/// Returns whether the record was filled from a status block that contains the counter of marks.
/// Without the counter a printer cannot confirm a job in line mode.
inline bool hasCounter(const QuorPrinterStatus_2& status) {
  constexpr std::uint32_t lengthWithCounter = 7;
  return isStatusBlock(status) && status.rawLength >= lengthWithCounter;
}

}  // namespace quordalvane
