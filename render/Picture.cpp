#include "render/Picture.h"

#include <algorithm>
#include <array>

#include "render/JpegPicture.h"
#include "render/PngPicture.h"
#include "render/RenderError.h"
#include "render/TurnedPicture.h"

namespace quordalvane::render {
namespace {

constexpr std::array<std::uint8_t, 8> pngSign = {0x89, 'P', 'N', 'G', 0x0d, 0x0a, 0x1a, 0x0a};
constexpr std::array<std::uint8_t, 3> jpegSign = {0xff, 0xd8, 0xff};

bool startsWith(ByteView file, ByteView sign) {
  return file.size() >= sign.size() && std::ranges::equal(file.first(sign.size()), sign);
}

}  // namespace

std::unique_ptr<Picture> openPicture(ByteView file, unsigned leastWidth) {
  if (startsWith(file, pngSign)) {
    return std::make_unique<PngPicture>(file);
  }
  if (startsWith(file, jpegSign)) {
    auto picture = std::make_unique<JpegPicture>(file, leastWidth);
    const Orientation orientation = picture->orientation();
    if (orientation.isUpright()) {
      return picture;
    }
    return std::make_unique<TurnedPicture>(*picture, orientation);
  }
  throw RenderError("the data is not a picture in PNG or JPEG");
}

}  // namespace quordalvane::render
