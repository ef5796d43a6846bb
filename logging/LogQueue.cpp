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

FillLevel::Level LogQueue::level() const noexcept {
  if (pending_.records.empty()) {
    return FillLevel::Level::Empty;
  }
  return pending_.records.size() >= capacity_ / 2 ? FillLevel::Level::HalfFull
                                                  : FillLevel::Level::Filled;
}

void LogQueue::push(LogRecord&& record) noexcept {
  FillLevel::Level before{};
  FillLevel::Level after{};
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
    before = level();
    pendingText_ += record.message.size();
    pending_.records.add(record);
    after = level();
  }
  if (after != before) {
    fillLevel_.raise(after);
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
  if (!open_) {
    pending_.records.reserve(capacity_);
    open_ = true;
    fillLevel_.reopen(level());
  }
}

void LogQueue::close() noexcept {
  {
    const std::lock_guard lock(mutex_);
    open_ = false;
  }
  fillLevel_.raise(FillLevel::Level::Closed);
}

bool LogQueue::take(Batch& batch) {
  for (;;) {
    fillLevel_.await(FillLevel::Level::Filled);
    fillLevel_.await(FillLevel::Level::HalfFull, gatherTime_);
    fillLevel_.empty();
    const std::lock_guard lock(mutex_);
    if (!pending_.records.empty()) {
      swapPending(batch);
      return true;
    }
    if (!open_) {
      return false;
    }
    // A record has raised the fill level, but the queue is empty, because the previous batch
    // already contained this record.
  }
}

void LogQueue::swapPending(Batch& batch) {
  try {
    batch.records.reserve(capacity_);  // allocates only after a change of the capacity
  } catch (const std::bad_alloc&) {
    // The reservation failed, so the queue can hold fewer records. The next call of this function
    // tries again to reserve the memory.
  }
  std::swap(batch, pending_);
  pending_.dropped = 0;
  pendingText_ = 0;
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
