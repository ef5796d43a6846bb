#pragma once

#include <string>

#include <quordalvane/QuorExport.h>

#include "logging/LogSink.h"
#include "logging/RotatingFile.h"

namespace quordalvane {

/// Writes records to a file, one JSON object a line (see appendJsonLine), with rotation by size.
class QUOR_EXPORT JsonFileSink : public LogSink {
 public:
  /// Opens `path` as RotatingFile does. Throws std::system_error when it cannot.
  explicit JsonFileSink(std::string path, LogRotation rotation = {})
      : file_(std::move(path), rotation) {}

  /// Throws std::system_error when the disk is full, the file's folder is gone and the like; what
  /// could not be written is lost, and the next records are tried again.
  void write(std::span<const LogRecord> records) override;

 private:
  RotatingFile file_;
  std::string line_;
};

}  // namespace quordalvane
