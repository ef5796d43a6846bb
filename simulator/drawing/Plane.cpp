#include "simulator/drawing/Plane.h"

#include <algorithm>

namespace quordalvane::simulator {
namespace {

struct Range {
  unsigned begin;
  unsigned end;
};

// Returns the part of a range that is between 0 and `limit`.
Range within(std::int64_t begin, std::int64_t length, unsigned limit) {
  const auto clamped = [&](std::int64_t place) {
    return static_cast<unsigned>(std::clamp<std::int64_t>(place, 0, limit));
  };
  return {clamped(begin), clamped(begin + length)};
}

}  // namespace

void Plane::fill(int x, int y, unsigned width, unsigned height, std::uint8_t darkness) {
  const Range columns = within(x, width, width_);
  const Range rows = within(y, height, height_);
  for (unsigned row = rows.begin; row < rows.end; ++row) {
    std::fill_n(
        dots_.begin() + static_cast<std::ptrdiff_t>(std::size_t{row} * width_) + columns.begin,
        columns.end - columns.begin, darkness);
  }
}

void Plane::dots(const Bitmap& bitmap, int x, int y, unsigned scaleX, unsigned scaleY,
                 std::uint8_t darkness) {
  for (unsigned row = 0; row < bitmap.height; ++row) {
    const std::int64_t top = y + std::int64_t{row} * scaleY;
    if (top >= height_ || top + scaleY <= 0) {
      continue;
    }
    for (unsigned begin = 0, end = 0; begin < bitmap.width; begin = end + 1) {
      end = begin;
      while (end < bitmap.width && bitmap.black(end, row)) {
        ++end;
      }
      if (end > begin) {
        fill(x + static_cast<int>(begin * scaleX), static_cast<int>(top), (end - begin) * scaleX,
             scaleY, darkness);
      }
    }
  }
}

void Plane::draw(const Plane& stencil, int x, int y, std::uint8_t darkness) {
  const Range columns = within(x, stencil.width(), width_);
  const Range rows = within(y, stencil.height(), height_);
  for (unsigned row = rows.begin; row < rows.end; ++row) {
    const ByteView from = stencil.row(static_cast<unsigned>(static_cast<int>(row) - y));
    std::uint8_t* to = dots_.data() + std::size_t{row} * width_;
    for (unsigned column = columns.begin; column < columns.end; ++column) {
      const int cover = from[static_cast<std::size_t>(static_cast<int>(column) - x)];
      if (cover != 0) {
        to[column] = static_cast<std::uint8_t>(to[column] + (darkness - to[column]) * cover / ink);
      }
    }
  }
}

Plane Plane::turned(unsigned quarters) const {
  if (quarters % 4 == 0) {
    return *this;
  }
  Plane once(height_, width_);
  for (unsigned y = 0; y < height_; ++y) {
    for (unsigned x = 0; x < width_; ++x) {
      once.dots_[std::size_t{x} * height_ + (height_ - 1 - y)] = dots_[std::size_t{y} * width_ + x];
    }
  }
  return once.turned(quarters - 1);
}

}  // namespace quordalvane::simulator
