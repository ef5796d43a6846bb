#include "simulator/StatusReplies.h"

namespace quordalvane::simulator {
namespace {

constexpr std::uint8_t statusBlockLength = 9;
constexpr std::uint8_t layoutVersion = 1;

// Bits 1 and 4 are set in every real-time status byte; they tell it from flow control characters.
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

// As the in-order and the unasked status report the paper.
unsigned paperBits(const PrinterState& state) {
  return bits(state, Flag::ReceiptPaperNearEmptyInner, 0x03) |
         bits(state, Flag::ReceiptPaperEmpty, 0x0c);
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
    byte |= bits(state, Flag::CoverOpen, 0x04);
  } else {
    byte |= bits(state, Flag::ReceiptPaperNearEmptyInner, 0x0c) |
            bits(state, Flag::ReceiptPaperEmpty, 0x60);
  }
  return {byteOf(byte)};
}

Bytes firmwareReply(const PrinterState& state) {
  return framed({0x1b, 0x23, 0x2a}, state.firmware(), {0x0a, 0x00});
}

Bytes firmwareReplyEscPos(const PrinterState& state) {
  return framed({0x5f}, state.firmware(), {0x00});
}

Bytes dipSwitchReply(const PrinterState& state, std::uint8_t digit) {
  const DipBank& bank = state.dipBanks[digit == '1' ? 0 : 1];
  return {0x1b, 0x23, 0x2c, digit, bank[0], bank[1], 0x0a};
}

Bytes etbReport(const PrinterState& state) {
  return {0x1b, 0x1d, 0x03, 0x01, 0x00, 0x00, state.etbCounter, 0x00};
}

Bytes processIdReport(std::span<const std::uint8_t> command) {
  return {0x37, 0x22, command[7], command[8], command[9], command[10], 0x00};
}

Bytes inOrderStatus(const PrinterState& state, std::uint8_t query) {
  const bool asksForPaper = query == 1 || query == '1';
  return {byteOf(asksForPaper ? paperBits(state) : bits(state, Flag::CompulsionSwitch, 0x01))};
}

Bytes unaskedStatus(const PrinterState& state) {
  constexpr unsigned mark = 0x10;
  const unsigned first = mark | bits(state, Flag::CompulsionSwitch, 0x04) |
                         bits(state, Flag::Offline, 0x08) | bits(state, Flag::CoverOpen, 0x20);
  return {byteOf(first), 0x00, byteOf(paperBits(state)), 0x00};
}

Bytes clearedReport() {
  return {0x37, 0x25, 0x00};
}

}  // namespace quordalvane::simulator
