#pragma once

#include <algorithm>
#include <cstdint>
#include <initializer_list>
#include <random>
#include <vector>

#include "tests/support/Bytes.h"

namespace quordalvane::test {

/// Random numbers that depend only on the seed. They are the same on every machine, unlike those of
/// the standard library's distributions.
class Dice {
 public:
  explicit Dice(std::uint64_t seed) : engine_(seed) {}

  /// 0 to `bound` - 1.
  std::uint64_t below(std::uint64_t bound) { return engine_() % bound; }
  std::uint64_t between(std::uint64_t low, std::uint64_t high) {
    return low + below(high - low + 1);
  }
  bool oneIn(std::uint64_t times) { return below(times) == 0; }
  std::uint8_t byte() { return static_cast<std::uint8_t>(below(256)); }
  double seconds(std::uint64_t most) { return static_cast<double>(below(most * 100)) / 100; }

  template <typename Value>
  Value among(std::initializer_list<Value> values) {
    return values.begin()[below(values.size())];
  }

  template <typename Value>
  Value among(const std::vector<Value>& values) {
    return values[below(values.size())];
  }

  Bytes bytes(std::size_t count) {
    Bytes result(count);
    std::generate(result.begin(), result.end(), [this] { return byte(); });
    return result;
  }

 private:
  std::mt19937_64 engine_;
};

}  // namespace quordalvane::test
