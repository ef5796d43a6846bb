#include "render/Orientation.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

namespace quordalvane::render {
namespace {

// Reads numbers in the byte order of the data. The positions may be outside the data.
class Reader {
 public:
  explicit Reader(ByteView data) : data_(data), isLittle_(!data.empty() && data[0] == 'I') {}

  std::optional<std::uint32_t> number(std::size_t place, std::size_t bytes) const {
    if (place > data_.size() || bytes > data_.size() - place) {
      return std::nullopt;
    }
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < bytes; ++i) {
      value = value << 8U | data_[place + (isLittle_ ? bytes - 1 - i : i)];
    }
    return value;
  }

 private:
  const ByteView data_;
  const bool isLittle_;
};

// Returns the value of the entry with this name in the list of entries that describe the picture;
// null if there is none.
std::optional<std::uint32_t> entry(const Reader& reader, std::uint32_t name) {
  constexpr std::size_t entrySize = 12;
  const auto directory = reader.number(4, 4);
  const auto count = directory ? reader.number(*directory, 2) : std::nullopt;
  for (std::size_t i = 0; i < count.value_or(0); ++i) {
    const std::size_t place = *directory + 2 + i * entrySize;
    if (reader.number(place, 2) == name) {
      return reader.number(place + 8, 2);
    }
  }
  return std::nullopt;
}

}  // namespace

Orientation orientationIn(ByteView exif) {
  using namespace std::string_view_literals;
  constexpr std::string_view beginning = "Exif\0\0"sv;
  constexpr std::uint32_t orientation = 0x0112;
  if (exif.size() < beginning.size() ||
      !std::equal(beginning.begin(), beginning.end(), exif.begin())) {
    return {};
  }
  const auto value = entry(Reader(exif.subspan(beginning.size())), orientation).value_or(1);
  const auto isOneOf = [value](std::array<std::uint32_t, 4> values) {
    return std::ranges::find(values, value) != values.end();
  };
  return {.isTransposed = isOneOf({5, 6, 7, 8}),
          .isRightFirst = isOneOf({2, 3, 7, 8}),
          .isBottomFirst = isOneOf({3, 4, 6, 7})};
}

}  // namespace quordalvane::render
