#include "parsers/StatusParsers.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace quordalvane {
namespace {

using Status = QuorPrinterStatus_2;
using Flag = std::uint32_t Status::*;
using StateByte = std::uint8_t Status::*;

// The layout of the line-mode reply. Byte 0 contains the length, and byte 1 contains the version of
// the layout. The next bytes contain the flags, eight in each byte, from the lowest bit up. The
// state bytes follow the flags.
constexpr std::size_t firstFlagByte = 2;
constexpr std::size_t firstStateByte = 6;

constexpr std::array<Flag, 30> lineFlags = {
    // byte 2
    &Status::coverOpen,
    &Status::offline,
    &Status::compulsionSwitch,
    &Status::overTemp,
    &Status::unrecoverableError,
    &Status::cutterError,
    &Status::mechError,
    &Status::headThermistorError,
    // byte 3
    &Status::receiveBufferOverflow,
    &Status::pageModeCmdError,
    &Status::paperDetectionError,
    &Status::blackMarkError,
    &Status::jamError,
    &Status::presenterPaperJamError,
    &Status::headUpError,
    &Status::voltageError,
    // byte 4
    &Status::receiptBlackMarkDetection,
    &Status::receiptPaperEmpty,
    &Status::receiptPaperNearEmptyInner,
    &Status::receiptPaperNearEmptyOuter,
    &Status::paperPresent,
    &Status::presenterPaperPresent,
    &Status::peelerPaperPresent,
    &Status::stackerFull,
    // byte 5
    &Status::slipTOF,
    &Status::slipCOF,
    &Status::slipBOF,
    &Status::validationPaperPresent,
    &Status::slipPaperPresent,
    &Status::etbAvailable,
};

constexpr std::array<StateByte, 3> lineStateBytes = {
    &Status::etbCounter,
    &Status::presenterState,
    &Status::connectedInterface,
};

// The state bytes follow the flag bytes, and all of them are inside `raw`. So the decoder stays
// inside `raw`, whatever `rawLength` is.
static_assert(firstFlagByte + (lineFlags.size() + 7) / 8 == firstStateByte);
static_assert(firstStateByte + lineStateBytes.size() <= sizeof Status::raw);

// A flag in an ESC/POS reply byte. The flag is 1 if any bit of `mask` is set.
struct EscPosFlag {
  StatusType query;
  std::uint8_t mask;
  Flag flag;
};

constexpr std::array<EscPosFlag, 5> escPosFlags = {{
    {StatusType::CashDrawer, 0x04, &Status::compulsionSwitch},
    {StatusType::CashDrawer, escPosOfflineBit, &Status::offline},
    {StatusType::CoverOpen, 0x04, &Status::coverOpen},
    {StatusType::PaperEmpty, 0x0c, &Status::receiptPaperNearEmptyInner},
    {StatusType::PaperEmpty, 0x60, &Status::receiptPaperEmpty},
}};

constexpr std::int32_t lengthMask = 0x3f;

}  // namespace

std::int32_t CalculateStatusLength(std::int32_t firstByte) {
  return std::max(firstByte & lengthMask, 1);
}

void BuildParsedStatus(QuorPrinterStatus_2* status) {
  const auto byteAt = [&](std::size_t index) -> std::uint8_t {
    return index < status->rawLength ? status->raw[index] : 0;
  };
  for (std::size_t k = 0; k < lineFlags.size(); ++k) {
    const std::uint32_t flags = byteAt(firstFlagByte + k / 8);
    status->*lineFlags[k] = (flags >> (k % 8)) & 1U;
  }
  for (std::size_t k = 0; k < lineStateBytes.size(); ++k) {
    status->*lineStateBytes[k] = byteAt(firstStateByte + k);
  }
}

std::int32_t BuildParsedStatusESCPOS(QuorPrinterStatus_2* status, StatusType type) {
  const std::uint8_t reply = status->raw[0];
  if ((reply & escPosFixedMask) != escPosFixedBits) {
    return 0;
  }
  bool answered = false;
  for (const EscPosFlag& entry : escPosFlags) {
    if (entry.query == type) {
      status->*entry.flag = (reply & entry.mask) != 0 ? 1 : 0;
      answered = true;
    }
  }
  return answered ? 1 : 0;
}

}  // namespace quordalvane
