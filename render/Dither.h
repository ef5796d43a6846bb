#pragma once

#include <cstdint>
#include <vector>

#include "render/Output.h"

namespace quordalvane::render {

/// The method that turns grey into black and white dots. Pure black and pure white are not changed,
/// so letters stay sharp.
enum class DitherKind {
  FloydSteinberg,  ///< for photographs: spreads the error of each dot over its neighbours
  Ordered,         ///< for drawings: uses a fixed pattern of 8 by 8 dots for each grey
};

/// Turns rows of grey pixels into rows of dots. It keeps only two rows in memory, so a page may
/// have any length.
class Dither {
 public:
  /// `width` is in dots and must be a multiple of 8.
  Dither(DitherKind kind, unsigned width);

  /// Returns the dots of the next row, in the form that `RasterBands` takes. The dots are valid
  /// until the next call. `grey` has one byte for each pixel; 0 is black and 255 white. If `grey`
  /// is narrower than the width, the rest of the row is white.
  ByteView dots(ByteView grey);

 private:
  void spreadErrors(ByteView grey);
  void compareWithPattern(ByteView grey);
  void blacken(std::size_t x);

  DitherKind kind_;
  std::size_t width_;
  std::size_t row_ = 0;
  std::vector<std::uint8_t> dots_;
  // The errors that earlier dots have spread to the current row and to the next row, in sixteenths
  // of a grey level. Both rows have one additional column at each end.
  std::vector<int> errors_;
  std::vector<int> nextErrors_;
};

}  // namespace quordalvane::render
