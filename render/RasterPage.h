#pragma once

#include <cstddef>
#include <vector>

#include "render/Dither.h"
#include "render/Output.h"
#include "render/RasterBands.h"

namespace quordalvane::render {

/// Turns a page of grey that a client has drawn into raster images for the printer. A page is as
/// wide as the paper, which is wider than the print head: the middle of each row is printed. A page
/// that is narrower than the head lies at the left. It holds one band, whatever the length of the
/// page.
class RasterPage {
 public:
  /// `pageDots` of the rows that are added, `headDots` of the print head, a multiple of 8.
  RasterPage(unsigned pageDots, unsigned headDots, Output output);

  /// How many bytes a page of so many rows hands on at most.
  static std::size_t mostBytes(std::size_t rows, unsigned headDots);

  /// Adds a row of `pageDots` pixels, a byte each, 0 black and 255 white.
  void add(ByteView grey) { bands_.add(dither_.dots(grey.subspan(skipped_))); }

  /// Hands on the rest but for the white rows at the end.
  void end() { bands_.end(); }

 private:
  const std::size_t skipped_;  // pixels at the left of each row
  Dither dither_;
  RasterBands bands_;
};

}  // namespace quordalvane::render
