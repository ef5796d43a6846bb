#pragma once

#include <functional>

#include <quordalvane/QuorExport.h>

#include "logging/LogSink.h"

namespace quordalvane {

/// Calls a function of the application for every record.
class QUOR_EXPORT CallbackSink : public LogSink {
 public:
  /// The application's function. It runs on the writer thread. It may log. It may throw; this has
  /// no consequence except one report, as for every sink that fails. In the records that it
  /// receives, control characters in the object and the message are escaped and invalid bytes
  /// replaced, as appendPrintable does.
  using Callback = std::function<void(const LogRecord&)>;

  /// Stores `callback`, which must not be empty.
  explicit CallbackSink(Callback callback) : callback_(std::move(callback)) {}

  /// Calls the function for every record, even if it throws for one of them. At the end throws the
  /// first of its exceptions.
  void write(std::span<const LogRecord> records) override;

 private:
  void call(const LogRecord& record);

  Callback callback_;
};

}  // namespace quordalvane
