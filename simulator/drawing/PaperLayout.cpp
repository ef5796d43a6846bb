#include "simulator/drawing/PaperLayout.h"

#include <algorithm>
#include <cstdint>

namespace quordalvane::simulator {
namespace {

constexpr unsigned partialCut = 16;
constexpr unsigned textHeight = 24;

unsigned textHeightOf(const Symbol& symbol) {
  const unsigned texts = (symbol.textAbove ? 1U : 0U) + (symbol.textBelow ? 1U : 0U);
  return texts * (textHeight + symbolSpace);
}

unsigned pageHeight(const Page& page, const std::vector<std::shared_ptr<PaperLayout>>& areas) {
  unsigned end = 0;
  for (std::size_t i = 0; i < areas.size(); ++i) {
    const PageArea& area = page.areas[i];
    const bool isCutShort = page.endsWithPrint && area.direction == 0;
    end = std::max(end,
                   area.y + (isCutShort ? std::min(areas[i]->bottom(), area.height) : area.height));
  }
  return end;
}

bool isFullCut(const PaperItem& item) {
  const auto* cut = std::get_if<Cut>(&item);
  return cut != nullptr && !cut->partial;
}

}  // namespace

PaperLayout::PaperLayout(unsigned top, Margins margins)
    : margins_(margins), begin_(top), y_(top + margins.end), end_(y_) {}

PaperLayout::PaperLayout(const Paper& paper, unsigned top, Margins margins)
    : PaperLayout(top, margins) {
  for (const PaperItem& item : paper.items()) {
    add(item);
  }
  endPiece(false);
}

void PaperLayout::add(const PaperItem& item) {
  if (isFullCut(item)) {
    endPiece(true);
  } else {
    place(item);
  }
}

void PaperLayout::place(const PaperItem& item) {
  if (const auto* feed = std::get_if<Feed>(&item)) {
    return moveOn(feed->dots);
  }
  if (const auto* target = std::get_if<MoveTo>(&item)) {
    y_ = begin_ + margins_.end + target->dots;
    return;
  }
  PlacedItem placed{static_cast<int>(y_), 0, &item};
  placed.height = heightOf(placed);
  items_.push_back(std::move(placed));
  moveOn(static_cast<int>(items_.back().height));
}

unsigned PaperLayout::heightOf(PlacedItem& placed) const {
  if (const auto* line = std::get_if<Line>(placed.item)) {
    return line->height();
  }
  if (const auto* symbol = std::get_if<Symbol>(placed.item)) {
    placed.symbol = encode(*symbol);
    const unsigned height =
        placed.symbol ? placed.symbol->heightIn(*symbol) + textHeightOf(*symbol) : textHeight;
    return height + 2 * symbolSpace;
  }
  if (const auto* page = std::get_if<Page>(placed.item)) {
    for (const PageArea& area : page->areas) {
      placed.areas.push_back(std::make_shared<PaperLayout>(*area.content, 0, Margins{}));
    }
    return pageHeight(*page, placed.areas);
  }
  return partialCut;
}

// Moves the position, but never back past the beginning of the piece.
void PaperLayout::moveOn(int dots) {
  const auto top = static_cast<std::int64_t>(begin_) + margins_.end;
  y_ = static_cast<unsigned>(std::max<std::int64_t>(std::int64_t{y_} + dots, top));
  end_ = std::max(end_, y_);
}

void PaperLayout::endPiece(bool cut) {
  const bool isEmpty = end_ == begin_ + margins_.end;
  if (isEmpty) {
    return;
  }
  pieces_.push_back({begin_, end_ + margins_.end, cut});
  begin_ = end_ + margins_.end + margins_.gap;
  y_ = begin_ + margins_.end;
  end_ = y_;
}

}  // namespace quordalvane::simulator
