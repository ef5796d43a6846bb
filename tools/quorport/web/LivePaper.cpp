#include "tools/quorport/web/LivePaper.h"

#include <utility>

namespace quordalvane::tool {

using simulator::PaperItem;

PaperArtist::Print LivePaper::follow(const simulator::Paper& paper) {
  PaperArtist::Print print;
  print.width = paper.width();
  print.weight = paper.weight() - seenWeight_;
  const auto& items = paper.items();
  if (seen_ > 0) {
    followLast(items[seen_ - 1], print);
  }
  print.items.insert(print.items.end(), items.begin() + static_cast<std::ptrdiff_t>(seen_),
                     items.end());
  seen_ = items.size();
  seenWeight_ = paper.weight();
  if (!items.empty()) {
    remember(items.back());
  }
  return print;
}

// The last item may have changed, because the paper joins consecutive feeds and consecutive cuts.
void LivePaper::followLast(const PaperItem& last, PaperArtist::Print& print) {
  const auto* feed = std::get_if<simulator::Feed>(&last);
  const auto* cut = std::get_if<simulator::Cut>(&last);
  if (feed != nullptr && feed->dots != seenFeed_) {
    print.items.emplace_back(simulator::Feed{feed->dots - seenFeed_});
  } else if (cut != nullptr && seenPartialCut_ && !cut->partial) {
    print.items.emplace_back(*cut);
  }
}

void LivePaper::remember(const PaperItem& last) {
  const auto* feed = std::get_if<simulator::Feed>(&last);
  const auto* cut = std::get_if<simulator::Cut>(&last);
  seenFeed_ = feed == nullptr ? 0 : feed->dots;
  seenPartialCut_ = cut != nullptr && cut->partial;
}

void LivePaper::begin() {
  seen_ = 0;
  seenWeight_ = 0;
  isLost_ = false;
}

void LivePaper::show(http::Text event, unsigned rows, unsigned length) {
  events_.push_back(std::move(event));
  rows_.push_back(rows);
  rowsKept_ += rows;
  length_ = length;
  while (rowsKept_ - rows_.front() >= leastRows) {
    rowsKept_ -= rows_.front();
    rows_.pop_front();
    events_.pop_front();
  }
}

void LivePaper::clear() {
  events_.clear();
  rows_.clear();
  rowsKept_ = 0;
  length_ = 0;
}

}  // namespace quordalvane::tool
