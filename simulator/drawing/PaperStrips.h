#pragma once

#include <deque>
#include <vector>

#include "simulator/Bytes.h"
#include "simulator/Paper.h"
#include "simulator/drawing/PaperLayout.h"

namespace quordalvane::simulator {

/// Rows of a paper, a pixel a dot, without margins: black on white, a PNG file.
struct Strip {
  unsigned row = 0;  ///< of its top, from the beginning of the paper
  unsigned height = 0;
  Bytes png;
};

/// A paper that is drawn while it grows, strip by strip. A strip shows all that its rows hold, so
/// that it replaces what was drawn there before: paper can be fed back and printed over.
class PaperStrips {
 public:
  explicit PaperStrips(unsigned width) : width_(width), layout_(0, Margins{}) {}

  /// A place at which the paper was cut.
  struct CutMark {
    unsigned row = 0;
    bool partial = false;
  };

  struct Change {
    std::vector<Strip> strips;  ///< of at most `mostRows` rows each, from the top
    std::vector<CutMark> cuts;
  };

  static constexpr unsigned mostRows = 1024;

  /// Adds what was printed next. Returns the rows that it changed, bare ones included.
  Change add(std::vector<PaperItem> items);

  /// How long the paper is, in dots.
  unsigned length() const { return layout_.end(); }
  unsigned width() const { return width_; }

 private:
  Strip draw(unsigned row, unsigned height) const;

  unsigned width_;
  std::deque<PaperItem> items_;  // at lasting places, for the layout
  PaperLayout layout_;
};

}  // namespace quordalvane::simulator
