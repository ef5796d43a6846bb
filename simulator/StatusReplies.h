#pragma once

#include <cstdint>

#include "simulator/Bytes.h"
#include "simulator/PrinterState.h"

namespace quordalvane::simulator {

/// Returns the status block of line mode: a header with the length, the version of the layout, the
/// thirty flags as one bit each, the counter and the two state bytes. The block always has nine
/// bytes.
Bytes statusBlock(const PrinterState& state);

/// Returns the byte that answers a real-time status request 10 04 `query` (hex): 1 asks about the
/// printer, 2 about the cause of being off line, 3 about the error, and 4 about the paper. If the
/// query is about a device that the printer does not have, the answer reports nothing unusual.
Bytes realTimeStatus(const PrinterState& state, std::uint8_t query);

/// Returns the firmware reply of line mode: the text between the bytes 1b 23 2a and 0a 00.
Bytes firmwareReply(const PrinterState& state);

/// Returns the answer to the ESC/POS question 1d 49 `query` about the printer's identity: one byte
/// for a number, or a text between 5f and 00. Returns empty if there is no such question.
Bytes identityReply(const PrinterState& state, std::uint8_t query);

/// Returns the settings of a DIP-switch bank. `digit` is the ASCII digit 1 or 2 in the request.
Bytes dipSwitchReply(const PrinterState& state, std::uint8_t digit);

/// Returns the report that an ESC/POS printer sends when everything before an ETB is printed. The
/// report holds the new value of the printer's counter.
Bytes etbReport(const PrinterState& state);

/// Returns the reply to a process-ID command. The reply contains the four characters of the
/// command.
Bytes processIdReport(ByteView command);

/// Returns the in-order status: one byte that answers a status request 1d 72, 1b 75 or 1b 76. The
/// request asks about the paper or the drawer. The printer answers it after it has printed all
/// earlier data.
Bytes inOrderStatus(const PrinterState& state, ByteView command);

/// Returns the answer to a command 1d 28 45 that begins a change of settings, or asks for the value
/// of a memory switch or of another setting. All these values are 0.
Bytes settingReply(ByteView command);

/// Returns the four bytes that the printer sends, without a request, when its state changes.
Bytes unaskedStatus(const PrinterState& state);

/// Returns the reply that reports that the buffer was cleared.
Bytes clearedReport();

}  // namespace quordalvane::simulator
