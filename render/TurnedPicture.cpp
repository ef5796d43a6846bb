#include "render/TurnedPicture.h"

namespace quordalvane::render {

TurnedPicture::TurnedPicture(Picture& picture, Orientation orientation)
    : turn_(orientation),
      columns_(picture.width()),
      rows_(picture.height()),
      pixels_(std::size_t{columns_} * rows_) {
  for (unsigned row = 0; row < rows_; ++row) {
    picture.read(std::span(pixels_).subspan(std::size_t{row} * columns_, columns_));
  }
}

void TurnedPicture::read(std::span<std::uint8_t> grey) {
  for (unsigned x = 0; x < width(); ++x) {
    const unsigned column = turn_.isTransposed ? row_ : x;
    const unsigned row = turn_.isTransposed ? x : row_;
    const std::size_t from = turn_.isRightFirst ? columns_ - 1 - column : column;
    const std::size_t at = turn_.isBottomFirst ? rows_ - 1 - row : row;
    grey[x] = pixels_[at * columns_ + from];
  }
  ++row_;
}

}  // namespace quordalvane::render
