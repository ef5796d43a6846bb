#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "simulator/Paper.h"

namespace quordalvane::simulator {

/// The current page in page mode. It consists of areas; each has its own paper, on which lines are
/// set as usual.
class PageBuilder {
 public:
  explicit PageBuilder(unsigned paperWidth);

  /// Selects an area of the page; the part outside the page is left out.
  void setArea(unsigned x, unsigned y, unsigned width, unsigned height);

  /// Selects one of four print directions: 0 normal, 1 upwards from the lower left, 2 upside down,
  /// 3 downwards from the upper right.
  void setDirection(unsigned direction);

  /// Return the paper of the selected area, and the width of this paper in dots. The lines of the
  /// paper run in the selected direction.
  Paper& paper();
  unsigned width() const { return areas_.back().content->width(); }

  /// Removes everything that was printed in the selected area.
  void clear();

  /// Returns true if the page needs more memory than any printer has.
  bool isTooLong() const;

  /// Returns the page with everything that has been added so far.
  Page page() const;

 private:
  struct Area {
    PageArea place;
    std::shared_ptr<Paper> content;
  };

  void begin(const PageArea& place);

  unsigned paperWidth_;
  std::vector<Area> areas_;
  bool wasSet_ = false;
};

}  // namespace quordalvane::simulator
