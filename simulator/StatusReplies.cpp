#include "simulator/StatusReplies.h"

#include <algorithm>
#include <initializer_list>

namespace quordalvane::simulator {
namespace {

constexpr std::uint8_t statusBlockLength = 9;
constexpr std::uint8_t layoutVersion = 1;
constexpr std::uint8_t romVersion = 1;

// Bits 1 and 4 are set in every real-time status byte, which distinguishes such a byte from a
// flow-control character.
constexpr unsigned realTimeMark = 0x12;

Bytes framed(Bytes head, const std::string& text, const Bytes& tail) {
  head.insert(head.end(), text.begin(), text.end());
  head.insert(head.end(), tail.begin(), tail.end());
  return head;
}

unsigned bits(const PrinterState& state, Flag flag, unsigned mask) {
  return state.flag(flag) ? mask : 0U;
}

std::uint8_t byteOf(unsigned bits) {
  return static_cast<std::uint8_t>(bits);
}

// Returns the bits that describe the paper. They are the same in the results of `inOrderStatus` and
// of `unaskedStatus`.
unsigned paperBits(const PrinterState& state) {
  return bits(state, Flag::ReceiptPaperNearEmptyInner, 0x03) |
         bits(state, Flag::ReceiptPaperEmpty, 0x0c);
}

bool hasAny(const PrinterState& state, std::initializer_list<Flag> flags) {
  return std::any_of(flags.begin(), flags.end(), [&](Flag flag) { return state.flag(flag); });
}

// Returns the error bits of the real-time status. There is one bit each for errors that an operator
// can clear, for cutter errors, for errors that nobody can clear, and for errors that end by
// themselves.
unsigned errorBits(const PrinterState& state) {
  const bool isRecoverable =
      hasAny(state, {Flag::MechError, Flag::ReceiveBufferOverflow, Flag::PageModeCmdError,
                     Flag::PaperDetectionError, Flag::BlackMarkError, Flag::JamError,
                     Flag::PresenterPaperJamError, Flag::HeadUpError});
  const bool isFinal =
      hasAny(state, {Flag::UnrecoverableError, Flag::HeadThermistorError, Flag::VoltageError});
  return (isRecoverable ? 0x04U : 0U) | bits(state, Flag::CutterError, 0x08) |
         (isFinal ? 0x20U : 0U) | bits(state, Flag::OverTemp, 0x40);
}

}  // namespace

Bytes statusBlock(const PrinterState& state) {
  Bytes block(statusBlockLength, 0);
  block[0] = 0x80U | statusBlockLength;
  block[1] = layoutVersion;
  for (std::size_t k = 0; k < flagCount; ++k) {
    if (state.flag(static_cast<Flag>(k))) {
      std::uint8_t& byte = block[2 + k / 8];
      byte = static_cast<std::uint8_t>(byte | 1U << k % 8);
    }
  }
  block[6] = state.etbCounter;
  block[7] = state.presenterState;
  block[8] = state.connectedInterface;
  return block;
}

Bytes realTimeStatus(const PrinterState& state, std::uint8_t query) {
  unsigned byte = realTimeMark;
  if (query == 1) {
    byte |= bits(state, Flag::CompulsionSwitch, 0x04) | bits(state, Flag::Offline, 0x08);
  } else if (query == 2) {
    byte |= bits(state, Flag::CoverOpen, 0x04) | bits(state, Flag::ReceiptPaperEmpty, 0x20) |
            (errorBits(state) != 0 ? 0x40U : 0U);
  } else if (query == 3) {
    byte |= errorBits(state);
  } else if (query == 4) {
    byte |= bits(state, Flag::ReceiptPaperNearEmptyInner, 0x0c) |
            bits(state, Flag::ReceiptPaperEmpty, 0x60);
  }
  return {byteOf(byte)};
}

Bytes firmwareReply(const PrinterState& state) {
  return framed({0x1b, 0x23, 0x2a}, state.firmware(), {0x0a, 0x00});
}

Bytes identityReply(const PrinterState& state, std::uint8_t query) {
  const auto text = [](const std::string& words) { return framed({0x5f}, words, {0x00}); };
  switch (query) {
    case 0x01:
    case 0x31:
      return {state.modelId};
    case 0x02:
    case 0x32:
      return {state.typeId};
    case 0x03:
    case 0x33:
      return {romVersion};
    case 0x41:
      return text(state.firmware());
    case 0x42:
      return text(state.maker());
    case 0x43:
      return text(state.modelName());
    case 0x44:
      return text(state.serialNumber());
    case 0x45:
      return text("");  // the printer has no font for another language
    default:
      return {};
  }
}

Bytes dipSwitchReply(const PrinterState& state, std::uint8_t digit) {
  const DipBank& bank = state.dipBanks[digit == '1' ? 0 : 1];
  return {0x1b, 0x23, 0x2c, digit, bank[0], bank[1], 0x0a};
}

Bytes etbReport(const PrinterState& state) {
  return {0x1b, 0x1d, 0x03, 0x01, 0x00, 0x00, state.etbCounter, 0x00};
}

Bytes processIdReport(ByteView command) {
  return {0x37, 0x22, command[7], command[8], command[9], command[10], 0x00};
}

Bytes inOrderStatus(const PrinterState& state, ByteView command) {
  constexpr std::uint8_t askPaperOnly = 0x76;
  constexpr std::uint8_t askInOrder = 0x72;
  const bool asksForPaper = command[1] == askPaperOnly ||
                            (command[1] == askInOrder && (command[2] == 1 || command[2] == '1'));
  return {byteOf(asksForPaper ? paperBits(state) : bits(state, Flag::CompulsionSwitch, 0x01))};
}

Bytes settingReply(ByteView command) {
  constexpr std::uint8_t beginSetting = 1;
  constexpr std::uint8_t askSwitch = 4;
  if (command[5] == beginSetting) {
    return {0x37, 0x20, 0x00};
  }
  if (command[5] == askSwitch) {
    return framed({0x37, 0x21}, "00000000", {0x00});
  }
  return framed({0x37, 0x27}, std::to_string(command[6]) + "\x1f" + "0", {0x00});
}

Bytes unaskedStatus(const PrinterState& state) {
  constexpr unsigned mark = 0x10;
  const unsigned first = mark | bits(state, Flag::CompulsionSwitch, 0x04) |
                         bits(state, Flag::Offline, 0x08) | bits(state, Flag::CoverOpen, 0x20);
  return {byteOf(first), byteOf(errorBits(state)), byteOf(paperBits(state)), 0x00};
}

Bytes clearedReport() {
  return {0x37, 0x25, 0x00};
}

}  // namespace quordalvane::simulator
