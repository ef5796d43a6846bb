#pragma once

#include <string>

#include <quordalvane/QuorExport.h>

#include "logging/LogSink.h"
#include "logging/RotatingFile.h"

namespace quordalvane {

/// Writes records to a file, one JSON object a line (see appendJsonLine), with rotation by size.
class QUOR_EXPORT JsonFileSink : public LogSink {
 public:
  /// Opens `path` as RotatingFile does. Throws std::system_error if it cannot.
  explicit JsonFileSink(std::string path, LogRotation rotation = {})
      : file_(std::move(path), rotation) {}

  /// Throws std::system_error if the disk is full, the file's folder was removed and the like; the
  /// records that could not be written are lost, and the next ones are tried again.
  void write(std::span<const LogRecord> records) override;

 private:
  RotatingFile file_;
  std::string line_;
};

}  // namespace quordalvane
