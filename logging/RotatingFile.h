#pragma once

#include <sys/types.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <system_error>

#include <quordalvane/QuorExport.h>

namespace quordalvane {

/// When a log file makes room for a new one, and what is kept of it.
struct LogRotation {
  std::uint64_t maximumBytes = 10U << 20U;  ///< of one file; zero: it grows for ever
  unsigned keptFiles = 5;                   ///< beside the file itself; zero: none is kept
};

/// A file of lines that grows at its end. A line that would lead beyond the maximum begins a new
/// file: FILE becomes FILE.1, FILE.1 becomes FILE.2, and so on up to the first number that is free;
/// where none is, the oldest is replaced. A line is never parted between files; one that is longer
/// than the maximum has a file of its own. Only a regular file is rotated. For one thread, and one
/// process: two that rotate the same file lose lines.
class QUOR_EXPORT RotatingFile {
 public:
  /// Opens the file, which is made when missing, readable and writable for its owner alone, and
  /// closed in programs that this process executes. Lines go behind what it holds; when that ends
  /// amid a line, a new line is begun first. Throws std::system_error.
  RotatingFile(std::string path, LogRotation rotation);
  ~RotatingFile();

  RotatingFile(const RotatingFile&) = delete;
  RotatingFile& operator=(const RotatingFile&) = delete;

  /// Takes a line, which ends in a line feed. It may stay in memory until `flush`. Throws as
  /// `flush`.
  void append(std::string_view line);

  /// Writes what is in memory. A file that was moved or removed meanwhile is made anew under its
  /// name. Throws std::system_error when that or the writing fails; the lines in memory are lost
  /// then, and none is left half in the file. When a rotation failed it throws after it has
  /// written: the file then grows on beyond its maximum.
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
