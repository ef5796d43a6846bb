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

/// Carries records from any thread to the sinks, on a writer thread of its own that starts with the
/// first sink. A child process made by fork has no such thread: it delivers nothing.
///
/// All members may be called from any thread at once, and from a sink.
class LogDelivery {
 public:
  LogDelivery() = default;

  /// Gives the sinks the records that are still queued and ends the writer thread; waits for a sink
  /// as long as it takes. Meanwhile only a sink that logs may use the delivery: such records are
  /// discarded.
  ~LogDelivery();

  LogDelivery(const LogDelivery&) = delete;
  LogDelivery& operator=(const LogDelivery&) = delete;

  /// Queues the record and returns without waiting for a sink. If the queue is full, the record is
  /// dropped: a record of type Error reports how many were, in the place of the missing ones.
  /// Records that could not be delivered for lack of memory are reported in the same way. Until the
  /// first sink is added records are discarded.
  void handOver(LogRecord&& record) noexcept { queue_.push(std::move(record)); }

  /// Gives `sink`, never null and shared from now on, every record that is handed over from now on,
  /// and those that are still queued. Throws std::system_error if the writer thread cannot be
  /// started and std::bad_alloc if memory is short; nothing has changed then.
  void addSink(std::shared_ptr<LogSink> sink);

  /// Removes the sink; one that was never added is ignored. Does not wait: records being delivered
  /// at this moment may still reach it. After a flush has returned true it is not called again, and
  /// the delivery's share in it is released.
  void removeSink(const std::shared_ptr<LogSink>& sink);

  /// How many records may wait for the sinks; 8,192 at first. Those that are being given to the
  /// sinks are not counted. Throws std::invalid_argument for zero and for more than 1,048,576, and
  /// std::bad_alloc if memory is short; nothing has changed then.
  void setQueueCapacity(std::size_t records);

  /// Waits until the sinks have received every record queued so far, or until `timeout` has passed,
  /// for example because a sink hangs. True if they have. Zero asks without waiting. If a sink
  /// calls it and records are left, it returns false at once, since the sink would wait for itself.
  bool flush(std::chrono::milliseconds timeout);

  /// How many records were handed over, and how many of them were dropped.
  LogQueue::Counts counts() const { return queue_.counts(); }

 private:
  /// A sink, and whether its failure was reported, which the writer thread alone reads and sets.
  struct AttachedSink {
    std::shared_ptr<LogSink> sink;
    bool failureReported = false;
  };
  /// Records that are missing from the stream, the first of them handed over at `since`.
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
  Missing undelivered_;  // not yet reported to the sinks; the writer thread's alone

  mutable std::mutex sinksMutex_;  // guards sinks_ and writer_; never held while a sink is called
  AttachedSinks sinks_;
  std::thread writer_;
  std::atomic<std::thread::id> writerId_;
};

}  // namespace quordalvane
