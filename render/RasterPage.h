#pragma once

#include <cstddef>
#include <vector>

#include "render/Dither.h"
#include "render/Output.h"
#include "render/RasterBands.h"

namespace quordalvane::render {

/// Converts a page of grey pixels, drawn by a client, to raster images for the printer. A page is
/// usually as wide as the paper. As the paper is wider than the print head, only the middle of each
/// row of such a page is printed. A page that is narrower than the head is printed at the left.
/// Only one band is kept in memory, so a page may have any length.
class RasterPage {
 public:
  /// `pageDots` is the width of the page's rows. `headDots` is the width of the print head and must
  /// be a multiple of 8.
  RasterPage(unsigned pageDots, unsigned headDots, Output output);

  /// Returns the maximum number of bytes that a page of `rows` rows passes to its output.
  static std::size_t mostBytes(std::size_t rows, unsigned headDots);

  /// Adds a row of `pageDots` pixels, one byte each; 0 is black and 255 white.
  void add(ByteView grey) { bands_.add(dither_.dots(grey.subspan(skipped_))); }

  /// Sends the remaining rows, except white rows at the end.
  void end() { bands_.end(); }

 private:
  const std::size_t skipped_;  // number of pixels left out at the left of each row
  Dither dither_;
  RasterBands bands_;
};

}  // namespace quordalvane::render
