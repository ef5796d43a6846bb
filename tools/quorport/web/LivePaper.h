#pragma once

#include <cstddef>
#include <deque>

#include "simulator/Paper.h"
#include "tools/http/EventLog.h"
#include "tools/quorport/web/PaperArtist.h"

namespace quordalvane::tool {

/// The paper on which one printer is printing, in the form that browsers show. This class counts
/// the items of the paper that have been passed on to be drawn, and keeps the events that show the
/// latest rows.
class LivePaper {
 public:
  /// When a browser opens the page, it gets at least this many of the latest rows, or all rows if
  /// there are fewer.
  static constexpr unsigned leastRows = 16'000;

  /// Returns what was printed since the last call. The caller must set `printer`, `printed` and
  /// `isTornOff` in the result.
  PaperArtist::Print follow(const simulator::Paper& paper);

  /// To be called after the paper was torn off: the next paper starts empty.
  void begin();

  /// To be called if the printer prints faster than its paper can be drawn. The rest of this paper
  /// is not shown. The next paper is shown from its beginning.
  void giveUp() { isLost_ = true; }
  bool isLost() const { return isLost_; }

  /// Keeps an event that shows `rows` rows. `length` is the length of the paper so far, in dots.
  void show(http::Text event, unsigned rows, unsigned length);

  /// Forgets all kept events: the paper was removed.
  void clear();

  const std::deque<http::Text>& events() const { return events_; }
  unsigned length() const { return length_; }

 private:
  void followLast(const simulator::PaperItem& last, PaperArtist::Print& print);
  void remember(const simulator::PaperItem& last);

  std::size_t seen_ = 0;        // the number of items already passed on
  std::size_t seenWeight_ = 0;  // the approximate size of the items already passed on, in bytes
  int seenFeed_ = 0;            // the length of the last item, if it is a feed
  bool seenPartialCut_ = false;
  bool isLost_ = false;

  std::deque<http::Text> events_;
  std::deque<unsigned> rows_;  // the number of rows in each event
  unsigned rowsKept_ = 0;
  unsigned length_ = 0;
};

}  // namespace quordalvane::tool
