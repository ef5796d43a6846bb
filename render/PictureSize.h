#pragma once

#include <cstdint>
#include <string>

#include "render/Picture.h"
#include "render/RenderError.h"

namespace quordalvane::render {

/// Throws RenderError if a side is 0 or the picture is too large, before memory is taken for it.
inline void checkSize(std::uint64_t width, std::uint64_t height) {
  if (width == 0 || height == 0) {
    throw RenderError("the picture has no pixels");
  }
  if (width > mostPixels || height > mostPixels || width * height > mostPixels) {
    throw RenderError("the picture has " + std::to_string(width) + " x " + std::to_string(height) +
                      " pixels; the most is " + std::to_string(mostPixels) + " in all");
  }
}

}  // namespace quordalvane::render
