#pragma once

#include <cstdint>
#include <memory>
#include <span>

#include "render/Output.h"

namespace quordalvane::render {

/// The most pixels of a picture: a photograph has fewer, and a small file can claim any number.
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

  /// Writes the next row, a byte a pixel, 0 black and 255 white. `grey` has room for `width()`.
  /// May be called `height()` times. Throws RenderError if the file is damaged.
  virtual void read(std::span<std::uint8_t> grey) = 0;
};

/// The picture in a PNG or JPEG file; the first bytes show which it is. `file` must outlive it.
/// A JPEG file may be read at a smaller scale, but never smaller than `leastWidth`.
/// Throws RenderError if it is neither, is damaged, or has more than `mostPixels`.
std::unique_ptr<Picture> openPicture(ByteView file, unsigned leastWidth);

}  // namespace quordalvane::render
