#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <set>

#include "logging/LogSink.h"
#include "tools/quorport/Options.h"
#include "tools/quorport/Streams.h"

namespace quordalvane::tool {

/// Hands the diagnostic records to a sink as long as this lives. Others may live meanwhile; the
/// levels of the newest are wanted.
class Recording {
 public:
  Recording(std::shared_ptr<LogSink> sink, const std::set<std::int32_t>& levels);

  /// Returns when all records are written, or after two seconds if something holds them up.
  ~Recording();
  Recording(const Recording&) = delete;
  Recording& operator=(const Recording&) = delete;

 private:
  const std::shared_ptr<LogSink> sink_;
  const bool wasLogging_;
};

/// Keeps the diagnostic records back as long as this lives.
class Unrecorded {
 public:
  Unrecorded();
  ~Unrecorded();
  Unrecorded(const Unrecorded&) = delete;
  Unrecorded& operator=(const Unrecorded&) = delete;

 private:
  const bool wasLogging_;
};

/// Writes the diagnostic records of a command, if the options want them, as long as this lives.
class LogOutput {
 public:
  /// Throws a CommandFailure with ExitCode::Usage if the file cannot be opened.
  LogOutput(const Options& options, const Streams& streams);

 private:
  std::optional<Recording> recording_;
};

}  // namespace quordalvane::tool
