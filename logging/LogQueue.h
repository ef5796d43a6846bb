#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <mutex>

#include "logging/RecordBatch.h"

namespace quordalvane {

/// The bounded queue between the threads that log and the one that writes. The lock is only ever
/// held to move a record in or to swap all of them out, so no thread waits for a sink in `push`.
/// All members may be called from any thread, `take` and `finish` by the writer alone.
class LogQueue {
 public:
  /// The records that the writer takes at once, and the number that were dropped after the last of
  /// them and before the next batch, the first at `firstDropTime`. Records are dropped only if some
  /// are queued.
  struct Batch {
    RecordBatch records;                                  ///< in stream order
    std::uint64_t dropped = 0;                            ///< after the last of them
    std::chrono::system_clock::time_point firstDropTime;  ///< without meaning if none was
  };

  /// The counts of the queue since it was made.
  struct Counts {
    std::uint64_t handedOver = 0;  ///< records that were pushed, also on a closed queue
    std::uint64_t dropped = 0;     ///< those that found it full, or were lost
  };

  /// How many records may wait at first, and how many at most: room for as many is taken at once,
  /// and again by the writer, and a log is worth some hundred megabytes at most.
  /// @{
  static constexpr std::size_t defaultCapacity = 8192;
  static constexpr std::size_t maximumCapacity = 1048576;
  /// @}

  /// The messages that wait may hold this many bytes together before the queue counts as full,
  /// however few they are: dumps of print data are long.
  static constexpr std::size_t textLimit = std::size_t{64} << 20U;

  /// How long `take` gathers records after the first. One wake-up of the writer, which costs more
  /// than many records, then serves them all.
  static constexpr std::chrono::milliseconds usualGatherTime{1};

  /// A closed queue. With a `gatherTime` of zero `take` gathers nothing.
  explicit LogQueue(std::chrono::milliseconds gatherTime = usualGatherTime)
      : gatherTime_(gatherTime) {}

  /// Queues the record, or drops it if the queue is full. `record` then has no particular value. A
  /// full queue remains full until the writer takes it, so that all drops of a batch lie in one
  /// place of the stream. A queue that is not open discards the record without counting a drop: no
  /// sink misses it.
  void push(LogRecord&& record) noexcept;

  /// How many records may wait; those that the writer has taken are not counted. If more are queued
  /// already, they remain, and the queue is full. Throws std::invalid_argument for zero and for
  /// more than the maximum, and std::bad_alloc if memory is short; nothing has changed then.
  void setCapacity(std::size_t records);

  /// From `open` to `close` the queue takes records. It begins closed, and holds no memory until it
  /// is opened. Opening an open queue changes nothing. Records that are queued when it is closed
  /// may still be taken.
  /// @{
  void open();
  void close() noexcept;
  /// @}

  /// Waits for a record, gathers more for at most the gather time, and swaps them for the empty
  /// `batch`. It stops gathering once the queue is half full or closed. False, at once, if the
  /// queue is closed and empty.
  ///
  /// The queue then uses the room of `batch`, which it enlarges to its capacity. If memory is too
  /// short for that, it holds only as many records as `batch` has room for, which must be at least
  /// one.
  bool take(Batch& batch);

  /// Says that the sinks have received `records` more of the records taken.
  void finish(std::size_t records);

  /// Says that `records` more of the records taken are finished and were given to nobody, which
  /// counts as a drop.
  void lose(std::size_t records);

  /// Waits until every record queued so far is finished; false if that takes longer than `timeout`.
  /// Zero asks without waiting.
  bool waitUntilFinished(std::chrono::milliseconds timeout);

  /// Both counts, of one moment.
  Counts counts() const;

 private:
  bool isFull() const noexcept;
  bool isHalfFull() const noexcept { return pending_.records.size() >= capacity_ / 2; }

  const std::chrono::milliseconds gatherTime_;

  mutable std::mutex mutex_;  // guards everything below
  std::condition_variable filled_;
  std::condition_variable finished_;
  Batch pending_;
  std::size_t pendingText_ = 0;
  std::size_t capacity_ = defaultCapacity;
  Counts counts_;
  std::uint64_t queuedRecords_ = 0;
  std::uint64_t finishedRecords_ = 0;
  bool open_ = false;
};

}  // namespace quordalvane
