#include "tools/printer-app/RasterFile.h"

#include <fcntl.h>
#include <unistd.h>

#include "render/PictureSize.h"
#include "render/RenderError.h"

namespace quordalvane::printer_app {
namespace {

bool isGrey(const cups_page_header2_t& page) {
  const bool isOfGreys =
      page.cupsColorSpace == CUPS_CSPACE_SW || page.cupsColorSpace == CUPS_CSPACE_W;
  return isOfGreys && page.cupsBitsPerPixel == 8 && page.cupsBytesPerLine == page.cupsWidth;
}

}  // namespace

RasterFile::RasterFile(const char* path)
    : file_(::open(path, O_RDONLY | O_CLOEXEC)), raster_(cupsRasterOpen(file_, CUPS_RASTER_READ)) {
  if (raster_ == nullptr) {
    ::close(file_);
    throw render::RenderError("the document is not raster data, or cannot be read");
  }
}

RasterFile::~RasterFile() {
  ::close(file_);
}

bool RasterFile::nextPage() {
  if (cupsRasterReadHeader2(raster_.get(), &header_) == 0) {
    return false;
  }
  render::checkSize(width(), height());
  if (!isGrey(header_)) {
    throw render::RenderError("a page of raster data must have 8 bits of grey per pixel");
  }
  row_.resize(header_.cupsBytesPerLine);
  return true;
}

render::ByteView RasterFile::nextRow() {
  if (cupsRasterReadPixels(raster_.get(), row_.data(), header_.cupsBytesPerLine) !=
      header_.cupsBytesPerLine) {
    throw render::RenderError("the document is incomplete; nothing was printed");
  }
  return row_;
}

}  // namespace quordalvane::printer_app
