#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace quordalvane {

/// The fill level of a queue. The thread that empties the queue waits until the level rises. The
/// level has its own lock, so a thread that wakes up here does not block the threads that fill the
/// queue. Any thread may call the functions.
class FillLevel {
 public:
  enum class Level { Empty, Filled, HalfFull, Closed };

  /// Raises the level to `level` and wakes the threads that wait for this level. Has no effect if
  /// the level is already this high or higher.
  void raise(Level level) noexcept;

  /// Sets the level to Empty, unless it is Closed.
  void empty() noexcept;

  /// Changes the level from Closed to `level`.
  void reopen(Level level) noexcept;

  /// Waits until the level is at least `level`.
  void await(Level level);

  /// Works as the function above, but waits for at most `timeout`.
  void await(Level level, std::chrono::milliseconds timeout);

 private:
  std::mutex mutex_;  // guards level_
  std::condition_variable raised_;
  Level level_ = Level::Closed;
};

}  // namespace quordalvane
