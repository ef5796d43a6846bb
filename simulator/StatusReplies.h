#pragma once

#include <cstdint>
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

/// What ESC/POS sends unasked when the print position has passed an ETB: the counter's new value.
Bytes etbReport(const PrinterState& state);

}  // namespace quordalvane::simulator
