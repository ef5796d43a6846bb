#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "render/Output.h"

namespace quordalvane::render {

/// Turns rows of dots into raster images of at most 255 rows, called bands. Many printers print a
/// longer image wrongly. Only one band is kept in memory, so a page may have any length.
///
///     RasterBands bands(576, output);
///     for (ByteView row : rows) { bands.add(row); }
///     bands.end();
class RasterBands {
 public:
  static constexpr std::size_t mostRows = 255;
  static constexpr std::size_t commandBytes = 8;

  enum class Top { LeaveOutWhite, KeepWhite };

  /// `width` is in dots and must be a multiple of 8. With `Top::LeaveOutWhite` white rows above the
  /// first black dot are left out.
  RasterBands(unsigned width, Output output, Top top = Top::LeaveOutWhite);

  /// Adds a row of `width` / 8 bytes. The highest bit of a byte is its leftmost dot; 1 is black.
  /// White rows are kept back until a row with a black dot follows them, or until `flush`.
  void add(ByteView dots);

  /// Sends all rows so far, including white rows at the end. To be called before anything other
  /// than a row is printed.
  void flush();

  /// Sends the remaining rows, except white rows at the end.
  void end();

 private:
  void append(ByteView dots);
  void appendWhite();
  void sendBand();

  unsigned rowBytes_;
  Output output_;
  bool keepsWhite_;
  std::uint64_t whiteRows_ = 0;
  unsigned rows_ = 0;               // number of rows in the band
  std::vector<std::uint8_t> band_;  // the raster command and its rows
};

}  // namespace quordalvane::render
