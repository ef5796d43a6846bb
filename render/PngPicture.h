#pragma once

#include <memory>

#include "render/Picture.h"

namespace quordalvane::render {

/// A PNG file, decoded as a whole when it is opened. Transparent parts are shown on white.
class PngPicture : public Picture {
 public:
  explicit PngPicture(ByteView file);
  ~PngPicture() override;

  unsigned width() const override;
  unsigned height() const override;
  void read(std::span<std::uint8_t> grey) override;

 private:
  struct Surface;
  std::unique_ptr<Surface> surface_;
  unsigned row_ = 0;
};

}  // namespace quordalvane::render
