#include "logging/RotatingFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <utility>

#include "logging/DescriptorOutput.h"

namespace quordalvane {
namespace {

constexpr std::size_t writeSize = std::size_t{256} << 10U;

std::error_code lastError() noexcept {
  return {errno, std::generic_category()};
}

bool endsAmidLine(int descriptor, off_t size) noexcept {
  char last = '\n';
  return size > 0 && ::pread(descriptor, &last, sizeof last, size - 1) == 1 && last != '\n';
}

}  // namespace

RotatingFile::RotatingFile(std::string path, LogRotation rotation)
    : path_(std::move(path)), rotation_(rotation) {
  open();
}

RotatingFile::~RotatingFile() {
  ::close(descriptor_);
}

void RotatingFile::open() {
  const int opened =
      ::open(path_.c_str(), O_RDWR | O_APPEND | O_CREAT | O_CLOEXEC | O_NOCTTY, S_IRUSR | S_IWUSR);
  if (opened < 0) {
    throw std::system_error(lastError(), "cannot open " + path_);
  }
  if (descriptor_ >= 0) {
    ::close(descriptor_);
  }
  descriptor_ = opened;
  struct stat facts {};
  ::fstat(descriptor_, &facts);
  device_ = facts.st_dev;
  inode_ = facts.st_ino;
  isRegular_ = S_ISREG(facts.st_mode);
  size_ = isRegular_ ? static_cast<std::uint64_t>(facts.st_size) : 0;
  if (isRegular_ && endsAmidLine(descriptor_, facts.st_size)) {
    size_ += writeAll(descriptor_, "\n").written;
  }
}

bool RotatingFile::isStillInPlace() const {
  struct stat facts {};
  return ::stat(path_.c_str(), &facts) == 0 && facts.st_dev == device_ && facts.st_ino == inode_;
}

void RotatingFile::append(std::string_view line) {
  const std::uint64_t before = size_ + buffer_.size();
  const bool isTooMuch = before > 0 && before + line.size() > rotation_.maximumBytes;
  if (isTooMuch && isRegular_ && rotation_.maximumBytes > 0) {
    writeBuffer();
    rotate();
  }
  buffer_ += line;
  if (buffer_.size() >= writeSize) {
    writeBuffer();
  }
}

void RotatingFile::flush() {
  writeBuffer();
  if (rotationFailure_) {
    throw std::system_error(std::exchange(rotationFailure_, {}), "cannot rotate " + path_);
  }
}

void RotatingFile::writeBuffer() {
  if (buffer_.empty()) {
    return;
  }
  std::string lines;
  lines.swap(buffer_);  // if the write throws, the lines are lost
  if (!isStillInPlace()) {
    open();
  }
  const WriteOutcome outcome = writeAll(descriptor_, lines);
  size_ += outcome.written;
  if (outcome.error) {
    dropTornLine(std::string_view(lines).substr(0, outcome.written));
    throw std::system_error(outcome.error, "cannot write to " + path_);
  }
  lines.clear();
  buffer_.swap(lines);  // so that the buffer keeps its allocated memory
}

/// If `written` ends in the middle of a line, removes this incomplete line from the file.
void RotatingFile::dropTornLine(std::string_view written) {
  const std::size_t torn =
      written.size() - (written.rfind('\n') + 1);  // without a line feed, rfind returns -1
  if (torn > 0 && isRegular_ && ::ftruncate(descriptor_, static_cast<off_t>(size_ - torn)) == 0) {
    size_ -= torn;
  }
}

void RotatingFile::rotate() {
  // Only existing files are renamed, because the number of files to keep can be immense.
  unsigned free = 1;
  while (free < rotation_.keptFiles && ::access(keptName(free).c_str(), F_OK) == 0) {
    ++free;
  }
  for (unsigned age = free; age > 1; --age) {
    std::rename(keptName(age - 1).c_str(), keptName(age).c_str());
  }
  const bool madeRoom = rotation_.keptFiles > 0
                            ? std::rename(path_.c_str(), keptName(1).c_str()) == 0
                            : ::unlink(path_.c_str()) == 0;
  if (madeRoom) {
    open();
  } else {
    rotationFailure_ = lastError();
    rotation_.maximumBytes = 0;
  }
}

std::string RotatingFile::keptName(unsigned age) const {
  return path_ + '.' + std::to_string(age);
}

}  // namespace quordalvane
