#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "simulator/PrinterState.h"

namespace quordalvane::simulator {

using Bytes = std::vector<std::uint8_t>;

/// The line-mode status block: a header that tells the length, the layout's version, the thirty
/// flags a bit each, the counter and the two state bytes. Always nine bytes.
Bytes statusBlock(const PrinterState& state);

/// The one byte that answers a real-time status request 10 04 `query`; `query` is 1, 2 or 4.
Bytes realTimeStatus(const PrinterState& state, std::uint8_t query);

/// The line-mode firmware reply: the text between 1b 23 2a and 0a 00.
Bytes firmwareReply(const PrinterState& state);

/// The ESC/POS firmware reply: the text between 5f and 00.
Bytes firmwareReplyEscPos(const PrinterState& state);

/// The settings of DIP-switch bank `digit`, the ASCII digit 1 or 2 that also stands in the request.
Bytes dipSwitchReply(const PrinterState& state, std::uint8_t digit);

/// The report that ESC/POS sends unasked when the print position has passed an ETB: the counter's
/// new value.
Bytes etbReport(const PrinterState& state);

/// The report of a process-ID command, given whole: its four characters come back.
Bytes processIdReport(std::span<const std::uint8_t> command);

/// The one byte that answers an in-order status request 1d 72 `query`: of the paper (1 or the digit
/// 1) or of the drawer (2 or the digit 2).
Bytes inOrderStatus(const PrinterState& state, std::uint8_t query);

/// The four bytes that report a change unasked.
Bytes unaskedStatus(const PrinterState& state);

/// The answer to a clearing of the buffer.
Bytes clearedReport();

}  // namespace quordalvane::simulator
