#pragma once

#include <quordalvane/QuorIOPort.h>

#include <cstdint>
#include <string>

#include "tests/support/Bytes.h"

// A second implementation of the parsers of the printers' replies. It was written from the
// description of the printers' commands.

namespace quordalvane::test {

/// The thirty flags in the record's order, with their names.
struct Flag {
  const char* name;
  std::uint32_t QuorPrinterStatus_2::*member;
};
extern const Flag flags[30];

/// The length of the line-mode status reply that begins with this byte.
std::size_t statusLength(std::uint8_t firstByte);

/// Fills the record from its `raw`.
void decodeStatus(QuorPrinterStatus_2& status);

/// Applies `raw[0]`, the answer to real-time query 0, 1 or 2; false if the byte is no answer.
bool decodeRealTimeStatus(QuorPrinterStatus_2& status, unsigned query);

/// Whether a printer answers this command of the port. It answers all commands except those that
/// only change a setting or mark a point in the data.
bool isAnswered(const Bytes& command);

/// Finds the firmware text, or the settings of a bank, in a reply; false if the reply is not
/// complete.
bool findFirmware(const Bytes& reply, std::int32_t& location, std::int32_t& length);
bool findDipSwitches(const Bytes& reply, std::int32_t& location, std::int32_t& length);

/// The text with one character for each byte; U+FFFD for a byte that is not ASCII.
std::string asciiDecoded(const Bytes& bytes);

}  // namespace quordalvane::test
