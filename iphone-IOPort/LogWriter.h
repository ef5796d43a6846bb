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

/// The counts of the logger since the process began.
struct LogStatistics {
  std::uint64_t handedOver;  ///< records that were given to outputLogAsyncWithLogType
  std::uint64_t dropped;     ///< those of them that found no room or no memory
};

/// The library's logger: it decides which records are wanted and passes them to the sinks that the
/// application has added. All members may be called from any thread at once, a sink's included.
class QUOR_EXPORT LogWriter {
 public:
  /// How long `flush` waits if it is given no time-out.
  static constexpr std::chrono::milliseconds flushTime{2000};

  /// Whether logging is switched on. Off until the application switches it on. Takes no lock.
  static bool isLogging() noexcept { return logging_.load(std::memory_order_relaxed); }

  /// Whether records of `level` are wanted. Only level 0 is, until the application says otherwise;
  /// a level outside of 0 to 63 never is. Takes no lock.
  static bool isTargetLogLevel(std::int32_t level) noexcept {
    return isKnownLevel(level) &&
           (targetLevels_.load(std::memory_order_relaxed) >> level & 1U) != 0;
  }

  /// Switches logging on or off. A statement that runs meanwhile on another thread may still see
  /// the former state. Records already handed over are delivered all the same.
  static void setLogging(bool on) noexcept;

  /// Names the wanted levels, all others become unwanted; with an empty set no level is wanted.
  /// Throws std::out_of_range, and changes nothing, if one is outside of 0 to 63.
  static void setTargetLogLevels(const std::set<std::int32_t>& levels);

  /// The logger of this process. It is made at the first call and never destroyed, so that threads
  /// may log until the very end. A normal exit flushes it, for at most `flushTime`.
  static LogWriter& sharedInstance();

  /// The bytes as lower-case pairs of hexadecimal digits, separated by blanks, in angle brackets,
  /// as in "<1b 06 01>"; all of them, and "<>" for no bytes.
  /// @{
  static std::string createByteArrayDescription(const std::vector<std::uint8_t>& data);
  static std::string createByteArrayDescription(const std::uint8_t* bytes, std::uint64_t size);
  /// @}

  /// Hands one record over, stamped with the time and the calling thread, and returns without
  /// waiting for any sink. It asks no gate: the caller does so before it builds the record. If the
  /// queue is full, the record is dropped, counted, and the count is reported in the stream;
  /// without a sink it is discarded. `fileName` and `methodName` must not be null and must last as
  /// long as the process.
  void outputLogAsyncWithLogType(ZKLogType logType, std::int32_t logLevel,
                                 std::string objectAddress, const char* fileName,
                                 std::int64_t lineNumber, const char* methodName,
                                 std::string anyString) noexcept;

  /// Gives `sink`, never null and shared from now on, every record from now on and those that are
  /// still queued. The first sink starts the thread that writes. Throws std::system_error if that
  /// thread cannot be started and std::bad_alloc if memory is short; nothing has changed then.
  void addSink(std::shared_ptr<LogSink> sink);

  /// Removes the sink; one that was never added is ignored. Does not wait: records that are being
  /// delivered at this moment may still reach it. After a `flush` that returned true it is not
  /// called again and no longer shared.
  void removeSink(const std::shared_ptr<LogSink>& sink);

  /// How many records may wait for the sinks; 8,192 at first. Throws std::invalid_argument for zero
  /// and for more than 1,048,576, and std::bad_alloc if memory is short; nothing has changed then.
  void setQueueCapacity(std::size_t records);

  /// Waits until the sinks have received every record so far, or until `timeout` has passed. True
  /// if they have. Zero asks without waiting. If a sink calls it and records are left, it returns
  /// false at once, since the sink would wait for itself.
  bool flush(std::chrono::milliseconds timeout = flushTime);

  /// The counts as they are now; they are not reset.
  LogStatistics statistics() const;

  LogWriter(const LogWriter&) = delete;
  LogWriter& operator=(const LogWriter&) = delete;

 private:
  LogWriter();

  static bool isKnownLevel(std::int32_t level) noexcept { return level >= 0 && level < 64; }

  static inline std::atomic<bool> logging_{false};
  static inline std::atomic<std::uint64_t> targetLevels_{1};  // bit n: level n is wanted

  LogDelivery& delivery_;  // never destroyed, as the logger
};

}  // namespace quordalvane
