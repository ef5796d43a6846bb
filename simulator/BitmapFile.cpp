#include "simulator/BitmapFile.h"

#include <algorithm>
#include <cstdlib>

namespace quordalvane::simulator {
namespace {

constexpr std::size_t headerSize = 54;
constexpr unsigned mostWidth = 8192;
constexpr unsigned mostHeight = 8192;

std::uint32_t number(ByteView file, std::size_t at, unsigned bytes) {
  std::uint32_t value = 0;
  for (unsigned i = 0; i < bytes; ++i) {
    value |= std::uint32_t{file[at + i]} << 8U * i;
  }
  return value;
}

/// Reads the dots of a file whose header is valid.
class Reader {
 public:
  explicit Reader(ByteView file)
      : file_(file),
        palette_(14 + std::size_t{number(file, 14, 4)}),
        dots_(number(file, 10, 4)),
        width_(number(file, 18, 4)),
        height_(static_cast<std::int32_t>(number(file, 22, 4))),
        depth_(number(file, 28, 2)) {}

  bool isRight() const {
    const bool hasDepth = depth_ == 1 || depth_ == 4 || depth_ == 8 || depth_ == 24;
    const bool isPlain = number(file_, 30, 4) == 0;
    const bool fits = width_ >= 1 && width_ <= mostWidth && height_ != 0 && rows() <= mostHeight;
    return hasDepth && isPlain && fits && dots_ + stride() * rows() <= file_.size();
  }

  Bitmap picture() const {
    Bitmap picture(std::min(width_, widePaperDots), rows());
    for (unsigned y = 0; y < picture.height; ++y) {
      for (unsigned x = 0; x < picture.width; ++x) {
        if (isDark(x, y)) {
          picture.blacken(x, y);
        }
      }
    }
    return picture;
  }

 private:
  // A negative height means that the top row is the first in the file.
  unsigned rows() const { return static_cast<unsigned>(std::abs(std::int64_t{height_})); }

  // Each row is padded to a multiple of four bytes.
  std::size_t stride() const { return (std::size_t{width_} * depth_ + 31) / 32 * 4; }

  bool isDark(unsigned x, unsigned y) const {
    const std::size_t row = dots_ + stride() * (height_ < 0 ? y : rows() - 1 - y);
    if (depth_ == 24) {
      return isDarkColour(row + std::size_t{3} * x);
    }
    const unsigned perByte = 8 / depth_;
    const unsigned shift = 8 - depth_ * (x % perByte + 1);
    const unsigned dots = file_[row + x / perByte];
    const unsigned index = dots >> shift & ((1U << depth_) - 1);
    const std::size_t colour = palette_ + std::size_t{4} * index;
    return colour + 4 <= dots_ && isDarkColour(colour);
  }

  // Weighs blue, green and red by their brightness to the eye.
  bool isDarkColour(std::size_t at) const {
    return 114U * file_[at] + 587U * file_[at + 1] + 299U * file_[at + 2] < 127'500;
  }

  ByteView file_;
  std::size_t palette_;
  std::size_t dots_;
  unsigned width_;
  std::int32_t height_;
  unsigned depth_;
};

}  // namespace

Bitmap fromBitmapFile(ByteView file) {
  if (file.size() < headerSize || file[0] != 'B' || file[1] != 'M') {
    return {};
  }
  const Reader reader(file);
  return reader.isRight() ? reader.picture() : Bitmap();
}

}  // namespace quordalvane::simulator
