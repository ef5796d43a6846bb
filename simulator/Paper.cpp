#include "simulator/Paper.h"

#include <algorithm>
#include <utility>

#include "text/Hex.h"

namespace quordalvane::simulator {
namespace {

constexpr std::size_t skippedKinds = 100;
constexpr std::size_t bytesThatName = 3;
constexpr unsigned mostFeed = 1U << 29U;

struct Weight {
  std::size_t operator()(const Line& line) const {
    std::size_t sum = 0;
    for (const LineItem& item : line.items) {
      const auto* run = std::get_if<TextRun>(&item.content);
      sum += sizeof item + (run != nullptr ? run->text.size() * sizeof(char32_t)
                                           : std::get<Bitmap>(item.content).rows.size());
    }
    return sum;
  }
  std::size_t operator()(const Symbol& symbol) const { return symbol.data.size(); }
  std::size_t operator()(const Page& page) const {
    std::size_t sum = 0;
    for (const PageArea& area : page.areas) {
      sum += sizeof area + area.content->weight();
    }
    return sum;
  }
  std::size_t operator()(const auto&) const { return 0; }
};

/// Returns an upper bound of the dots by which an item moves the paper.
struct Length {
  std::uint64_t operator()(const Line& line) const { return line.height(); }
  std::uint64_t operator()(const Symbol& symbol) const {
    constexpr unsigned mostRows = 200;
    const bool isBarCode = symbol.symbology < Symbology::Pdf417;
    return std::uint64_t{symbol.rowHeight} * (isBarCode ? 1 : mostRows) +
           std::uint64_t{4} * lineSpacing;
  }
  std::uint64_t operator()(const Page& page) const {
    std::uint64_t end = 0;
    for (const PageArea& area : page.areas) {
      end = std::max<std::uint64_t>(end, std::uint64_t{area.y} + area.height);
    }
    return end;
  }
  std::uint64_t operator()(const auto&) const { return 0; }
};

}  // namespace

Bitmap::Bitmap(unsigned widthInDots, unsigned heightInDots)
    : width(widthInDots), height(heightInDots), rows(stride() * heightInDots, 0) {}

bool Bitmap::black(unsigned x, unsigned y) const {
  return (rows[y * stride() + x / 8] & 0x80U >> x % 8U) != 0;
}

void Bitmap::blacken(unsigned x, unsigned y) {
  std::uint8_t& byte = rows[y * stride() + x / 8];
  byte = static_cast<std::uint8_t>(byte | 0x80U >> x % 8U);
}

unsigned LineItem::width() const {
  if (const auto* run = std::get_if<TextRun>(&content)) {
    return static_cast<unsigned>(run->text.size()) * run->style.cellWidth();
  }
  return std::get<Bitmap>(content).width;
}

unsigned LineItem::height() const {
  if (const auto* run = std::get_if<TextRun>(&content)) {
    return run->style.cellHeight();
  }
  return std::get<Bitmap>(content).height;
}

unsigned Line::width() const {
  unsigned most = 0;
  for (const LineItem& item : items) {
    most = std::max(most, item.x + item.width());
  }
  return most;
}

unsigned Line::contentHeight() const {
  unsigned most = 0;
  for (const LineItem& item : items) {
    most = std::max(most, item.height());
  }
  return most;
}

unsigned Line::height() const {
  return std::max(leastHeight, contentHeight());
}

void Paper::add(PaperItem item) {
  weight_ += sizeof item + std::visit(Weight{}, item);
  length_ += std::visit(Length{}, item);
  items_.push_back(std::move(item));
}

void Paper::feed(unsigned dots) {
  if (dots == 0) {
    return;
  }
  length_ += dots;
  const int more = static_cast<int>(std::min(dots, mostFeed));
  Feed* last = items_.empty() ? nullptr : std::get_if<Feed>(&items_.back());
  if (last == nullptr || last->dots < 0) {
    add(Feed{more});
  } else {
    last->dots = std::min(last->dots + more, static_cast<int>(mostFeed));
  }
}

void Paper::feedBack(unsigned dots) {
  if (dots > 0) {
    add(Feed{-static_cast<int>(std::min(dots, mostFeed))});
  }
}

void Paper::cut(bool partial) {
  Cut* last = items_.empty() ? nullptr : std::get_if<Cut>(&items_.back());
  if (last == nullptr) {
    add(Cut{partial});
  } else {
    last->partial = last->partial && partial;
  }
}

std::vector<Paper> piecesOf(const Paper& paper) {
  std::vector<Paper> pieces;
  Paper piece(paper.width());
  bool hasPrint = false;
  const auto endPiece = [&] {
    if (hasPrint) {
      pieces.push_back(std::move(piece));
    }
    piece = Paper(paper.width());
    hasPrint = false;
  };
  for (const PaperItem& item : paper.items()) {
    const bool isCut = std::holds_alternative<Cut>(item);
    hasPrint = hasPrint || (!isCut && !std::holds_alternative<Feed>(item));
    piece.add(item);
    if (isCut) {
      endPiece();
    }
  }
  endPiece();
  return pieces;
}

void Paper::noteSkipped(ByteView command) {
  const std::string name = hexText(command.first(std::min(command.size(), bytesThatName)), " ");
  const bool room = skipped_.size() < skippedKinds || skipped_.contains(name);
  ++skipped_[room ? name : "others"];
}

}  // namespace quordalvane::simulator
