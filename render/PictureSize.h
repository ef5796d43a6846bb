#pragma once

#include <cstdint>
#include <string>

#include "render/Picture.h"
#include "render/RenderError.h"

namespace quordalvane::render {

/// The maximum number of pixels in a row, the same as in JPEG. The width is limited because a row
/// is kept in memory.
inline constexpr std::uint64_t mostWidth = 65535;

/// Throws RenderError if the width or height is 0 or the picture is too large. To be called before
/// memory is allocated for the picture.
inline void checkSize(std::uint64_t width, std::uint64_t height) {
  if (width == 0 || height == 0) {
    throw RenderError("the picture has no pixels");
  }
  if (width > mostWidth || height > mostPixels || width * height > mostPixels) {
    throw RenderError("the picture has " + std::to_string(width) + " x " + std::to_string(height) +
                      " pixels; the most is " + std::to_string(mostPixels) + " in all, and " +
                      std::to_string(mostWidth) + " in a row");
  }
}

}  // namespace quordalvane::render
