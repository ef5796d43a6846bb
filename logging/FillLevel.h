#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace quordalvane {

/// How full a queue is, as far as the thread that empties it must know. It has a lock of its own: a
/// thread that was just woken then never holds the lock which the threads that fill the queue need.
/// All members may be called from any thread.
class FillLevel {
 public:
  enum class Level { Empty, Filled, HalfFull, Closed };

  /// Raises the level to `level` and wakes the threads that wait for it. A level that is as high
  /// already remains.
  void raise(Level level) noexcept;

  /// Sets the level to Empty, but a Closed one remains.
  void empty() noexcept;

  /// Sets the level from Closed to `level`.
  void reopen(Level level) noexcept;

  /// Waits until the level is at least `level`.
  void await(Level level);

  /// Waits likewise, for `timeout` at most.
  void await(Level level, std::chrono::milliseconds timeout);

 private:
  std::mutex mutex_;  // guards level_
  std::condition_variable raised_;
  Level level_ = Level::Closed;
};

}  // namespace quordalvane
