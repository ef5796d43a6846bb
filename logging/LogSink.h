#pragma once

#include <span>

#include <quordalvane/QuorExport.h>

#include "logging/LogRecord.h"

namespace quordalvane {

/// A destination of log records.
class QUOR_EXPORT LogSink {
 public:
  virtual ~LogSink() = default;

  /// Writes the records in the given order, and returns when they have left this process. Only one
  /// thread, the logger's writer thread, calls `write`. Each call passes at least one record.
  /// `write` may take as long as it needs and may itself log, because no thread that logs waits for
  /// it. The caller owns the records; they are valid during the call. An exception means that some
  /// of the records were not written. The logger reports the first exception of a sink to standard
  /// error and continues to call the sink.
  ///
  /// The texts of a record are not changed: they may contain any bytes of the program or the
  /// printer. A sink that shows them to people must escape control characters; see PrintableText.h.
  virtual void write(std::span<const LogRecord> records) = 0;
};

}  // namespace quordalvane
