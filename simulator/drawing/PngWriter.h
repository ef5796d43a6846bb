#pragma once

#include <array>
#include <cstdint>
#include <memory>

#include "simulator/Bytes.h"

namespace quordalvane::simulator {

/// The colour 0x00RRGGBB for each value of a dot.
using Palette = std::array<std::uint32_t, 256>;

/// Writes a picture as a PNG file, row by row. Each byte of a row is one dot. Even for a very
/// long picture, only the compressed file is kept in memory.
class PngWriter {
 public:
  PngWriter(unsigned width, unsigned height, const Palette& palette);
  ~PngWriter();
  PngWriter(const PngWriter&) = delete;
  PngWriter& operator=(const PngWriter&) = delete;

  /// Adds the next row, which must be as wide as the picture.
  void add(ByteView row);

  /// Returns the file; empty if it could not be created, for example for lack of memory. To be
  /// called after the last row.
  Bytes finish();

 private:
  struct Stream;

  void chunk(const char* type, ByteView data);
  void compress(ByteView data, bool last);
  void startPiece();

  std::unique_ptr<Stream> stream_;
  Bytes file_;
};

}  // namespace quordalvane::simulator
