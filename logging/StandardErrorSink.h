#pragma once

#include <string>

#include <quordalvane/QuorExport.h>

#include "logging/LogSink.h"

namespace quordalvane {

/// Writes records to the standard error of the process, one readable line for each, in blocks of
/// about 64 KiB.
class QUOR_EXPORT StandardErrorSink : public LogSink {
 public:
  /// Throws std::system_error if writing to standard error fails; the rest of the records is then
  /// lost.
  void write(std::span<const LogRecord> records) override;

 private:
  void writeOut();

  std::string lines_;
};

}  // namespace quordalvane
