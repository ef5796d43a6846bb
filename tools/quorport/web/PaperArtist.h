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

/// Draws the papers of printers while they grow, on a thread of its own.
class PaperArtist {
 public:
  /// What came out of a printer. Several that wait become one.
  struct Print {
    std::size_t printer = 0;
    std::vector<simulator::PaperItem> items;
    std::size_t weight = 0;    ///< of these, about, in bytes
    std::int64_t printed = 0;  ///< when, in milliseconds since 1970
    unsigned width = 0;        ///< of the paper
    bool isTornOff = false;    ///< after these
  };

  /// The same, drawn.
  struct Drawing {
    std::size_t printer = 0;
    simulator::PaperStrips::Change change;
    std::string text;
    std::int64_t printed = 0;
    unsigned width = 0;
    unsigned length = 0;  ///< of the paper so far, in dots
    bool isTornOff = false;
  };

  /// Throws std::system_error if the system has no thread or descriptor left.
  PaperArtist();
  ~PaperArtist();
  PaperArtist(const PaperArtist&) = delete;
  PaperArtist& operator=(const PaperArtist&) = delete;

  static constexpr std::size_t mostWaiting = std::size_t{16} << 20U;

  /// Takes a print; false if too much waits to be drawn, and then it is not taken. That of a paper
  /// that is torn off is taken always, if it has no items.
  bool add(Print print);

  /// Becomes readable when something is drawn.
  int descriptor() const { return done_; }

  /// What was drawn since the last call, in order. Does not wait.
  std::vector<Drawing> take();

 private:
  void work();
  Drawing draw(Print print);

  const int done_;
  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<Print> waiting_;
  std::size_t weight_ = 0;  // of those
  bool ends_ = false;
  std::vector<Drawing> drawn_;
  std::map<std::size_t, simulator::PaperStrips> papers_;  // by their printers, for the thread
  std::thread thread_;                                    // last: it uses all of them
};

}  // namespace quordalvane::tool
