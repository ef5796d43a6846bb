#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>
#include <optional>

#include "fuzz/FuzzTarget.h"

namespace quordalvane::fuzz {

/// The position of a field in a reply.
struct Place {
  std::int32_t location;
  std::int32_t length;

  bool operator==(const Place&) const = default;
};

inline Bytes joined(Bytes one, const Bytes& other) {
  one.insert(one.end(), other.begin(), other.end());
  return one;
}

/// Returns the position that the parser finds; empty if it finds none. The parser reads from a heap
/// block of the exact size, so that a sanitizer notices if the parser reads beyond the end.
template <typename Parser>
std::optional<Place> placeIn(Parser parser, const Bytes& bytes) {
  const auto exact = std::make_unique<std::uint8_t[]>(bytes.size());
  std::copy(bytes.begin(), bytes.end(), exact.get());
  const auto count = static_cast<std::int32_t>(bytes.size());
  Place place = {-1, -1};
  if (parser(exact.get(), count, &place.location, &place.length) != 0) {
    require(place == Place{-1, -1});
    return std::nullopt;
  }
  require(place.location >= 0 && place.length >= 0 && place.location <= count - place.length);
  return place;
}

/// Requires that additional bytes around `bytes` do not confuse the parser. A zero byte before
/// `bytes` moves the field by one. A zero byte after `bytes` does not move the field. A complete
/// reply after `bytes` is always found.
template <typename Parser>
void requireSteady(Parser parser, const Bytes& bytes, const Bytes& wholeReply) {
  auto place = placeIn(parser, bytes);
  if (place) {
    require(placeIn(parser, joined(bytes, {0})) == place);
    ++place->location;
  }
  require(placeIn(parser, joined({0}, bytes)) == place);
  require(placeIn(parser, joined(bytes, wholeReply)).has_value());
}

}  // namespace quordalvane::fuzz
