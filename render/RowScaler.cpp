#include "render/RowScaler.h"

#include <algorithm>

namespace quordalvane::render {
namespace {

// A source line of `whole` pixels is scaled to a line of `parts` pixels. Returns the position in
// the source line at which the scaled pixel with the index `number` begins.
unsigned begin(std::uint64_t number, unsigned whole, unsigned parts) {
  return static_cast<unsigned>(number * whole / parts);
}

}  // namespace

RowScaler::RowScaler(Picture& picture, unsigned mostWidth)
    : picture_(picture),
      width_(std::min(picture.width(), mostWidth)),
      height_(std::max(1U, begin(picture.height(), width_, picture.width()))),
      source_(picture.width()),
      sums_(width_),
      scaled_(width_) {
  for (unsigned x = 0; x <= width_; ++x) {
    edges_.push_back(begin(x, picture.width(), width_));
  }
}

ByteView RowScaler::next() {
  std::ranges::fill(sums_, std::uint64_t{0});
  ++row_;
  const unsigned end = begin(row_, picture_.height(), height_);
  const unsigned rows = end - sourceRow_;
  while (sourceRow_ < end) {
    addSourceRow();
  }
  for (unsigned x = 0; x < width_; ++x) {
    scaled_[x] = static_cast<std::uint8_t>(sums_[x] / ((edges_[x + 1] - edges_[x]) * rows));
  }
  return scaled_;
}

void RowScaler::addSourceRow() {
  picture_.read(source_);
  ++sourceRow_;
  for (unsigned x = 0; x < width_; ++x) {
    for (std::size_t from = edges_[x]; from < edges_[x + 1]; ++from) {
      sums_[x] += source_[from];
    }
  }
}

}  // namespace quordalvane::render
