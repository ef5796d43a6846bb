#pragma once

#include <cstdint>
#include <memory>
#include <span>

#include "render/Output.h"

namespace quordalvane::render {

/// The maximum number of pixels of a picture. Photographs have fewer, but even a small file can
/// claim any number.
inline constexpr std::uint64_t mostPixels = 64'000'000;

/// A picture that is read row by row, from the top.
class Picture {
 public:
  Picture() = default;
  virtual ~Picture() = default;
  Picture(const Picture&) = delete;
  Picture& operator=(const Picture&) = delete;

  virtual unsigned width() const = 0;   ///< in pixels, 1 or more
  virtual unsigned height() const = 0;  ///< in pixels, 1 or more

  /// Writes the next row to `grey`, one byte for each pixel; 0 is black and 255 white. `grey` must
  /// have room for `width()` bytes. May be called `height()` times. Throws RenderError if the file
  /// is damaged.
  virtual void read(std::span<std::uint8_t> grey) = 0;
};

/// Opens the picture in a PNG or JPEG file, whose first bytes show its format. `file` must outlive
/// the picture. A JPEG picture may be scaled down, but never to less than `leastWidth`. A picture
/// is turned upright if the camera has recorded how the camera was held. Throws RenderError if the
/// file is neither PNG nor JPEG, is damaged, or has more than `mostPixels`.
std::unique_ptr<Picture> openPicture(ByteView file, unsigned leastWidth);

}  // namespace quordalvane::render
