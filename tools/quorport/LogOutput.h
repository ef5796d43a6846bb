#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <set>

#include "logging/LogSink.h"
#include "tools/quorport/Options.h"
#include "tools/quorport/Streams.h"

namespace quordalvane::tool {

/// Sends the diagnostic records to a sink during its lifetime. Several recordings may exist at
/// once; the levels of the newest one apply to all of them.
class Recording {
 public:
  Recording(std::shared_ptr<LogSink> sink, const std::set<std::int32_t>& levels);

  /// Waits until all records are written, but at most two seconds.
  ~Recording();
  Recording(const Recording&) = delete;
  Recording& operator=(const Recording&) = delete;

 private:
  const std::shared_ptr<LogSink> sink_;
  const bool wasLogging_;
};

/// Stops the diagnostic records during its lifetime.
class Unrecorded {
 public:
  Unrecorded();
  ~Unrecorded();
  Unrecorded(const Unrecorded&) = delete;
  Unrecorded& operator=(const Unrecorded&) = delete;

 private:
  const bool wasLogging_;
};

/// Writes the diagnostic records of a command during its lifetime, if the options ask for them.
class LogOutput {
 public:
  /// Throws a CommandFailure with ExitCode::Usage if the file cannot be opened.
  LogOutput(const Options& options, const Streams& streams);

 private:
  std::optional<Recording> recording_;
};

}  // namespace quordalvane::tool
