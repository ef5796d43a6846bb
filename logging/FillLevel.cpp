#include "logging/FillLevel.h"

namespace quordalvane {

void FillLevel::raise(Level level) noexcept {
  {
    const std::lock_guard lock(mutex_);
    if (level <= level_) {
      return;
    }
    level_ = level;
  }
  raised_.notify_all();
}

void FillLevel::empty() noexcept {
  const std::lock_guard lock(mutex_);
  if (level_ != Level::Closed) {
    level_ = Level::Empty;
  }
}

void FillLevel::reopen(Level level) noexcept {
  const std::lock_guard lock(mutex_);
  level_ = level;
}

void FillLevel::await(Level level) {
  std::unique_lock lock(mutex_);
  raised_.wait(lock, [&] { return level_ >= level; });
}

void FillLevel::await(Level level, std::chrono::milliseconds timeout) {
  std::unique_lock lock(mutex_);
  raised_.wait_for(lock, timeout, [&] { return level_ >= level; });
}

}  // namespace quordalvane
