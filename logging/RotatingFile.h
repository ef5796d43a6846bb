#pragma once

#include <sys/types.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <system_error>

#include <quordalvane/QuorExport.h>

namespace quordalvane {

/// The size at which a log file is replaced by a new file, and the number of old files that are
/// kept.
struct LogRotation {
  std::uint64_t maximumBytes = 10U << 20U;  ///< the size limit of one file; zero means no limit
  unsigned keptFiles = 5;                   ///< number of old files; may be zero
};

/// A file to which lines are appended. If a line would exceed the maximum size, a new file is
/// begun: FILE is renamed to FILE.1, FILE.1 to FILE.2, and so on up to the first free number. If no
/// number is free, the oldest file is replaced. A line is never split between files; a line that is
/// longer than the maximum gets a file of its own. Only a regular file is rotated. Only one thread
/// may use the object, and only one process may use the file: two processes that rotate the same
/// file lose lines.
class QUOR_EXPORT RotatingFile {
 public:
  /// Opens the file. A missing file is created; only its owner may read and write the new file.
  /// Programs that this process executes do not inherit the open file. If the file ends in the
  /// middle of a line, a line feed is added first. Throws std::system_error if the file cannot be
  /// opened.
  RotatingFile(std::string path, LogRotation rotation);
  ~RotatingFile();

  RotatingFile(const RotatingFile&) = delete;
  RotatingFile& operator=(const RotatingFile&) = delete;

  /// Adds `line`, which must end with a line feed. The line may remain in memory until `flush` is
  /// called, or until 256 KiB of lines have been collected. Throws the exceptions of `flush`.
  void append(std::string_view line);

  /// Writes the lines that are in memory. If somebody has moved or removed the file, creates it
  /// again. Throws std::system_error if the file cannot be created or written; the lines in memory
  /// are then lost, and the file does not end in the middle of a line. If a rotation failed,
  /// `flush` first writes the lines and then throws; afterwards the file grows beyond its maximum.
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
  std::uint64_t size_ = 0;  // the size of the file, without the lines in the buffer
  std::string buffer_;
  std::error_code rotationFailure_;  // an error that was not thrown yet
};

}  // namespace quordalvane
