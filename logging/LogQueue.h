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
  /// What the writer takes at once: records in stream order, and how many were dropped after the
  /// last of them and before the next batch, the first of these at `firstDropTime`. Records were
  /// dropped only where some were queued.
  struct Batch {
    RecordBatch records;                                  ///< in stream order
    std::uint64_t dropped = 0;                            ///< after the last of them
    std::chrono::system_clock::time_point firstDropTime;  ///< without meaning when none was
  };

  /// What the queue has seen since it was made.
  struct Counts {
    std::uint64_t handedOver = 0;  ///< records that were pushed, on a closed queue too
    std::uint64_t dropped = 0;     ///< those that found it full, or were lost
  };

  /// How many records may wait at first, and how many at most: room for as many is taken at once,
  /// and again by the writer, and some hundred megabytes are the most that a log may be worth.
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

  /// Queues the record, or drops it when the queue is full. What it leaves in `record` is of no
  /// meaning. A full queue stays full until the writer takes it, so that all drops of a batch lie
  /// in one place of the stream. A queue that is not open discards the record, which is no drop:
  /// there is nobody to miss it.
  void push(LogRecord&& record) noexcept;

  /// How many records may wait; those that the writer has taken count no more. When more wait
  /// already they stay, and the queue is full. Throws std::invalid_argument for zero and for more
  /// than the maximum, and std::bad_alloc where memory is short; nothing has changed then.
  void setCapacity(std::size_t records);

  /// From `open` to `close` the queue takes records. It begins closed, and holds no memory until it
  /// is opened. Opening an open queue changes nothing. What waits when it is closed may be taken.
  /// @{
  void open();
  void close() noexcept;
  /// @}

  /// Waits for a record, gathers more for at most the gather time, and swaps them for the empty
  /// `batch`. It gathers no longer than until the queue is half full or closed. False, at once,
  /// when the queue is closed and nothing waits.
  ///
  /// The queue goes on with the room of `batch`, which it enlarges to its capacity. Where memory is
  /// too short for that it holds no more than `batch` has room for, which must be one record.
  bool take(Batch& batch);

  /// Says that the sinks have been given `records` more of the records taken.
  void finish(std::size_t records);

  /// Says that `records` more of the records taken are finished and were given to nobody, which
  /// counts as a drop.
  void lose(std::size_t records);

  /// Waits until every record queued so far is finished; false when that takes longer than
  /// `timeout`. Zero asks without waiting.
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
