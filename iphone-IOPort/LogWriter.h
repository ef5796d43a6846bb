#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include <quordalvane/QuorExport.h>

#include "logging/LogDelivery.h"
#include "logging/LogRecord.h"
#include "logging/LogSink.h"

namespace quordalvane {

/// What the logger has done since the process began.
struct LogStatistics {
  std::uint64_t handedOver;        ///< records that were given to outputLogAsync
  std::uint64_t dropped;           ///< those of them that found no room or no memory
  std::uint64_t messagesBuilt;     ///< messages that log statements formatted
  std::uint64_t descriptionsMade;  ///< byte descriptions, those inside of messages included
};

/// The library's logger: it decides which records are wanted and passes them to the sinks that the
/// application has added. All members may be called from any thread at once, a sink's included.
class QUOR_EXPORT LogWriter {
 public:
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

  /// Names the wanted levels, all others become unwanted; an empty set wants none. Throws
  /// std::out_of_range, and changes nothing, when one is outside of 0 to 63.
  static void setTargetLogLevels(const std::set<std::int32_t>& levels);

  /// The logger of this process. It is made at the first call and never destroyed, so that threads
  /// may log until the very end. A normal exit flushes it, for at most LogDelivery::flushTime.
  static LogWriter& sharedInstance();

  /// The bytes as lower-case pairs of hexadecimal digits, parted by blanks, in angle brackets, as
  /// in "<1b 06 01>"; all of them, and "<>" for none.
  /// @{
  static std::string createByteArrayDescription(const std::vector<std::uint8_t>& data);
  static std::string createByteArrayDescription(const std::uint8_t* bytes, std::uint64_t size);
  /// @}

  /// Hands one record over, stamped with the time and the calling thread, and returns without
  /// waiting for any sink. It asks no gate: that is done before the record is built. When the queue
  /// is full the record is dropped, which is counted and told in the stream; without a sink it is
  /// discarded. `fileName` and `methodName` must not be null and must last as long as the process.
  void outputLogAsync(ZKLogType logType, std::int32_t logLevel, std::string objectAddress,
                      const char* fileName, std::int64_t lineNumber, const char* methodName,
                      std::string anyString) noexcept;

  /// As LogDelivery's members of the same names, which see.
  /// @{
  void addSink(std::shared_ptr<LogSink> sink);
  void removeSink(const std::shared_ptr<LogSink>& sink);
  void setQueueCapacity(std::size_t records);
  bool flush(std::chrono::milliseconds timeout = LogDelivery::flushTime);
  /// @}

  /// The counts as they stand; nothing is set back.
  LogStatistics statistics() const;

  /// Counts a message in the statistics; for those who format one.
  static void countMessage() noexcept { messagesBuilt_.fetch_add(1, std::memory_order_relaxed); }

  LogWriter(const LogWriter&) = delete;
  LogWriter& operator=(const LogWriter&) = delete;

 private:
  LogWriter() = default;

  static bool isKnownLevel(std::int32_t level) noexcept { return level >= 0 && level < 64; }

  static inline std::atomic<bool> logging_{false};
  static inline std::atomic<std::uint64_t> targetLevels_{1};  // bit n: level n is wanted
  static inline std::atomic<std::uint64_t> messagesBuilt_{0};
  static inline std::atomic<std::uint64_t> descriptionsMade_{0};

  LogDelivery delivery_;
};

}  // namespace quordalvane
