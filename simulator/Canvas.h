#pragma once

#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "simulator/Bytes.h"
#include "simulator/Paper.h"

namespace quordalvane::simulator {

/// A picture: rows of pixels 0x00RRGGBB from the top left.
struct Picture {
  unsigned width = 0;
  unsigned height = 0;
  std::vector<std::uint32_t> pixels;
};

/// A surface to draw a picture on. Drawings outside it are cut off. Text needs a monospaced font on
/// the machine; without one each character is a small block, so that a picture is drawn in any
/// case.
class Canvas {
 public:
  Canvas(unsigned width, unsigned height, std::uint32_t background);
  ~Canvas();
  Canvas(const Canvas&) = delete;
  Canvas& operator=(const Canvas&) = delete;

  /// From now on drawing leaves everything outside this rectangle as it is.
  void clipTo(double x, double y, double width, double height);

  void fill(double x, double y, double width, double height, std::uint32_t colour);

  struct Point {
    double x;
    double y;
  };
  void fillPolygon(const std::vector<Point>& corners, std::uint32_t colour);

  /// Each black dot becomes a box of `scaleX` by `scaleY` pixels.
  void dots(const Bitmap& bitmap, double x, double y, unsigned scaleX, unsigned scaleY,
            std::uint32_t colour);

  /// Draws characters in the cells of their style, from the top left corner of the first. What is
  /// no character is drawn as U+FFFD.
  void text(std::u32string_view characters, const TextStyle& style, double x, double y,
            std::uint32_t colour);

  /// The drawing, and the same as a PNG file. Both are empty if any part of it failed, as without
  /// memory.
  Picture picture() const;
  Bytes png() const;

 private:
  struct Cairo;
  bool failed() const;
  void character(char32_t c, const TextStyle& style, double x, double y);

  std::unique_ptr<Cairo> cairo_;
};

}  // namespace quordalvane::simulator
