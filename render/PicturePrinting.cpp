#include "render/PicturePrinting.h"

#include "render/Picture.h"
#include "render/RasterBands.h"
#include "render/RowScaler.h"

namespace quordalvane::render {

void printPicture(ByteView file, unsigned width, DitherKind dither, const Output& output) {
  const auto picture = openPicture(file, width);
  RowScaler rows(*picture, width);
  Dither dots(dither, width);
  RasterBands bands(width, output);
  for (unsigned row = 0; row < rows.height(); ++row) {
    bands.add(dots.dots(rows.next()));
  }
  bands.end();
}

}  // namespace quordalvane::render
