#include "simulator/GraphicsMemory.h"

#include <algorithm>

namespace quordalvane::simulator {
namespace {

// No paper is wider, so that no scale can make an image large out of few bytes.
constexpr unsigned widest = widePaperDots;

unsigned word(ByteView bytes, std::size_t at) {
  return bytes[at] + 256U * bytes[at + 1];
}

bool dot(ByteView rows, std::size_t stride, std::size_t x, std::size_t y) {
  return (rows[y * stride + x / 8] & 0x80U >> x % 8U) != 0;
}

Bitmap fromRows(ByteView rows, unsigned width, unsigned height, unsigned scaleX, unsigned scaleY) {
  const std::size_t stride = (std::size_t{width} + 7) / 8;
  if (stride == 0 || rows.size() < stride * height) {
    return {};
  }
  Bitmap image(std::min(width * scaleX, widest), height * scaleY);
  for (unsigned y = 0; y < image.height; ++y) {
    for (unsigned x = 0; x < image.width; ++x) {
      if (dot(rows, stride, x / scaleX, y / scaleY)) {
        image.blacken(x, y);
      }
    }
  }
  return image;
}

// Columns of `tall` dots, the topmost in the highest bit of a column's first byte.
Bitmap fromColumns(ByteView columns, unsigned count, unsigned tall, unsigned scaleX,
                   unsigned scaleY) {
  const std::size_t stride = (std::size_t{tall} + 7) / 8;
  if (stride == 0 || columns.size() < stride * count) {
    return {};
  }
  Bitmap image(std::min(count * scaleX, widest), tall * scaleY);
  for (unsigned y = 0; y < image.height; ++y) {
    for (unsigned x = 0; x < image.width; ++x) {
      if (dot(columns, stride, y / scaleY, x / scaleX)) {
        image.blacken(x, y);
      }
    }
  }
  return image;
}

}  // namespace

Bitmap rasterImage(ByteView command) {
  if (command.size() < 8) {
    return {};
  }
  const unsigned mode = command[3];
  return fromRows(command.subspan(8), word(command, 4) * 8, word(command, 6), mode & 1U ? 2 : 1,
                  mode & 2U ? 2 : 1);
}

Bitmap columnImage(ByteView command) {
  if (command.size() < 5) {
    return {};
  }
  const bool tall = command[2] >= 32;
  const bool dense = (command[2] & 1U) != 0;
  // A stripe of eight dots is as high as one of 24; single density is half as fine as the head.
  return fromColumns(command.subspan(5), word(command, 3), tall ? 24 : 8, dense ? 1 : 2,
                     tall ? 1 : 3);
}

GraphicsMemory::Outcome GraphicsMemory::apply(ByteView command) {
  const std::size_t header = command[1] == 0x38 ? 7 : 5;
  if (command[2] != 0x4c || command.size() < header + 2) {
    return Outcome::Unknown;
  }
  const ByteView parameters = command.subspan(header);
  switch (parameters[1]) {
    case 2:
    case 50:
      return Outcome::Print;
    case 112:
      return store(parameters, false) ? Outcome::Stored : Outcome::Unknown;
    case 113:
      return store(parameters, true) ? Outcome::Stored : Outcome::Unknown;
    default:
      return Outcome::Unknown;
  }
}

// Parameters: m fn tone scaleX scaleY colour xL xH yL yH, then the dots of one colour.
bool GraphicsMemory::store(ByteView parameters, bool byColumns) {
  if (parameters.size() < 10) {
    return false;
  }
  const unsigned scaleX = std::clamp<unsigned>(parameters[3], 1, 2);
  const unsigned scaleY = std::clamp<unsigned>(parameters[4], 1, 2);
  const unsigned width = word(parameters, 6);
  const unsigned height = word(parameters, 8);
  const ByteView dots = parameters.subspan(10);
  stored_ = byColumns ? fromColumns(dots, width, height, scaleX, scaleY)
                      : fromRows(dots, width, height, scaleX, scaleY);
  return stored_.width > 0 && stored_.height > 0;
}

}  // namespace quordalvane::simulator
