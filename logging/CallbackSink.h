#pragma once

#include <functional>

#include <quordalvane/QuorExport.h>

#include "logging/LogSink.h"

namespace quordalvane {

/// Calls a function of the application for every record.
class QUOR_EXPORT CallbackSink : public LogSink {
 public:
  /// The function runs on the writer thread. It may log, and may throw: the only consequence is the
  /// one report that every failing sink gets. In the records that it sees, control characters of
  /// the object and the message are escaped and invalid bytes replaced, as by appendPrintable.
  using Callback = std::function<void(const LogRecord&)>;

  /// Keeps `callback`, never empty, as long as the sink lives.
  explicit CallbackSink(Callback callback) : callback_(std::move(callback)) {}

  /// Calls the function for every record, even after it has thrown; then throws its first
  /// exception.
  void write(std::span<const LogRecord> records) override;

 private:
  void call(const LogRecord& record);

  Callback callback_;
};

}  // namespace quordalvane
