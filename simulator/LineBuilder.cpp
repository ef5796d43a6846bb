#include "simulator/LineBuilder.h"

#include <algorithm>

#include "simulator/TextDecoder.h"

namespace quordalvane::simulator {

LineItem& LineBuilder::begin(LineItem item) {
  if (line_.items.empty()) {
    line_.alignment = alignment_;
  }
  line_.items.push_back(std::move(item));
  return line_.items.back();
}

void LineBuilder::add(std::u32string_view text, const TextStyle& style, Paper& paper) {
  TextStyle own = style;
  for (char32_t character : text) {
    own.wide = style.wide || isWide(character);
    if (position_ > 0 && position_ + own.cellWidth() > paperWidth_) {
      end(paper);
    }
    addCharacter(character, own);
  }
}

// Of the pieces of a line at most one a dot lie side by side. The rest lies on top of others, and a
// job may continue with that for ever; after some layers no more is visible.
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
  const unsigned room = paperWidth_ - std::min(position_, paperWidth_);
  const unsigned width = std::min(dots.width, room);
  if (width == 0 || isFull()) {
    return;
  }
  const unsigned x = position_;
  position_ += width;
  begin({x, std::move(dots)});
}

void LineBuilder::moveTo(unsigned x) {
  if (x < paperWidth_) {
    position_ = x;
  }
}

void LineBuilder::tab(unsigned cellWidth) {
  const unsigned stop = 8 * cellWidth;
  moveTo((position_ / stop + 1) * stop);
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
