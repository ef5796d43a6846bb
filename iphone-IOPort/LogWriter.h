#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include <quordalvane/QuorExport.h>

#include "logging/LogRecord.h"
#include "logging/LogSink.h"

namespace quordalvane {

class LogDelivery;

/// Numbers that the logger has counted since the process began.
struct LogStatistics {
  /// The number of records that were passed to outputLogAsyncWithLogType.
  std::uint64_t handedOver;

  /// How many of the records in `handedOver` were dropped because the queue was full or memory was
  /// short.
  std::uint64_t dropped;
};

/// The library's logger. The logger decides which records are wanted, and passes these records to
/// the sinks that the application has added. Several threads may call its members at the same time.
/// A sink may call them as well.
class QUOR_EXPORT LogWriter {
 public:
  /// The longest time that `flush` waits if it is called without a time-out.
  static constexpr std::chrono::milliseconds flushTime{2000};

  /// Returns whether logging is on. Logging is off until the application switches it on. Takes no
  /// lock.
  static bool isLogging() noexcept { return logging_.load(std::memory_order_relaxed); }

  /// Returns whether records of `level` are wanted. Initially only level 0 is wanted; a level
  /// outside 0 to 63 is never wanted. Takes no lock.
  static bool isTargetLogLevel(std::int32_t level) noexcept {
    return isKnownLevel(level) &&
           (targetLevels_.load(std::memory_order_relaxed) >> level & 1U) != 0;
  }

  /// Switches logging on or off. A log statement that runs on another thread at the same time may
  /// still see the old state. Records that are already in the queue are still delivered.
  static void setLogging(bool on) noexcept;

  /// Makes `levels` the wanted levels; records of all other levels are unwanted. With an empty set
  /// no level is wanted. Throws std::out_of_range, and changes nothing, if a level is outside 0 to
  /// 63.
  static void setTargetLogLevels(const std::set<std::int32_t>& levels);

  /// Returns the logger of this process. The logger is created at the first call and never
  /// destroyed, so that threads may log until the process ends. A normal exit of the process calls
  /// `flush`, which then waits for at most `flushTime`.
  static LogWriter& sharedInstance();

  /// Returns all bytes as pairs of lower-case hexadecimal digits, separated by blanks, in angle
  /// brackets: "<1b 06 01>". Returns "<>" if there are no bytes.
  /// @{
  static std::string createByteArrayDescription(const std::vector<std::uint8_t>& data);
  static std::string createByteArrayDescription(const std::uint8_t* bytes, std::uint64_t size);
  /// @}

  /// Adds the time and the calling thread to a record, puts the record into the queue, and returns
  /// without waiting for a sink. Does not check whether logging is on or the level is wanted: the
  /// caller checks this before it builds the record. If the queue is full, the record is dropped,
  /// and a later record reports how many records were dropped. If there is no sink, the record is
  /// discarded. `fileName` and `methodName` must not be null and must be valid until the process
  /// ends.
  void outputLogAsyncWithLogType(ZKLogType logType, std::int32_t logLevel,
                                 std::string objectAddress, const char* fileName,
                                 std::int64_t lineNumber, const char* methodName,
                                 std::string anyString) noexcept;

  /// Adds `sink`, which must not be null; the logger shares its ownership. The sink receives the
  /// records that are in the queue now and all later records. The first sink starts the thread that
  /// writes. Throws std::system_error if that thread cannot be started, and std::bad_alloc if
  /// memory is short; in both cases nothing has changed.
  void addSink(std::shared_ptr<LogSink> sink);

  /// Removes `sink`; has no effect if it was not added. Does not wait: records that are being
  /// delivered at this moment may still reach the sink. Call `flush` afterwards: after it has
  /// returned true, the sink is not called again and the logger has released it.
  void removeSink(const std::shared_ptr<LogSink>& sink);

  /// Sets how many records may wait for the sinks; initially 8,192. Throws std::invalid_argument if
  /// `records` is 0 or more than 1,048,576, and std::bad_alloc if memory is short; in both cases
  /// nothing has changed.
  void setQueueCapacity(std::size_t records);

  /// Waits until the sinks have received every record logged so far, or until `timeout` has passed.
  /// Returns true if the sinks have received all these records. With a time-out of zero `flush`
  /// does not wait. If a sink calls `flush` while records are in the queue, `flush` returns false
  /// at once, because the sink would wait for itself.
  bool flush(std::chrono::milliseconds timeout = flushTime);

  /// Returns the current counts and does not reset them.
  LogStatistics statistics() const;

  LogWriter(const LogWriter&) = delete;
  LogWriter& operator=(const LogWriter&) = delete;

 private:
  LogWriter();

  static bool isKnownLevel(std::int32_t level) noexcept { return level >= 0 && level < 64; }

  static inline std::atomic<bool> logging_{false};
  static inline std::atomic<std::uint64_t> targetLevels_{1};  // bit n is set if level n is wanted

  LogDelivery& delivery_;  // like the logger, it is never destroyed
};

}  // namespace quordalvane
