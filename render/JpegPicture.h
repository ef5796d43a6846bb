#pragma once

#include <memory>

#include "render/Orientation.h"
#include "render/Picture.h"

namespace quordalvane::render {

/// A picture in a JPEG file, which is decoded row by row. The rows are as the camera wrote them, so
/// the picture may not be upright.
class JpegPicture : public Picture {
 public:
  JpegPicture(ByteView file, unsigned leastWidth);
  ~JpegPicture() override;

  unsigned width() const override;
  unsigned height() const override;
  void read(std::span<std::uint8_t> grey) override;

  Orientation orientation() const;

 private:
  struct Decoder;
  std::unique_ptr<Decoder> decoder_;
};

}  // namespace quordalvane::render
