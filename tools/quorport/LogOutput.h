#pragma once

#include <memory>

#include "logging/LogSink.h"
#include "tools/quorport/Options.h"
#include "tools/quorport/Streams.h"

namespace quordalvane::tool {

/// The diagnostic records of a command, where the options want them, as long as this lives.
class LogOutput {
 public:
  /// Throws a Failure with ExitCode::Usage if the file cannot be opened.
  LogOutput(const Options& options, const Streams& streams);

  /// Returns when all records are written, or after two seconds if something holds them up.
  ~LogOutput();
  LogOutput(const LogOutput&) = delete;
  LogOutput& operator=(const LogOutput&) = delete;

 private:
  std::shared_ptr<LogSink> sink_;
};

}  // namespace quordalvane::tool
