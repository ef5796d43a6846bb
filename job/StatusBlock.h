#pragma once

#include <cstdint>

#include <quordalvane/QuorIOPort.h>

#include "iphone-IOPort/PortC.h"

namespace quordalvane {

/// Whether a status block of line mode may begin with this byte: two bits that are always the same,
/// and a length that covers at least the header and the layout's version.
inline bool startsStatusBlock(std::uint8_t byte) {
  return (byte & 0xc0) == 0x80 && CalculateStatusLength(byte) >= 2;
}

/// Whether the record was filled from a status block. The port itself checks the length alone, so
/// that the bytes of another device may pass for a block.
inline bool isStatusBlock(const QuorPrinterStatus_2& status) {
  constexpr std::uint8_t layout = 1;
  return status.rawLength >= 2 && startsStatusBlock(status.raw[0]) && status.raw[1] == layout;
}

/// Whether it is one with the counter of marks: a printer without it confirms no job in line mode.
inline bool hasCounter(const QuorPrinterStatus_2& status) {
  constexpr std::uint32_t lengthWithCounter = 7;
  return isStatusBlock(status) && status.rawLength >= lengthWithCounter;
}

}  // namespace quordalvane
