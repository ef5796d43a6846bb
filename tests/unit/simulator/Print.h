#pragma once

#include <string>

#include "simulator/TextRendering.h"
#include "simulator/drawing/ImageRendering.h"
#include "tests/unit/simulator/Session.h"

namespace quordalvane::simulator {

/// A job on narrow paper, as text and as dots.
class Print {
 public:
  explicit Print(const Bytes& job, const PrinterBuilder& printer = PrinterBuilder().narrowPaper())
      : session_(printer) {
    session_.send(job);
    picture_ = renderPicture(session_.printer.paper());
  }
  explicit Print(std::string_view hexText) : Print(hex(hexText)) {}

  const Paper& paper() const { return session_.printer.paper(); }
  const Picture& picture() const { return picture_; }
  std::string text() const { return renderText(paper()); }

  /// Returns how dark a dot is: 0 is white, 255 is black. `x` counts from the left edge of the
  /// print, `y` from the first line.
  unsigned darkness(unsigned x, unsigned y) const {
    return 0xffU - (picture_.pixels.at((paperTop + y) * picture_.width + leftEdge + x) & 0xffU);
  }

  bool dark(unsigned x, unsigned y) const { return darkness(x, y) > 0x7f; }

  std::size_t darkIn(unsigned x, unsigned y, unsigned width, unsigned height) const {
    std::size_t count = 0;
    for (unsigned row = y; row < y + height; ++row)
      for (unsigned column = x; column < x + width; ++column)
        count += dark(column, row) ? 1U : 0U;
    return count;
  }

  /// Returns a part of row `y` as text: '#' for a dark dot, '.' for any other.
  std::string row(unsigned y, unsigned x, unsigned width) const {
    std::string dots;
    for (unsigned i = x; i < x + width; ++i)
      dots += dark(i, y) ? '#' : '.';
    return dots;
  }

  static constexpr unsigned leftEdge = 48;  // dots from the picture's left edge to the print
  static constexpr unsigned paperTop = 36;  // dots from the picture's top to the first line

 private:
  Session session_;
  Picture picture_;
};

}  // namespace quordalvane::simulator
