#include "logging/LogQueue.h"

#include <algorithm>
#include <new>
#include <stdexcept>
#include <string>
#include <utility>

namespace quordalvane {

bool LogQueue::isFull() const noexcept {
  return pending_.records.size() >= std::min(capacity_, pending_.records.capacity()) ||
         pendingText_ >= textLimit || pending_.dropped > 0;
}

void LogQueue::push(LogRecord&& record) noexcept {
  bool wakesWriter = false;
  {
    const std::lock_guard lock(mutex_);
    ++counts_.handedOver;
    if (!open_) {
      return;
    }
    if (isFull()) {
      if (pending_.dropped++ == 0) {
        pending_.firstDropTime = record.time;
      }
      ++counts_.dropped;
      return;
    }
    ++queuedRecords_;
    const bool wasEmpty = pending_.records.empty();
    const bool wasHalfFull = isHalfFull();
    pendingText_ += record.message.size();
    pending_.records.add(record);
    wakesWriter = wasEmpty || (isHalfFull() && !wasHalfFull);
  }
  if (wakesWriter) {
    filled_.notify_one();
  }
}

void LogQueue::setCapacity(std::size_t records) {
  if (records == 0 || records > maximumCapacity) {
    throw std::invalid_argument("a log queue holds 1 to " + std::to_string(maximumCapacity) +
                                " records, not " + std::to_string(records));
  }
  const std::lock_guard lock(mutex_);
  if (open_) {
    pending_.records.reserve(records);
  }
  capacity_ = records;
}

void LogQueue::open() {
  const std::lock_guard lock(mutex_);
  pending_.records.reserve(capacity_);
  open_ = true;
}

void LogQueue::close() noexcept {
  {
    const std::lock_guard lock(mutex_);
    open_ = false;
  }
  filled_.notify_one();
}

bool LogQueue::take(Batch& batch) {
  std::unique_lock lock(mutex_);
  filled_.wait(lock, [this] { return !pending_.records.empty() || !open_; });
  if (pending_.records.empty()) {
    return false;
  }
  filled_.wait_for(lock, gatherTime_, [this] { return isHalfFull() || !open_; });
  try {
    batch.records.reserve(capacity_);  // allocates only after a change of the capacity
  } catch (const std::bad_alloc&) {
    // The next batch tries again.
  }
  std::swap(batch, pending_);
  pending_.dropped = 0;
  pendingText_ = 0;
  return true;
}

void LogQueue::finish(std::size_t records) {
  {
    const std::lock_guard lock(mutex_);
    finishedRecords_ += records;
  }
  finished_.notify_all();
}

void LogQueue::lose(std::size_t records) {
  {
    const std::lock_guard lock(mutex_);
    finishedRecords_ += records;
    counts_.dropped += records;
  }
  finished_.notify_all();
}

bool LogQueue::waitUntilFinished(std::chrono::milliseconds timeout) {
  std::unique_lock lock(mutex_);
  const std::uint64_t queued = queuedRecords_;
  return finished_.wait_for(lock, timeout, [&] { return finishedRecords_ >= queued; });
}

LogQueue::Counts LogQueue::counts() const {
  const std::lock_guard lock(mutex_);
  return counts_;
}

}  // namespace quordalvane
