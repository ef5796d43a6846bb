#pragma once

#include <deque>
#include <vector>

#include "simulator/Bytes.h"
#include "simulator/Paper.h"
#include "simulator/drawing/PaperLayout.h"

namespace quordalvane::simulator {

/// Some rows of a paper as a PNG file, black on white, one pixel a dot, without margins.
struct Strip {
  unsigned row = 0;  ///< the number of rows between the beginning of the paper and the strip
  unsigned height = 0;
  Bytes png;
};

/// A paper that is drawn strip by strip while it grows. A strip contains everything in its rows,
/// and replaces earlier strips there, because paper can be fed back and printed over.
class PaperStrips {
 public:
  explicit PaperStrips(unsigned width) : width_(width), layout_(0, Margins{}) {}

  /// A position at which the paper was cut.
  struct CutMark {
    unsigned row = 0;
    bool partial = false;
  };

  struct Change {
    std::vector<Strip> strips;  ///< sorted from the top; each has at most `mostRows` rows
    std::vector<CutMark> cuts;
  };

  static constexpr unsigned mostRows = 1024;

  /// Adds the next items. Returns the rows that changed, including empty ones.
  Change add(std::vector<PaperItem> items);

  /// Returns the length of the paper so far, in dots.
  unsigned length() const { return layout_.end(); }
  unsigned width() const { return width_; }

 private:
  Strip draw(unsigned row, unsigned height) const;

  unsigned width_;
  std::deque<PaperItem> items_;  // a deque, because the layout points to the items
  PaperLayout layout_;
};

}  // namespace quordalvane::simulator
