#pragma once

#include <string_view>
#include <vector>

#include "simulator/Paper.h"

namespace quordalvane::simulator {

/// The line that is being set: collects text and small pictures until the line ends or is full, and
/// hands whole lines to the paper.
class LineBuilder {
 public:
  explicit LineBuilder(unsigned paperWidth) : paperWidth_(paperWidth) {}

  /// Continues with lines of this width; to be called between two lines.
  void setPaperWidth(unsigned dots) { paperWidth_ = dots; }

  /// Adds text; the part that does not fit starts a new line on `paper`.
  void add(std::u32string_view text, const TextStyle& style, Paper& paper);

  /// Adds dots at the current position, cut off at the edge of the print.
  void add(Bitmap dots);

  /// Continues `x` dots from the left end; beyond the paper it does nothing.
  void moveTo(unsigned x);

  /// Moves to the next tab stop; without one it does nothing.
  void tab(unsigned cellWidth);

  /// Sets the tab stops, in dots; without any there is one every eight characters.
  void setTabs(std::vector<unsigned> stops) { tabs_ = std::move(stops); }

  /// Ends the line: moves the paper on, whether or not there is anything on it.
  void end(Paper& paper);

  /// Ends the line if there is anything on it.
  void endIfBegun(Paper& paper);

  bool empty() const { return line_.items.empty(); }
  unsigned position() const { return position_; }

  /// These hold for the current line if nothing is on it yet, otherwise from the next line on.
  void setAlignment(Alignment alignment) { alignment_ = alignment; }
  void setLeftMargin(unsigned dots) { left_ = dots; }
  void setWidth(unsigned dots) { width_ = dots; }
  void setUpsideDown(bool upsideDown) { upsideDown_ = upsideDown; }

  /// The place of the next line, image or symbol across the paper.
  Place place() const { return {alignment_, left_, room()}; }

  void setSpacing(unsigned dots) { spacing_ = dots; }
  unsigned spacing() const { return spacing_; }

 private:
  unsigned room() const;
  bool isFull() const;
  LineItem& begin(LineItem item);
  void addCharacter(char32_t character, const TextStyle& style);

  unsigned paperWidth_;
  Line line_;
  unsigned position_ = 0;
  Alignment alignment_ = Alignment::Left;
  unsigned left_ = 0;
  unsigned width_ = 0;  // 0: all of the paper
  bool upsideDown_ = false;
  unsigned spacing_ = lineSpacing;
  std::vector<unsigned> tabs_;
};

}  // namespace quordalvane::simulator
