#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <memory>
#include <mutex>
#include <span>
#include <thread>
#include <utility>
#include <vector>

#include "logging/LogQueue.h"
#include "logging/LogSink.h"

namespace quordalvane {

/// Delivers records from any thread to the sinks. A writer thread, which starts with the first
/// sink, calls the sinks. A child process created by fork has no writer thread and delivers
/// nothing.
///
/// Several threads may call the members at the same time. A sink may call them as well.
class LogDelivery {
 public:
  LogDelivery() = default;

  /// Passes the queued records to the sinks and ends the writer thread. Waits for the sinks without
  /// a time limit. During this wait only sinks may log, and their records are discarded.
  ~LogDelivery();

  LogDelivery(const LogDelivery&) = delete;
  LogDelivery& operator=(const LogDelivery&) = delete;

  /// Puts the record into the queue and returns without waiting for a sink. If the queue is full,
  /// the record is dropped; in the log, a record of type Error replaces the dropped records and
  /// reports their number. Records that cannot be delivered because memory is short are reported in
  /// the same way. Before the first sink is added, records are discarded.
  void handOver(LogRecord&& record) noexcept { queue_.push(std::move(record)); }

  /// Adds `sink`, which must not be null; this object shares its ownership. The sink receives the
  /// records that are in the queue now and all later records. Throws std::system_error if the
  /// writer thread cannot be started, and std::bad_alloc if memory is short; in both cases nothing
  /// has changed.
  void addSink(std::shared_ptr<LogSink> sink);

  /// Removes `sink`; has no effect if it was not added. Does not wait: records that are being
  /// delivered at this moment may still reach the sink. Call `flush` afterwards: after it has
  /// returned true, the sink is not called again and this object has released it.
  void removeSink(const std::shared_ptr<LogSink>& sink);

  /// Sets how many records may wait for the sinks; initially 8,192. Records that are being
  /// delivered are not counted. Throws std::invalid_argument if `records` is 0 or more than
  /// 1,048,576, and std::bad_alloc if memory is short; in both cases nothing has changed.
  void setQueueCapacity(std::size_t records);

  /// Waits until the sinks have received every record queued so far, or until `timeout` has passed,
  /// for example because a sink hangs. Returns true if the sinks have received all these records.
  /// With a time-out of zero `flush` does not wait. If a sink calls `flush` while records are in
  /// the queue, `flush` returns false at once, because the sink would wait for itself.
  bool flush(std::chrono::milliseconds timeout);

  /// Returns how many records were handed over, and how many of them were dropped.
  LogQueue::Counts counts() const { return queue_.counts(); }

 private:
  /// A sink, and whether its failure was reported. Only the writer thread uses this flag.
  struct AttachedSink {
    std::shared_ptr<LogSink> sink;
    bool failureReported = false;
  };
  /// Counts records that were not delivered. `since` is the time of the first such record.
  struct Missing {
    std::uint64_t records = 0;
    std::chrono::system_clock::time_point since;
  };
  using AttachedSinks = std::vector<std::shared_ptr<AttachedSink>>;

  void startWriter();
  void runWriter(LogQueue::Batch& batch);
  bool deliver(LogQueue::Batch& batch);
  void noteUndelivered(const LogQueue::Batch& batch) noexcept;
  static LogRecord recordOf(const Missing& missing, const char* why);
  AttachedSinks attachedSinks() const;
  static void give(AttachedSink& attached, std::span<const LogRecord> records) noexcept;

  LogQueue queue_;
  Missing undelivered_;  // not yet reported to the sinks; only the writer thread uses it

  mutable std::mutex sinksMutex_;  // guards sinks_ and writer_; never held while a sink is called
  AttachedSinks sinks_;
  std::thread writer_;
  std::atomic<std::thread::id> writerId_;
};

}  // namespace quordalvane
