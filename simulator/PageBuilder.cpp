#include "simulator/PageBuilder.h"

#include <algorithm>

namespace quordalvane::simulator {
namespace {

// The length in dots of the longest page for which printers have memory.
constexpr unsigned longestPage = 2400;

// The limits of a page; without them a job that selects areas without end would use all memory.
constexpr std::size_t mostAreas = 256;
constexpr std::size_t heaviestPage = heaviestPaper / 16;

bool isSideways(unsigned direction) {
  return direction % 2 != 0;
}

}  // namespace

PageBuilder::PageBuilder(unsigned paperWidth) : paperWidth_(paperWidth) {
  begin({0, 0, paperWidth_, longestPage, 0, nullptr});
}

void PageBuilder::setArea(unsigned x, unsigned y, unsigned width, unsigned height) {
  wasSet_ = true;
  PageArea place = areas_.back().place;
  place.x = std::min(x, paperWidth_ - 1);
  place.y = std::min(y, longestPage - 1);
  place.width = std::clamp(width, 1U, paperWidth_ - place.x);
  place.height = std::clamp(height, 1U, longestPage - place.y);
  begin(place);
}

void PageBuilder::setDirection(unsigned direction) {
  PageArea place = areas_.back().place;
  place.direction = direction;
  begin(place);
}

// Begins an area. Drops the previous one if it is empty.
void PageBuilder::begin(const PageArea& place) {
  const bool isBare = !areas_.empty() && areas_.back().content->items().empty();
  if (isBare) {
    areas_.pop_back();
  }
  if (areas_.size() == mostAreas) {
    return;
  }
  const unsigned width = isSideways(place.direction) ? place.height : place.width;
  areas_.push_back({place, std::make_shared<Paper>(std::max(width, 12U))});
}

// If `page()` has returned the area, this function copies it first, because a returned page must
// not change.
Paper& PageBuilder::paper() {
  std::shared_ptr<Paper>& content = areas_.back().content;
  if (content.use_count() > 1) {
    content = std::make_shared<Paper>(*content);
  }
  return *content;
}

void PageBuilder::clear() {
  areas_.back().content = std::make_shared<Paper>(width());
}

bool PageBuilder::isTooLong() const {
  std::size_t weight = 0;
  for (const Area& area : areas_) {
    weight += sizeof area + area.content->weight();
  }
  return weight > heaviestPage;
}

Page PageBuilder::page() const {
  Page page;
  page.endsWithPrint = !wasSet_;
  for (const Area& area : areas_) {
    page.areas.push_back(area.place);
    page.areas.back().content = area.content;
  }
  return page;
}

}  // namespace quordalvane::simulator
