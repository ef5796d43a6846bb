#pragma once

#include <memory>
#include <vector>

#include "render/Picture.h"

namespace quordalvane::render {

/// A picture in a PNG file. It is decoded row by row; an interlaced picture is decoded as a whole
/// when its first row is read. Transparent parts appear on white.
class PngPicture : public Picture {
 public:
  explicit PngPicture(ByteView file);
  ~PngPicture() override;

  unsigned width() const override { return width_; }
  unsigned height() const override { return height_; }
  void read(std::span<std::uint8_t> grey) override;

 private:
  struct Decoder;

  ByteView nextRow();

  std::unique_ptr<Decoder> decoder_;
  unsigned width_ = 0;
  unsigned height_ = 0;
  unsigned row_ = 0;
  std::vector<std::uint8_t>
      pixels_;  // red, green, blue and alpha of one row, or of all rows if interlaced
};

}  // namespace quordalvane::render
