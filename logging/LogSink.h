#pragma once

#include <span>

#include <quordalvane/QuorExport.h>

#include "logging/LogRecord.h"

namespace quordalvane {

/// A destination of log records.
class QUOR_EXPORT LogSink {
 public:
  virtual ~LogSink() = default;

  /// Writes the records, in the order given; returns after they have left this process. Called on
  /// the delivery's writer thread alone, never twice at once, and always with at least one record.
  /// It may take as long as it needs and may itself log: no thread that logs waits for it. The
  /// records are the caller's and end with the call. An exception means that some of them were not
  /// written; the delivery reports a sink's first one to standard error and keeps calling the sink.
  ///
  /// The texts are as the program and the printer made them: a sink that shows them to people
  /// escapes control characters (see PrintableText.h).
  virtual void write(std::span<const LogRecord> records) = 0;
};

}  // namespace quordalvane
