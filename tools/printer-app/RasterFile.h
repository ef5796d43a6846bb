#pragma once

#include <cups/raster.h>

#include <memory>
#include <vector>

#include "render/Output.h"

namespace quordalvane::printer_app {

/// The pages of a document in PWG or Apple raster, read from its file row by row.
class RasterFile {
 public:
  /// Throws RenderError if the file cannot be read or is not raster data.
  explicit RasterFile(const char* path);
  ~RasterFile();
  RasterFile(const RasterFile&) = delete;
  RasterFile& operator=(const RasterFile&) = delete;

  /// Begins the next page, whose size is known from then on. Returns false if there is no next
  /// page. Throws RenderError if the page is too large or not grey.
  bool nextPage();

  unsigned width() const { return header_.cupsWidth; }
  unsigned height() const { return header_.cupsHeight; }

  /// Returns the next row of the page, one byte for each pixel, 0 for black and 255 for white. The
  /// row is valid until the next call. May be called `height()` times for each page. Throws
  /// RenderError if the file ends too early.
  render::ByteView nextRow();

 private:
  struct Closer {
    void operator()(cups_raster_t* raster) const { cupsRasterClose(raster); }
  };

  const int file_;
  std::unique_ptr<cups_raster_t, Closer> raster_;
  cups_page_header2_t header_{};
  std::vector<unsigned char> row_;
};

}  // namespace quordalvane::printer_app
