#include "backends/handheld/StreamEvents.h"

namespace quordalvane::handheld {

void StreamEvents::note() noexcept {
  const std::lock_guard lock(mutex_);
  ++count_;
  noted_.notify_all();
}

std::uint64_t StreamEvents::count() {
  const std::lock_guard lock(mutex_);
  return count_;
}

void StreamEvents::awaitMoreThan(std::uint64_t seen,
                                 std::chrono::steady_clock::time_point deadline) {
  std::unique_lock lock(mutex_);
  noted_.wait_until(lock, deadline, [&] { return count_ > seen; });
}

}  // namespace quordalvane::handheld
