#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <iterator>
#include <mutex>
#include <string>
#include <vector>

#include "logging/LogSink.h"
#include "tests/support/TemporaryFolder.h"

namespace quordalvane::test {

inline LogRecord recordOf(std::string message) {
  return {.time = {},
          .thread = 7,
          .type = ZKLogTypeProcess,
          .level = 0,
          .line = 1,
          .file = "file.cpp",
          .method = "-[Maker make]",
          .object = "0x1",
          .message = std::move(message)};
}

/// Keeps the records that it receives.
class KeepingSink : public LogSink {
 public:
  void write(std::span<const LogRecord> records) override {
    const std::lock_guard lock(mutex_);
    records_.insert(records_.end(), records.begin(), records.end());
  }

  std::vector<LogRecord> records() const {
    const std::lock_guard lock(mutex_);
    return records_;
  }

  std::vector<std::string> messages() const {
    std::vector<std::string> messages;
    for (const LogRecord& record : records()) {
      messages.push_back(record.message);
    }
    return messages;
  }

 private:
  mutable std::mutex mutex_;
  std::vector<LogRecord> records_;
};

inline std::string contentsOf(const std::string& path) {
  std::ifstream stream(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

/// Redirects standard error to a file as long as this object exists.
class RedirectedStandardError {
 public:
  RedirectedStandardError() : saved_(::dup(STDERR_FILENO)) {
    const int file = ::open(path().c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
    ::dup2(file, STDERR_FILENO);
    ::close(file);
  }
  ~RedirectedStandardError() {
    ::dup2(saved_, STDERR_FILENO);
    ::close(saved_);
  }

  RedirectedStandardError(const RedirectedStandardError&) = delete;
  RedirectedStandardError& operator=(const RedirectedStandardError&) = delete;

  std::string text() const { return contentsOf(path()); }

 private:
  std::string path() const { return folder_.file("standard-error"); }

  TemporaryFolder folder_;
  int saved_;
};

}  // namespace quordalvane::test
