#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>

namespace quordalvane::handheld {

/// Counts the events of a stream. The framework delivers the events on the loop on which the stream
/// is scheduled. With this class another thread can wait for the next event. Any thread may call
/// the functions.
class StreamEvents {
 public:
  /// Counts an event and wakes waiting threads. The framework calls this function.
  void note() noexcept;

  /// Returns the number of events so far.
  std::uint64_t count();

  /// Blocks until more than `seen` events have happened, or until `deadline`.
  void awaitMoreThan(std::uint64_t seen, std::chrono::steady_clock::time_point deadline);

 private:
  std::mutex mutex_;
  std::condition_variable noted_;
  std::uint64_t count_ = 0;  // guarded by mutex_
};

}  // namespace quordalvane::handheld
