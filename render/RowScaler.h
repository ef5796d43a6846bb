#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "render/Output.h"
#include "render/Picture.h"

namespace quordalvane::render {

/// Scales a picture down to the width of the paper: each pixel is the mean of those that it covers.
/// A picture that fits is not changed. It holds one row.
class RowScaler {
 public:
  /// `picture` must outlive this.
  RowScaler(Picture& picture, unsigned mostWidth);

  unsigned height() const { return height_; }

  /// The next row, as wide as the scaled picture; valid until the next call. May be called
  /// `height()` times. Throws as the picture does.
  ByteView next();

 private:
  void addSourceRow();

  Picture& picture_;
  unsigned width_;
  unsigned height_;
  unsigned row_ = 0;
  unsigned sourceRow_ = 0;
  std::vector<std::size_t> edges_;  // where each pixel begins in the source, and the end
  std::vector<std::uint8_t> source_;
  std::vector<std::uint64_t> sums_;
  std::vector<std::uint8_t> scaled_;
};

}  // namespace quordalvane::render
