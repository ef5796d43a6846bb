#pragma once

#include <string_view>

#include "simulator/Paper.h"

namespace quordalvane::simulator {

/// The line that is being set: collects text and small pictures until the line ends or is full, and
/// hands whole lines to the paper.
class LineBuilder {
 public:
  explicit LineBuilder(unsigned paperWidth) : paperWidth_(paperWidth) {}

  /// Adds text; the part that does not fit starts a new line on `paper`.
  void add(std::u32string_view text, const TextStyle& style, Paper& paper);

  /// Adds dots at the current position, cut off at the edge of the paper.
  void add(Bitmap dots);

  /// Continues `x` dots from the left end; beyond the paper it does nothing.
  void moveTo(unsigned x);

  /// Moves to the next tab stop, one every eight characters of `cellWidth` dots.
  void tab(unsigned cellWidth);

  /// Ends the line: moves the paper on, whether or not there is anything on it.
  void end(Paper& paper);

  /// Ends the line if there is anything on it.
  void endIfBegun(Paper& paper);

  bool empty() const { return line_.items.empty(); }
  unsigned position() const { return position_; }

  /// Holds for the current line if nothing is on it yet, otherwise from the next line on.
  void setAlignment(Alignment alignment) { alignment_ = alignment; }
  Alignment alignment() const { return alignment_; }
  void setSpacing(unsigned dots) { spacing_ = dots; }
  unsigned spacing() const { return spacing_; }

 private:
  bool isFull() const;
  LineItem& begin(LineItem item);
  void addCharacter(char32_t character, const TextStyle& style);

  unsigned paperWidth_;
  Line line_;
  unsigned position_ = 0;
  Alignment alignment_ = Alignment::Left;
  unsigned spacing_ = lineSpacing;
};

}  // namespace quordalvane::simulator
