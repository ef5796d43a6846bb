#pragma once

#include <string>

#include <quordalvane/QuorExport.h>

#include "logging/LogSink.h"

namespace quordalvane {

/// Writes records to the process's standard error, one readable line each, some 64 KiB at once.
class QUOR_EXPORT StandardErrorSink : public LogSink {
 public:
  /// Throws std::system_error if standard error takes no more; the rest of the records is then
  /// lost.
  void write(std::span<const LogRecord> records) override;

 private:
  void writeOut();

  std::string lines_;
};

}  // namespace quordalvane
