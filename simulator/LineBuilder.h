#pragma once

#include <string_view>
#include <vector>

#include "simulator/Paper.h"

namespace quordalvane::simulator {

/// The current line: collects text and small pictures until the line ends or is full, and adds
/// complete lines to the paper.
class LineBuilder {
 public:
  explicit LineBuilder(unsigned paperWidth) : paperWidth_(paperWidth) {}

  /// Sets the paper width of later lines. To be called between two lines.
  void setPaperWidth(unsigned dots) { paperWidth_ = dots; }

  /// Adds text. Whenever the line is full, it is added to `paper`, and the rest of the text begins
  /// a new line.
  void add(std::u32string_view text, const TextStyle& style, Paper& paper);

  /// Adds dots at the current position. Dots beyond the edge of the print area are left out.
  void add(Bitmap dots);

  /// Moves to `x` dots from the left end. Does nothing if this position is beyond the paper.
  void moveTo(unsigned x);

  /// Moves to the next tab stop. Does nothing if there is no next tab stop.
  void tab(unsigned cellWidth);

  /// Sets the tab stops, in dots. If `stops` is empty, there is one every eight characters.
  void setTabs(std::vector<unsigned> stops) { tabs_ = std::move(stops); }

  /// Ends the line and moves the paper forward, even if the line is empty.
  void end(Paper& paper);

  /// Ends the line if it is not empty.
  void endIfBegun(Paper& paper);

  bool empty() const { return line_.items.empty(); }
  unsigned position() const { return position_; }

  /// These settings apply to the current line if it is still empty, otherwise from the next line
  /// on.
  void setAlignment(Alignment alignment) { alignment_ = alignment; }
  void setLeftMargin(unsigned dots) { left_ = dots; }
  void setWidth(unsigned dots) { width_ = dots; }
  void setUpsideDown(bool upsideDown) { upsideDown_ = upsideDown; }

  /// Returns the horizontal place of the next line, image or symbol.
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
  unsigned width_ = 0;  // 0 means the whole width of the paper
  bool upsideDown_ = false;
  unsigned spacing_ = lineSpacing;
  std::vector<unsigned> tabs_;
};

}  // namespace quordalvane::simulator
