#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace quordalvane {

/// The fill level of a queue, for which the thread that empties the queue waits. It has its own
/// lock, so a thread that was just woken never holds the lock that the threads need which fill the
/// queue. Any thread may call the functions.
class FillLevel {
 public:
  enum class Level { Empty, Filled, HalfFull, Closed };

  /// Raises the level to `level` and wakes the threads that wait for it. Has no effect if the level
  /// is already as high or higher.
  void raise(Level level) noexcept;

  /// Sets the level to Empty, unless it is Closed.
  void empty() noexcept;

  /// Changes the level from Closed to `level`.
  void reopen(Level level) noexcept;

  /// Waits until the level is at least `level`.
  void await(Level level);

  /// Does the same, but waits for at most `timeout`.
  void await(Level level, std::chrono::milliseconds timeout);

 private:
  std::mutex mutex_;  // guards level_
  std::condition_variable raised_;
  Level level_ = Level::Closed;
};

}  // namespace quordalvane
