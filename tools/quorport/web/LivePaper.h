#pragma once

#include <cstddef>
#include <deque>

#include "simulator/Paper.h"
#include "tools/http/EventLog.h"
#include "tools/quorport/web/PaperArtist.h"

namespace quordalvane::tool {

/// The paper that hangs out of one printer: how far it was given away to be drawn, and the events
/// that show its latest rows.
class LivePaper {
 public:
  /// A page that is opened is shown this many rows of the paper, or a few more.
  static constexpr unsigned mostRows = 16'000;

  /// What was printed since the last call; of the printer the number alone is left open.
  PaperArtist::Print follow(const simulator::Paper& paper);

  /// The paper was torn off: `follow` begins anew.
  void begin();

  /// More was printed than can be drawn: until the next paper begins nothing is shown.
  void giveUp() { isLost_ = true; }
  bool isLost() const { return isLost_; }

  /// Keeps an event that shows so many rows, the last of them at `length`.
  void show(http::Text event, unsigned rows, unsigned length);

  /// The paper that was shown is gone.
  void clear();

  const std::deque<http::Text>& events() const { return events_; }
  unsigned length() const { return length_; }

 private:
  void followLast(const simulator::PaperItem& last, PaperArtist::Print& print);
  void remember(const simulator::PaperItem& last);

  std::size_t seen_ = 0;        // items
  std::size_t seenWeight_ = 0;  // of the paper
  int seenFeed_ = 0;            // the dots of the last of them, if it is a feed
  bool seenPartialCut_ = false;
  bool isLost_ = false;

  std::deque<http::Text> events_;
  std::deque<unsigned> rows_;  // of each
  unsigned rowsKept_ = 0;
  unsigned length_ = 0;
};

}  // namespace quordalvane::tool
