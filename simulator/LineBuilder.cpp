#include "simulator/LineBuilder.h"

#include <algorithm>

#include "simulator/TextDecoder.h"

namespace quordalvane::simulator {

// Returns the width that is left for text. A margin is limited, so that at least a letter fits.
unsigned LineBuilder::room() const {
  constexpr unsigned least = 12;
  const unsigned left = std::min(left_, paperWidth_ - least);
  const unsigned rest = paperWidth_ - left;
  return width_ == 0 ? rest : std::clamp(width_, least, rest);
}

LineItem& LineBuilder::begin(LineItem item) {
  if (line_.items.empty()) {
    line_.place = place();
    line_.upsideDown = upsideDown_;
  }
  line_.items.push_back(std::move(item));
  return line_.items.back();
}

void LineBuilder::add(std::u32string_view text, const TextStyle& style, Paper& paper) {
  TextStyle own = style;
  for (char32_t character : text) {
    own.wide = style.wide || isWide(character);
    if (position_ > 0 && position_ + own.cellWidth() > room()) {
      end(paper);
    }
    addCharacter(character, own);
  }
}

// Returns true if further pieces are useless. Each piece is at least one dot wide. So a line of n
// dots has space for at most n pieces side by side, and further pieces are printed over earlier
// pieces. A job could add such layers for ever, but after a few layers no change is visible.
bool LineBuilder::isFull() const {
  constexpr std::size_t mostLayers = 8;
  return line_.items.size() >= mostLayers * paperWidth_;
}

void LineBuilder::addCharacter(char32_t character, const TextStyle& style) {
  TextRun* run = nullptr;
  if (!line_.items.empty()) {
    LineItem& last = line_.items.back();
    run = std::get_if<TextRun>(&last.content);
    const bool continues = run != nullptr && run->style == style &&
                           last.x + run->text.size() * style.cellWidth() == position_;
    if (!continues) {
      run = nullptr;
    }
  }
  if (run == nullptr && !isFull()) {
    run = &std::get<TextRun>(begin({position_, TextRun{{}, style}}).content);
  }
  if (run != nullptr) {
    run->text += character;
  }
  position_ += style.cellWidth();
}

void LineBuilder::add(Bitmap dots) {
  const unsigned rest = room() - std::min(position_, room());
  const unsigned width = std::min(dots.width, rest);
  if (width == 0 || isFull()) {
    return;
  }
  const unsigned x = position_;
  position_ += width;
  begin({x, std::move(dots)});
}

void LineBuilder::moveTo(unsigned x) {
  if (x < room()) {
    position_ = x;
  }
}

void LineBuilder::tab(unsigned cellWidth) {
  const auto next = std::upper_bound(tabs_.begin(), tabs_.end(), position_);
  if (next != tabs_.end()) {
    moveTo(*next);
  } else if (tabs_.empty()) {
    const unsigned stop = 8 * cellWidth;
    moveTo((position_ / stop + 1) * stop);
  }
}

void LineBuilder::end(Paper& paper) {
  if (line_.items.empty()) {
    paper.feed(spacing_);
  } else {
    line_.leastHeight = spacing_;
    paper.add(std::move(line_));
  }
  line_ = Line{};
  position_ = 0;
}

void LineBuilder::endIfBegun(Paper& paper) {
  if (!line_.items.empty()) {
    end(paper);
  }
  position_ = 0;
}

}  // namespace quordalvane::simulator
