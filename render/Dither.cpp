#include "render/Dither.h"

#include <algorithm>
#include <cstring>

namespace quordalvane::render {
namespace {

constexpr int white = 255;
constexpr int middle = 128;
constexpr std::size_t patternSize = 8;

// As a square of 8 by 8 dots darkens, its dots become black one after another. Returns the number
// of a dot in this order. The number interleaves the bits of y and of x XOR y, the lowest bits
// first, so that neighbouring dots have distant numbers.
constexpr int rank(std::size_t x, std::size_t y) {
  std::size_t value = 0;
  for (unsigned bit = 0; bit < 3; ++bit) {
    value = value << 2U | ((x ^ y) >> bit & 1U) << 1U | (y >> bit & 1U);
  }
  return static_cast<int>(value);
}

// Returns the position of the first pixel that is not white, or `grey.size()` if there is none. The
// search begins at `x`. Most of a page is white, so eight pixels are compared at once.
std::size_t endOfWhite(ByteView grey, std::size_t x) {
  for (std::uint64_t eight = 0; x + sizeof eight <= grey.size(); x += sizeof eight) {
    std::memcpy(&eight, &grey[x], sizeof eight);
    if (eight != ~std::uint64_t{0}) {
      break;
    }
  }
  while (x < grey.size() && grey[x] == white) {
    ++x;
  }
  return x;
}

}  // namespace

Dither::Dither(DitherKind kind, unsigned width)
    : kind_(kind), width_(width), dots_(width / 8), errors_(width + 2), nextErrors_(width + 2) {}

ByteView Dither::dots(ByteView grey) {
  std::ranges::fill(dots_, std::uint8_t{0});
  const ByteView shown = grey.first(std::min(grey.size(), width_));
  if (kind_ == DitherKind::FloydSteinberg) {
    spreadErrors(shown);
  } else {
    compareWithPattern(shown);
  }
  ++row_;
  return dots_;
}

void Dither::spreadErrors(ByteView grey) {
  std::ranges::fill(nextErrors_, 0);
  for (std::size_t x = endOfWhite(grey, 0); x < grey.size(); x = endOfWhite(grey, x + 1)) {
    if (grey[x] == 0) {
      blacken(x);
      continue;
    }
    const int wanted = grey[x] + errors_[x + 1] / 16;
    const bool isBlack = wanted < middle;
    if (isBlack) {
      blacken(x);
    }
    const int error = wanted - (isBlack ? 0 : white);
    errors_[x + 2] += error * 7;
    nextErrors_[x] += error * 3;
    nextErrors_[x + 1] += error * 5;
    nextErrors_[x + 2] += error;
  }
  errors_.swap(nextErrors_);
}

void Dither::compareWithPattern(ByteView grey) {
  for (std::size_t x = 0; x < grey.size(); ++x) {
    // The thresholds are 2 to 254, so white never gives a dot and black always does.
    const int threshold = rank(x % patternSize, row_ % patternSize) * 4 + 2;
    if (grey[x] < threshold) {
      blacken(x);
    }
  }
}

void Dither::blacken(std::size_t x) {
  dots_[x / 8] = static_cast<std::uint8_t>(dots_[x / 8] | 0x80U >> x % 8);
}

}  // namespace quordalvane::render
