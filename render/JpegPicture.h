#pragma once

#include <memory>

#include "render/Picture.h"

namespace quordalvane::render {

/// A picture in a JPEG file, which is decoded row by row.
class JpegPicture : public Picture {
 public:
  JpegPicture(ByteView file, unsigned leastWidth);
  ~JpegPicture() override;

  unsigned width() const override;
  unsigned height() const override;
  void read(std::span<std::uint8_t> grey) override;

 private:
  struct Decoder;
  std::unique_ptr<Decoder> decoder_;
};

}  // namespace quordalvane::render
