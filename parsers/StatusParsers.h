#pragma once

#include <quordalvane/QuorIOPort.h>

#include <cstdint>

// Decode a printer's status replies. The functions are pure: they touch nothing but the record they
// are given, so they may be called on any thread. They fail only as they state.

namespace quordalvane {

/// The ESC/POS status query that a reply byte answers.
enum class StatusType : std::uint32_t {
  CashDrawer = 0,  ///< 10 04 01
  CoverOpen = 1,   ///< 10 04 02
  PaperEmpty = 2,  ///< 10 04 04
  All = 3,         ///< all of them; no single byte answers it
};

/// The bits that distinguish an ESC/POS status byte from any other, and their value in one.
inline constexpr std::uint8_t escPosFixedMask = 0x93;
inline constexpr std::uint8_t escPosFixedBits = 0x12;

/// The bit of the answer to `CashDrawer` that is set while the printer is off line.
inline constexpr std::uint8_t escPosOfflineBit = 0x08;

/// The length in bytes, 1 to 63, of the whole line-mode status reply that begins with `firstByte`,
/// that byte included. Only the low six bits of `firstByte` count; if they are 0, the length is 1.
std::int32_t CalculateStatusLength(std::int32_t firstByte);

/// Decodes the line-mode status reply in the first `rawLength` bytes of `status->raw` into the
/// flags, `etbCounter`, `presenterState` and `connectedInterface`. Every flag becomes exactly 0 or
/// 1; a value that the reply is too short to carry becomes 0. `raw` and `rawLength` do not change;
/// no value of `rawLength` leads out of `raw`. `status` is the caller's and must not be null.
void BuildParsedStatus(QuorPrinterStatus_2* status);

/// Decodes `status->raw[0]` as the reply byte to the ESC/POS query `type`. Returns non-zero if it
/// is one: the flags that this query reports are then exactly 0 or 1. Returns 0 if the byte is no
/// status reply, or if no single byte answers `type`: nothing is changed then. No other field
/// changes in either case; `rawLength` is not looked at. `status` is the caller's and must not be
/// null.
std::int32_t BuildParsedStatusESCPOS(QuorPrinterStatus_2* status, StatusType type);

}  // namespace quordalvane
