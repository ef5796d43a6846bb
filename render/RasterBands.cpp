#include "render/RasterBands.h"

#include <algorithm>
#include <utility>

namespace quordalvane::render {
namespace {

bool isWhite(ByteView dots) {
  return std::ranges::all_of(dots, [](std::uint8_t byte) { return byte == 0; });
}

}  // namespace

RasterBands::RasterBands(unsigned width, Output output, Top top)
    : rowBytes_(width / 8), output_(std::move(output)), keepsWhite_(top == Top::KeepWhite) {
  band_.reserve(commandBytes + mostRows * rowBytes_);
}

void RasterBands::add(ByteView dots) {
  if (isWhite(dots)) {
    whiteRows_ += keepsWhite_ ? 1 : 0;
    return;
  }
  appendWhite();
  append(dots);
}

void RasterBands::flush() {
  appendWhite();
  sendBand();
}

void RasterBands::end() {
  whiteRows_ = 0;
  sendBand();
}

void RasterBands::append(ByteView dots) {
  if (rows_ == 0) {
    band_ = {0x1d,
             0x76,
             0x30,
             0x00,
             static_cast<std::uint8_t>(rowBytes_ & 0xffU),
             static_cast<std::uint8_t>(rowBytes_ >> 8U),
             0,
             0};
  }
  band_.insert(band_.end(), dots.begin(), dots.end());
  keepsWhite_ = true;
  if (++rows_ == mostRows) {
    sendBand();
  }
}

void RasterBands::appendWhite() {
  const std::vector<std::uint8_t> white(rowBytes_);
  for (; whiteRows_ > 0; --whiteRows_) {
    append(white);
  }
}

void RasterBands::sendBand() {
  if (rows_ > 0) {
    band_[6] = static_cast<std::uint8_t>(rows_);
    output_(band_);
    rows_ = 0;
  }
}

}  // namespace quordalvane::render
