#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>

namespace quordalvane::handheld {

/// Counts the events that a framework delivers for a stream on the loop where it is scheduled, so
/// that another thread can wait for the next one. All calls may be made from any thread.
class StreamEvents {
 public:
  /// Notes an event and wakes who waits. Called by the framework.
  void note() noexcept;

  /// How many there have been.
  std::uint64_t count();

  /// Blocks until there have been more than `seen`, or until `deadline`.
  void awaitMoreThan(std::uint64_t seen, std::chrono::steady_clock::time_point deadline);

 private:
  std::mutex mutex_;
  std::condition_variable noted_;
  std::uint64_t count_ = 0;  // guarded by mutex_
};

}  // namespace quordalvane::handheld
