#pragma once

#include <functional>

#include <quordalvane/QuorExport.h>

#include "logging/LogSink.h"

namespace quordalvane {

/// Calls a function of the application for every record.
class QUOR_EXPORT CallbackSink : public LogSink {
 public:
  /// The application's function. The function runs on the writer thread and may itself log. If the
  /// function throws, LogDelivery reports the first exception and continues to call the function.
  /// The received records contain the object and the message as appendPrintable writes them:
  /// control characters are escaped and invalid bytes replaced.
  using Callback = std::function<void(const LogRecord&)>;

  /// Stores `callback`, which must not be empty.
  explicit CallbackSink(Callback callback) : callback_(std::move(callback)) {}

  /// Calls the function for every record, even if an earlier call threw. Afterwards throws the
  /// first exception that a call threw.
  void write(std::span<const LogRecord> records) override;

 private:
  void call(const LogRecord& record);

  Callback callback_;
};

}  // namespace quordalvane
