#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <set>

#include "logging/LogSink.h"
#include "tools/quorport/Options.h"
#include "tools/quorport/Streams.h"

namespace quordalvane::tool {

/// While this object exists, sends the diagnostic records to a sink. If several such objects exist,
/// the levels of the newest one apply to all of them.
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

/// While this object exists, no diagnostic records are written.
class Unrecorded {
 public:
  Unrecorded();
  ~Unrecorded();
  Unrecorded(const Unrecorded&) = delete;
  Unrecorded& operator=(const Unrecorded&) = delete;

 private:
  const bool wasLogging_;
};

/// While this object exists, writes the diagnostic records of a command, if the options ask for
/// them.
class LogOutput {
 public:
  /// Throws a CommandFailure with ExitCode::Usage if the file cannot be opened.
  LogOutput(const Options& options, const Streams& streams);

 private:
  std::optional<Recording> recording_;
};

}  // namespace quordalvane::tool
