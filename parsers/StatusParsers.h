#pragma once

#include <quordalvane/QuorIOPort.h>

#include <cstdint>

// Functions that decode a printer's status replies. The functions use only the record that is
// passed to them, so any thread may call them.

namespace quordalvane {

/// The ESC/POS status queries, with their bytes in hexadecimal.
enum class StatusType : std::uint32_t {
  CashDrawer = 0,  ///< the query 10 04 01
  CoverOpen = 1,   ///< the query 10 04 02
  PaperEmpty = 2,  ///< the query 10 04 04
  All = 3,         ///< all three queries, each with its own reply byte
};

/// A byte is an ESC/POS status byte if its bits in `escPosFixedMask` have the value
/// `escPosFixedBits`.
inline constexpr std::uint8_t escPosFixedMask = 0x93;
inline constexpr std::uint8_t escPosFixedBits = 0x12;

/// This bit is set in the answer to `CashDrawer` while the printer is off line.
inline constexpr std::uint8_t escPosOfflineBit = 0x08;

/// Returns the length in bytes, 1 to 63, of the line-mode status reply that begins with
/// `firstByte`. The length includes this byte. Only the low six bits of `firstByte` count; if they
/// are 0, the length is 1.
std::int32_t CalculateStatusLength(std::int32_t firstByte);

/// Decodes the line-mode status reply in the first `rawLength` bytes of `status->raw` into the
/// flags, `etbCounter`, `presenterState` and `connectedInterface`. Every flag becomes exactly 0 or
/// 1. If the reply is too short to contain a value, the value becomes 0. `raw` and `rawLength` do
/// not change. The function never reads beyond `raw`, whatever `rawLength` is. `status` must not be
/// null.
void BuildParsedStatus(QuorPrinterStatus_2* status);

/// Decodes `status->raw[0]` as the reply byte to the ESC/POS query `type`. Returns a value other
/// than 0 if the byte is a status reply; the flags that this query reports are then exactly 0 or 1.
/// Returns 0, and changes nothing, if the byte is not a status reply, or if `type` is `All` or an
/// unknown value. Other fields do not change in either case, and `rawLength` is ignored. `status`
/// must not be null.
std::int32_t BuildParsedStatusESCPOS(QuorPrinterStatus_2* status, StatusType type);

}  // namespace quordalvane
