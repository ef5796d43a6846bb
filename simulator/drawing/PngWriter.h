#pragma once

#include <array>
#include <cstdint>
#include <memory>

#include "simulator/Bytes.h"

namespace quordalvane::simulator {

/// Colours 0x00RRGGBB, one for each value of a dot.
using Palette = std::array<std::uint32_t, 256>;

/// Writes a picture of one byte a dot as a PNG file, row by row, so that a picture of any length
/// takes no more memory than its file.
class PngWriter {
 public:
  PngWriter(unsigned width, unsigned height, const Palette& palette);
  ~PngWriter();
  PngWriter(const PngWriter&) = delete;
  PngWriter& operator=(const PngWriter&) = delete;

  /// Adds the next row, of the picture's width.
  void add(ByteView row);

  /// The file, after the last row; empty if it could not be made, as without memory.
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
