#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "simulator/Paper.h"

namespace quordalvane::simulator {

/// The page that is being set in page mode: areas, each with a paper of its own on which lines are
/// set as usual.
class PageBuilder {
 public:
  explicit PageBuilder(unsigned paperWidth);

  /// Chooses a part of the page; what does not fit on it is cut down.
  void setArea(unsigned x, unsigned y, unsigned width, unsigned height);

  /// Chooses in which of four directions it is printed: 0 as usual, 1 upwards from the lower left,
  /// 2 upside down, 3 downwards from the upper right.
  void setDirection(unsigned direction);

  /// The paper of the chosen area, and its width in the chosen direction.
  Paper& paper();
  unsigned width() const { return areas_.back().content->width(); }

  /// Takes away the print of the chosen area.
  void clear();

  /// True if no printer has the memory for more.
  bool isTooLong() const;

  /// The page so far.
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
