#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "render/Output.h"
#include "render/Picture.h"

namespace quordalvane::render {

/// Scales a picture down to the width of the paper. Each new pixel covers some pixels of the
/// source, and is the mean of these pixels. A picture that is narrow enough is not changed. Only
/// one row is kept in memory.
class RowScaler {
 public:
  /// `picture` must outlive this object.
  RowScaler(Picture& picture, unsigned mostWidth);

  unsigned height() const { return height_; }

  /// Returns the next row, which is as wide as the scaled picture. It is valid until the next call.
  /// Must not be called more than `height()` times. Throws the exceptions of `Picture::read`.
  ByteView next();

 private:
  void addSourceRow();

  Picture& picture_;
  unsigned width_;
  unsigned height_;
  unsigned row_ = 0;
  unsigned sourceRow_ = 0;
  // Pixel x of a scaled row covers the source columns from edges_[x] to edges_[x + 1] - 1.
  std::vector<std::size_t> edges_;
  std::vector<std::uint8_t> source_;
  std::vector<std::uint64_t> sums_;
  std::vector<std::uint8_t> scaled_;
};

}  // namespace quordalvane::render
