#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>
#include <optional>

#include "fuzz/FuzzTarget.h"

namespace quordalvane::fuzz {

/// Where a reply parser sees its field.
struct Place {
  std::int32_t location;
  std::int32_t length;

  bool operator==(const Place&) const = default;
};

/// The parser's answer on a heap copy of the exact size; none if it found nothing.
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

/// A NUL in front moves the field by one, and one behind leaves it where it is.
template <typename Parser>
void requireSteady(Parser parser, Bytes bytes, std::optional<Place> place) {
  bytes.insert(bytes.begin(), 0);
  if (place) {
    ++place->location;
  }
  require(placeIn(parser, bytes) == place);
  if (place) {
    bytes.push_back(0);
    require(placeIn(parser, bytes) == place);
  }
}

}  // namespace quordalvane::fuzz
