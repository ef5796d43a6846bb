#pragma once

#include <quordalvane/QuorIOPort.h>

#include <cstdint>
#include <string>

#include "tests/support/Bytes.h"

// What the printers' replies mean, read a second time from the description of their commands.

namespace quordalvane::test {

/// The thirty flags in the record's order, with their names.
struct Flag {
  const char* name;
  std::uint32_t QuorPrinterStatus_2::*member;
};
extern const Flag flags[30];

/// How long the line-mode status reply is that begins with this byte.
std::size_t statusLength(std::uint8_t firstByte);

/// Fills the record from its `raw`.
void decodeStatus(QuorPrinterStatus_2& status);

/// Applies the answer `raw[0]` to real-time query 0, 1 or 2; false when it is none.
bool decodeRealTimeStatus(QuorPrinterStatus_2& status, unsigned query);

/// Whether a printer ever answers a command of the port: the settings and marks that it takes
/// without a word are told here.
bool isAnswered(const Bytes& command);

/// Where the firmware text, or a bank's settings, stand in a reply; false when it is not complete.
bool findFirmware(const Bytes& reply, std::int32_t& location, std::int32_t& length);
bool findDipSwitches(const Bytes& reply, std::int32_t& location, std::int32_t& length);

/// One character a byte; U+FFFD for those that are not ASCII.
std::string asciiDecoded(const Bytes& bytes);

}  // namespace quordalvane::test
