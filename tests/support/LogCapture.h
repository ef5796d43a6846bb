#pragma once

#include <memory>
#include <mutex>
#include <set>
#include <vector>

#include "iphone-IOPort/LogWriter.h"

namespace quordalvane::test {

/// Gathers every log record of the process, raw and in order, from its first use on. Only one
/// thread may use it.
class LogCapture {
 public:
  static LogCapture& instance();

  /// How many records have been handed over so far. A test that stores this number with an event
  /// knows which records precede the event, although they are delivered later.
  static std::uint64_t handedOver() { return LogWriter::sharedInstance().statistics().handedOver; }

  /// Forgets all records so far.
  void clear();

  /// All records since the last call or `clear`. Throws if a record was dropped.
  std::vector<LogRecord> take();

 private:
  class Sink;

  LogCapture();

  const std::shared_ptr<Sink> sink_;
  LogStatistics seen_{};  // the statistics at the last call
};

/// Switches logging on or off, as given, while this object exists; afterwards logging is off.
class Logging {
 public:
  explicit Logging(bool on, const std::set<std::int32_t>& levels = {0});
  ~Logging();
  Logging(const Logging&) = delete;
  Logging& operator=(const Logging&) = delete;
};

}  // namespace quordalvane::test
