#pragma once

#include <memory>
#include <vector>

#include "render/Orientation.h"
#include "render/Picture.h"

namespace quordalvane::render {

/// A picture that is turned upright. All of its pixels are kept in memory, one byte each.
class TurnedPicture : public Picture {
 public:
  /// Reads all of `picture`. Throws the exceptions of `Picture::read`.
  TurnedPicture(Picture& picture, Orientation orientation);

  unsigned width() const override { return turn_.isTransposed ? rows_ : columns_; }
  unsigned height() const override { return turn_.isTransposed ? columns_ : rows_; }
  void read(std::span<std::uint8_t> grey) override;

 private:
  const Orientation turn_;
  const unsigned columns_;  // the number of pixel columns in the file
  const unsigned rows_;     // the number of pixel rows in the file
  std::vector<std::uint8_t> pixels_;
  unsigned row_ = 0;
};

}  // namespace quordalvane::render
