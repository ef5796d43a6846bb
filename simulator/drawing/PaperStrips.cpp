#include "simulator/drawing/PaperStrips.h"

#include <algorithm>
#include <utility>

#include "simulator/drawing/PaperPainter.h"
#include "simulator/drawing/Plane.h"
#include "simulator/drawing/PngWriter.h"

namespace quordalvane::simulator {
namespace {

Palette greys() {
  Palette palette{};
  for (std::size_t i = 0; i < palette.size(); ++i) {
    palette[i] = static_cast<std::uint32_t>((255 - i) * 0x010101);
  }
  return palette;
}

}  // namespace

PaperStrips::Change PaperStrips::add(std::vector<PaperItem> items) {
  Change change;
  unsigned top = layout_.end();
  for (PaperItem& item : items) {
    top = std::min(top, layout_.position());
    items_.push_back(std::move(item));
    layout_.add(items_.back());
    if (const auto* cut = std::get_if<Cut>(&items_.back())) {
      change.cuts.push_back({layout_.position(), cut->partial});
    }
  }
  for (; top < layout_.end(); top += mostRows) {
    change.strips.push_back(draw(top, std::min(mostRows, layout_.end() - top)));
  }
  return change;
}

Strip PaperStrips::draw(unsigned row, unsigned height) const {
  static const Palette palette = greys();
  Plane plane(width_, height);
  paint(plane, layout_, row);
  PngWriter writer(width_, height, palette);
  for (unsigned y = 0; y < height; ++y) {
    writer.add(plane.row(y));
  }
  return {row, height, writer.finish()};
}

}  // namespace quordalvane::simulator
