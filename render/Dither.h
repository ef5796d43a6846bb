#pragma once

#include <cstdint>
#include <vector>

#include "render/Output.h"

namespace quordalvane::render {

/// How grey becomes black dots. Pure black and pure white remain so: letters stay sharp.
enum class DitherKind {
  FloydSteinberg,  ///< for photographs: the error of a dot is spread over its neighbours
  Ordered,         ///< for drawings: a fixed pattern of 8 by 8 dots for each grey
};

/// Turns rows of grey into rows of dots. It holds two rows, whatever the length of the page.
class Dither {
 public:
  /// `width` in dots, a multiple of 8.
  Dither(DitherKind kind, unsigned width);

  /// The dots of the next row, as `RasterBands` takes them; valid until the next call. `grey` holds
  /// a byte a pixel, 0 black and 255 white. If `grey` is narrower than the width, the rest is
  /// white.
  ByteView dots(ByteView grey);

 private:
  void spreadErrors(ByteView grey);
  void compareWithPattern(ByteView grey);
  void blacken(std::size_t x);

  DitherKind kind_;
  std::size_t width_;
  std::size_t row_ = 0;
  std::vector<std::uint8_t> dots_;
  // Of the row under way and of the next one, in sixteenths of a grey; a column more at both ends.
  std::vector<int> errors_;
  std::vector<int> nextErrors_;
};

}  // namespace quordalvane::render
