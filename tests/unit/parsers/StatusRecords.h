#pragma once

#include <quordalvane/QuorIOPort.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

// Functions of all status tests. They make a record, and read the flags of a record by number.

namespace quordalvane::test {

using Bytes = std::vector<std::uint8_t>;

inline constexpr std::size_t flagCount = 30;

/// Flag k of the record. The flags are its first thirty fields, each of four bytes.
inline std::uint32_t flag(const QuorPrinterStatus_2& status, std::size_t k) {
  std::uint32_t value = 0;
  std::memcpy(&value, reinterpret_cast<const char*>(&status) + k * sizeof value, sizeof value);
  return value;
}

/// A record full of old values, whose received bytes are `reply` (at most 63 bytes).
inline QuorPrinterStatus_2 recordHolding(const Bytes& reply) {
  QuorPrinterStatus_2 status;
  std::memset(&status, 0xa5, sizeof status);
  std::copy(reply.begin(), reply.end(), status.raw);
  status.rawLength = static_cast<std::uint32_t>(reply.size());
  return status;
}

/// The numbers of the flags that are not 0, for messages that say which one is wrong.
inline std::vector<std::size_t> flagsSet(const QuorPrinterStatus_2& status) {
  std::vector<std::size_t> set;
  for (std::size_t k = 0; k < flagCount; ++k) {
    if (flag(status, k) != 0) {
      set.push_back(k);
    }
  }
  return set;
}

}  // namespace quordalvane::test
