#pragma once

#include <quordalvane/QuorIOPort.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace quordalvane::fuzz {

inline constexpr std::size_t flagCount = 30;

/// A record whose memory begins with the input; the rest is zero.
inline QuorPrinterStatus_2 recordFrom(const std::uint8_t* data, std::size_t size) {
  QuorPrinterStatus_2 record = {};
  std::memcpy(&record, data, std::min(size, sizeof record));
  return record;
}

inline bool same(const QuorPrinterStatus_2& one, const QuorPrinterStatus_2& other) {
  return std::memcmp(&one, &other, sizeof one) == 0;
}

/// Flag k of the record: its first thirty fields, each of four bytes.
inline std::uint32_t flag(const QuorPrinterStatus_2& record, std::size_t k) {
  std::uint32_t value = 0;
  std::memcpy(&value, reinterpret_cast<const char*>(&record) + k * sizeof value, sizeof value);
  return value;
}

}  // namespace quordalvane::fuzz
