#pragma once

#include <cstdint>

#include "simulator/Bytes.h"
#include "simulator/Paper.h"

namespace quordalvane::simulator {

/// A rectangle of paper that stores the darkness of each dot, from 0 to `ink`. Dots outside are
/// discarded.
class Plane {
 public:
  static constexpr std::uint8_t bare = 0;
  static constexpr std::uint8_t grey = 140;
  static constexpr std::uint8_t ink = 255;

  Plane(unsigned width, unsigned height)
      : width_(width), height_(height), dots_(std::size_t{width} * height, bare) {}

  unsigned width() const { return width_; }
  unsigned height() const { return height_; }
  ByteView row(unsigned y) const {
    return ByteView(dots_).subspan(std::size_t{y} * width_, width_);
  }

  void fill(int x, int y, unsigned width, unsigned height, std::uint8_t darkness);

  /// Draws each black dot as a box of `scaleX` by `scaleY` dots.
  void dots(const Bitmap& bitmap, int x, int y, unsigned scaleX, unsigned scaleY,
            std::uint8_t darkness);

  /// Darkens dots towards `darkness`. The darker a dot of `stencil` is, the darker the plane's dot
  /// becomes.
  void draw(const Plane& stencil, int x, int y, std::uint8_t darkness);

  /// Returns the plane turned clockwise by this count of quarter turns.
  Plane turned(unsigned quarters) const;

  /// Returns the dots, row by row, for drawing by outside libraries.
  std::uint8_t* data() { return dots_.data(); }

 private:
  unsigned width_;
  unsigned height_;
  Bytes dots_;
};

}  // namespace quordalvane::simulator
