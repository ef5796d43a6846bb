#pragma once

#include <quordalvane/QuorIOPort.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace quordalvane::fuzz {

inline constexpr std::size_t flagCount = 30;

/// Returns a record that begins with the bytes of the input; the rest is zero.
inline QuorPrinterStatus_2 recordFrom(const std::uint8_t* data, std::size_t size) {
  QuorPrinterStatus_2 record = {};
  std::memcpy(&record, data, std::min(size, sizeof record));
  return record;
}

inline bool same(const QuorPrinterStatus_2& one, const QuorPrinterStatus_2& other) {
  return std::memcmp(&one, &other, sizeof one) == 0;
}

/// Returns the value of flag k: the flags are the first thirty fields of the record, with four
/// bytes each.
inline std::uint32_t flag(const QuorPrinterStatus_2& record, std::size_t k) {
  std::uint32_t value = 0;
  std::memcpy(&value, reinterpret_cast<const char*>(&record) + k * sizeof value, sizeof value);
  return value;
}

}  // namespace quordalvane::fuzz
