#pragma once

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "simulator/drawing/PaperStrips.h"

namespace quordalvane::tool {

/// Draws the printers' papers while they grow, on a thread of its own.
class PaperArtist {
 public:
  /// New output of one printer. Consecutive outputs of the same paper that still wait to be drawn
  /// are merged into one.
  struct Print {
    std::size_t printer = 0;
    std::vector<simulator::PaperItem> items;
    std::size_t weight = 0;    ///< the approximate size of the items in bytes
    std::int64_t printed = 0;  ///< the time of printing, in milliseconds since 1970
    unsigned width = 0;        ///< the width of the paper in dots
    bool isTornOff = false;    ///< true if the paper ends after these items
  };

  /// The result of drawing a `Print`.
  struct Drawing {
    std::size_t printer = 0;
    simulator::PaperStrips::Change change;
    std::string text;
    std::int64_t printed = 0;
    unsigned width = 0;
    unsigned length = 0;  ///< the length of the paper so far, in dots
    bool isTornOff = false;
  };

  /// Throws std::system_error if the system has no thread or descriptor left.
  PaperArtist();
  ~PaperArtist();
  PaperArtist(const PaperArtist&) = delete;
  PaperArtist& operator=(const PaperArtist&) = delete;

  static constexpr std::size_t mostWaiting = std::size_t{16} << 20U;

  /// Adds an output to be drawn. Returns false, and adds nothing, if the size of all outputs that
  /// are not yet drawn would exceed `mostWaiting`. An output that has no items, and only ends a
  /// paper, is always added.
  bool add(Print print);

  /// Returns the descriptor that becomes readable when an output is drawn.
  int descriptor() const { return done_; }

  /// Returns the drawings since the last call, in order. Does not wait.
  std::vector<Drawing> take();

 private:
  void work();
  Drawing draw(Print print);

  const int done_;
  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<Print> waiting_;
  std::size_t weight_ = 0;  // the size of all outputs that are not yet drawn, in bytes
  bool ends_ = false;
  std::vector<Drawing> drawn_;
  // The papers by printer number. Only `thread_` uses them.
  std::map<std::size_t, simulator::PaperStrips> papers_;
  // This must be the last member: the thread starts after all members that it uses.
  std::thread thread_;
};

}  // namespace quordalvane::tool
