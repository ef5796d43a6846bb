#pragma once

#include <string>

#include <quordalvane/QuorExport.h>

#include "logging/LogSink.h"
#include "logging/RotatingFile.h"

namespace quordalvane {

/// Writes records to a file that is rotated by size. Each line is one JSON object; see
/// appendJsonLine.
class QUOR_EXPORT JsonFileSink : public LogSink {
 public:
  /// Opens `path` as RotatingFile does. Throws std::system_error if the file cannot be opened.
  explicit JsonFileSink(std::string path, LogRotation rotation = {})
      : file_(std::move(path), rotation) {}

  /// Throws std::system_error if writing fails, for example because the disk is full or the folder
  /// was removed. The records that could not be written are lost. A later call tries to write only
  /// the records that are passed to it.
  void write(std::span<const LogRecord> records) override;

 private:
  RotatingFile file_;
  std::string line_;
};

}  // namespace quordalvane
