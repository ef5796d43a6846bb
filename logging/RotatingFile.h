#pragma once

#include <sys/types.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <system_error>

#include <quordalvane/QuorExport.h>

namespace quordalvane {

/// The size at which a log file makes room for a new one, and the number of old ones kept.
struct LogRotation {
  std::uint64_t maximumBytes = 10U << 20U;  ///< of one file; zero: no limit
  unsigned keptFiles = 5;                   ///< beside the file itself; may be zero
};

/// A file of lines that grows at its end. A line that would exceed the maximum begins a new file:
/// FILE becomes FILE.1, FILE.1 becomes FILE.2, and so on up to the first number that is free; if
/// none is, the oldest is replaced. A line is never split between files; one that is longer than
/// the maximum has a file of its own. Only a regular file is rotated. For one thread, and one
/// process: two that rotate the same file lose lines.
class QUOR_EXPORT RotatingFile {
 public:
  /// Opens the file. A missing one is made, readable and writable for its owner alone; programs
  /// that this process executes do not inherit it. Lines are appended; an unfinished last line is
  /// completed first. Throws std::system_error.
  RotatingFile(std::string path, LogRotation rotation);
  ~RotatingFile();

  RotatingFile(const RotatingFile&) = delete;
  RotatingFile& operator=(const RotatingFile&) = delete;

  /// Takes a line, which ends in a line feed. It may remain in memory until `flush`, or until 256
  /// KiB have gathered there. Throws as `flush`.
  void append(std::string_view line);

  /// Writes the lines in memory. A file that was moved or removed meanwhile is made anew under its
  /// name. Throws std::system_error if that or the writing fails; the lines in memory are then
  /// lost, and no half line is left in the file. If a rotation failed, it throws after it has
  /// written: the file then grows beyond its maximum.
  void flush();

 private:
  void open();
  bool isStillInPlace() const;
  void writeBuffer();
  void dropTornLine(std::string_view written);
  void rotate();
  std::string keptName(unsigned age) const;

  std::string path_;
  LogRotation rotation_;
  int descriptor_ = -1;
  dev_t device_ = 0;
  ino_t inode_ = 0;
  bool isRegular_ = false;
  std::uint64_t size_ = 0;  // of the file, without the buffer
  std::string buffer_;
  std::error_code rotationFailure_;  // not yet thrown
};

}  // namespace quordalvane
