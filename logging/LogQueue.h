#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <mutex>

#include "logging/FillLevel.h"
#include "logging/RecordBatch.h"

namespace quordalvane {

/// The bounded queue between the threads that log and the writer thread. Its lock is held only
/// while one record is moved in or all records are swapped out, so `push` never waits for a sink.
/// Any thread may call the members, but only the writer thread may call `take`, `finish` and
/// `lose`.
class LogQueue {
 public:
  /// The records that the writer takes together. The queue may have dropped the records that
  /// followed them; `dropped` is the number of the dropped records. Records are dropped only while
  /// other records are queued.
  struct Batch {
    RecordBatch records;        ///< in the order in which they were pushed
    std::uint64_t dropped = 0;  ///< number of records dropped after the last of `records`

    /// The time at which the first of the dropped records was dropped; not valid if `dropped` is 0.
    std::chrono::system_clock::time_point firstDropTime;
  };

  /// Numbers that the queue has counted since it was created.
  struct Counts {
    /// The number of records that were pushed. Records that were pushed into a closed queue are
    /// included.
    std::uint64_t handedOver = 0;

    /// The number of records that were pushed and then lost, because the queue was full or because
    /// `lose` was called. Records that were pushed into a closed queue are not included.
    std::uint64_t dropped = 0;
  };

  /// The initial and the maximum capacity of the queue. The capacity is the number of records that
  /// may wait. Memory for this number of records is allocated in advance, once for the queue and
  /// once for the writer. The maximum capacity needs a few hundred megabytes.
  /// @{
  static constexpr std::size_t defaultCapacity = 8192;
  static constexpr std::size_t maximumCapacity = 1048576;
  /// @}

  /// The maximum total size in bytes of the waiting messages. Above this size the queue counts as
  /// full. A few messages can be enough to exceed it, because dumps of print data are long.
  static constexpr std::size_t textLimit = std::size_t{64} << 20U;

  /// How long `take` waits for more records after the first record. The writer then wakes up once
  /// for all these records, because one wake-up takes more time than the handling of many records.
  static constexpr std::chrono::milliseconds usualGatherTime{1};

  /// Creates a closed queue. With a `gatherTime` of zero, `take` does not wait for more records
  /// after the first record.
  explicit LogQueue(std::chrono::milliseconds gatherTime = usualGatherTime)
      : gatherTime_(gatherTime) {}

  /// Puts the record into the queue, or drops it if the queue is full. The value of `record` is
  /// unspecified afterwards. A full queue remains full until the writer takes its records, so all
  /// records that are dropped until then form one gap in the sequence of records. A closed queue
  /// discards the record and does not count it as dropped, because no sink expects it.
  void push(LogRecord&& record) noexcept;

  /// Sets how many records may wait; records that the writer has taken are not counted. Records
  /// that are already in the queue remain there, even if they are more than `records`; the queue is
  /// then full. Throws std::invalid_argument if `records` is 0 or more than the maximum, and
  /// std::bad_alloc if memory is short; in both cases nothing has changed.
  void setCapacity(std::size_t records);

  /// The queue accepts records after `open` and until `close`. The queue is initially closed, and
  /// allocates no memory before it is opened. `open` has no effect on an open queue. The writer may
  /// still take records that were queued before `close`.
  /// @{
  void open();
  void close() noexcept;
  /// @}

  /// Waits for a first record. After the first record, waits for more records until the gather time
  /// has passed, or until the queue is half full or closed. Then swaps all queued records with
  /// `batch`, which must be empty, and returns true. Returns false without waiting if the queue is
  /// closed and empty.
  ///
  /// After the swap, the queue uses the memory of `batch`. Before the swap, `take` enlarges this
  /// memory to the capacity of the queue. If memory is short, the queue can hold only as many
  /// records as `batch` has room for. `batch` must have room for at least one record.
  bool take(Batch& batch);

  /// Adds `records` to the number of finished records. `take` has returned these records, and
  /// the sinks have received them.
  void finish(std::size_t records);

  /// Adds `records` to the number of dropped records. `take` has returned these records, but no
  /// sink has received them. They also count as finished, so that `waitUntilFinished` does not wait
  /// for them.
  void lose(std::size_t records);

  /// Waits until every record queued so far is finished. Returns false if this takes longer than
  /// `timeout`. With a time-out of zero this function does not wait.
  bool waitUntilFinished(std::chrono::milliseconds timeout);

  /// Returns all counts as they are at one moment.
  Counts counts() const;

 private:
  bool isFull() const noexcept;
  FillLevel::Level level() const noexcept;
  void swapPending(Batch& batch);

  const std::chrono::milliseconds gatherTime_;
  FillLevel fillLevel_;

  mutable std::mutex mutex_;  // guards everything below
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
