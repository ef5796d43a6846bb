#pragma once

#include <cstdint>
#include <optional>
#include <ostream>
#include <random>
#include <string>
#include <vector>

#include "tests/unit/parsers/ExactBytes.h"

// Shared by the tests of the two reply parsers.

namespace quordalvane::test {

using Bytes = std::vector<std::uint8_t>;

struct Place {
  std::int32_t location;
  std::int32_t length;

  bool operator==(const Place&) const = default;
};

inline std::ostream& operator<<(std::ostream& out, const Place& place) {
  return out << place.length << " bytes at " << place.location;
}

/// A parser's answer as one value: null if it found nothing. If the parser finds nothing, it must
/// not change the place that it was given; otherwise the test fails.
template <typename Parser>
std::optional<Place> found(Parser parser, const Bytes& bytes) {
  const ExactBytes exact(bytes);
  Place place = {-77, -88};
  const Place untouched = place;
  if (parser(exact.data(), exact.count(), &place.location, &place.length) == 0) {
    return place;
  }
  EXPECT_EQ(place, untouched);
  return std::nullopt;
}

inline Bytes operator+(Bytes one, const Bytes& other) {
  one.insert(one.end(), other.begin(), other.end());
  return one;
}

inline Bytes ascii(const std::string& text) {
  return Bytes(text.begin(), text.end());
}

/// Up to 40 random bytes, chosen from the bytes that occur in replies, so that half-right replies
/// are common.
inline Bytes randomReplyBytes(std::mt19937& random) {
  static constexpr std::uint8_t alphabet[] = {0x1b, 0x1b, 0x23, 0x23, 0x2a, 0x2c, 0x31, 0x32,
                                              0x41, 0x0a, 0x0a, 0x00, 0x00, 0x7f, 0xff, 0x20};
  Bytes bytes(random() % 41);
  for (std::uint8_t& byte : bytes) {
    byte = alphabet[random() % sizeof alphabet];
  }
  return bytes;
}

}  // namespace quordalvane::test
