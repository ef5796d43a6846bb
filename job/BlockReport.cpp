#include "job/BlockReport.h"

namespace quordalvane {
namespace {

constexpr std::array<std::uint8_t, 8> reportBytes = {0x1b, 0x1d, 0x03, 0x01, 0x00, 0x00, 0, 0x00};
constexpr std::size_t countPlace = 6;

}  // namespace

void BlockReport::clear() {
  *this = {};
}

void BlockReport::feed(ByteView bytes) {
  for (const std::uint8_t byte : bytes) {
    feed(byte);
  }
}

void BlockReport::feed(std::uint8_t byte) {
  if (matched_ == countPlace) {
    count_ = byte;
  } else if (byte != reportBytes[matched_]) {
    matched_ = byte == reportBytes[0] ? 1 : 0;
    return;
  }
  if (++matched_ == reportBytes.size()) {
    lastCount_ = count_;
    matched_ = 0;
  }
}

}  // namespace quordalvane
