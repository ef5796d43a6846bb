#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "render/Output.h"

namespace quordalvane::render {

/// Turns rows of dots into raster images of at most 255 rows: many printers print rubbish for
/// longer ones. It holds one such band, whatever the length of the page.
///
///     RasterBands bands(576, output);
///     bands.add(row);  // as often as there are rows
///     bands.end();
class RasterBands {
 public:
  static constexpr std::size_t mostRows = 255;
  static constexpr std::size_t commandBytes = 8;

  enum class Top { LeaveOutWhite, KeepWhite };

  /// `width` in dots, a multiple of 8. With `Top::LeaveOutWhite` the white rows before the first
  /// dot are left out.
  RasterBands(unsigned width, Output output, Top top = Top::LeaveOutWhite);

  /// Adds a row of width / 8 bytes, the leftmost dot in the highest bit, black as 1. White rows are
  /// held back until a dot follows them.
  void add(ByteView dots);

  /// Hands on all rows so far, white ones included, because something else follows on the paper.
  void flush();

  /// Hands on the rest, except the white rows at the end.
  void end();

 private:
  void append(ByteView dots);
  void appendWhite();
  void sendBand();

  unsigned rowBytes_;
  Output output_;
  bool keepsWhite_;
  std::uint64_t whiteRows_ = 0;
  unsigned rows_ = 0;               // in the band
  std::vector<std::uint8_t> band_;  // the command and its rows
};

}  // namespace quordalvane::render
