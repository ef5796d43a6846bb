#pragma once

#include <cstdint>

#include "simulator/Bytes.h"
#include "simulator/PrinterState.h"

namespace quordalvane::simulator {

/// The line-mode status block: a header with the length, the layout's version, the thirty flags a
/// bit each, the counter and the two state bytes. Always nine bytes.
Bytes statusBlock(const PrinterState& state);

/// The one byte that answers a real-time status request 10 04 `query`: 1 is the printer, 2 the
/// cause of being off line, 3 the error, 4 the paper. The queries for devices that it does not have
/// report nothing unusual.
Bytes realTimeStatus(const PrinterState& state, std::uint8_t query);

/// The line-mode firmware reply: the text between 1b 23 2a and 0a 00.
Bytes firmwareReply(const PrinterState& state);

/// The answer to the ESC/POS question 1d 49 `query` for the printer's identity: one byte for a
/// number, a text between 5f and 00; empty if there is no such question.
Bytes identityReply(const PrinterState& state, std::uint8_t query);

/// The settings of DIP-switch bank `digit`, the ASCII digit 1 or 2 that is also in the request.
Bytes dipSwitchReply(const PrinterState& state, std::uint8_t digit);

/// The report that ESC/POS sends unasked when the print position has passed an ETB: the counter's
/// new value.
Bytes etbReport(const PrinterState& state);

/// The report of a process-ID command, given whole: its four characters are returned.
Bytes processIdReport(ByteView command);

/// The one byte that answers a whole status request 1d 72, 1b 75 or 1b 76: of the paper or of the
/// drawer.
Bytes inOrderStatus(const PrinterState& state, ByteView command);

/// The answer to a whole command 1d 28 45 that asks for a memory switch or a customised value: each
/// is 0.
Bytes settingReply(ByteView command);

/// The four bytes that report a change unasked.
Bytes unaskedStatus(const PrinterState& state);

/// The answer to a clearing of the buffer.
Bytes clearedReport();

}  // namespace quordalvane::simulator
