#include "render/RasterPage.h"

#include <utility>

namespace quordalvane::render {

RasterPage::RasterPage(unsigned pageDots, unsigned headDots, Output output)
    : skipped_(pageDots > headDots ? (pageDots - headDots) / 2 : 0),
      dither_(DitherKind::FloydSteinberg, headDots),
      bands_(headDots, std::move(output)) {}

std::size_t RasterPage::mostBytes(std::size_t rows, unsigned headDots) {
  return rows * (headDots / 8) + (rows / RasterBands::mostRows + 1) * RasterBands::commandBytes;
}

}  // namespace quordalvane::render
