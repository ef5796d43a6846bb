#include "locks/ByteLock.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <system_error>
#include <thread>
#include <utility>

namespace quordalvane {
namespace {

constexpr auto lookPause = std::chrono::milliseconds(10);

// The file is first opened without O_CREAT. If O_CREAT is given, the kernel refuses to open another
// user's file in a folder that everybody may write to.
int openOrMake(const std::filesystem::path& file, unsigned mode) {
  constexpr int flags = O_RDWR | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK;
  const int there = ::open(file.c_str(), flags);
  if (there >= 0 || errno != ENOENT) {
    return there;
  }
  const int made = ::open(file.c_str(), flags | O_CREAT, mode);
  if (made >= 0) {
    // A new file gets this mode even if the umask would remove some bits.
    ::fchmod(made, mode);
  }
  return made;
}

struct flock oneByte(std::int64_t offset) {
  struct flock lock = {};
  lock.l_type = F_WRLCK;
  lock.l_whence = SEEK_SET;
  lock.l_start = offset;
  lock.l_len = 1;
  return lock;
}

[[noreturn]] void fail(const std::filesystem::path& file, int error) {
  throw std::system_error(error, std::generic_category(), file.string());
}

}  // namespace

std::optional<ByteLock> ByteLock::tryTake(const std::filesystem::path& file, std::int64_t offset,
                                          unsigned mode) {
  const int descriptor = openOrMake(file, mode);
  if (descriptor < 0) {
    fail(file, errno);
  }
  ByteLock result(descriptor);
  struct flock lock = oneByte(offset);
  if (::fcntl(descriptor, F_OFD_SETLK, &lock) == 0) {
    return result;
  }
  if (errno != EAGAIN && errno != EACCES) {
    fail(file, errno);
  }
  return std::nullopt;
}

std::optional<ByteLock> ByteLock::take(const std::filesystem::path& file, std::int64_t offset,
                                       unsigned mode, std::chrono::milliseconds limit,
                                       const std::function<void()>& onWait) {
  const auto start = std::chrono::steady_clock::now();
  auto lock = tryTake(file, offset, mode);
  if (!lock && limit > limit.zero() && onWait) {
    onWait();
  }
  while (!lock) {
    const auto left = limit - (std::chrono::steady_clock::now() - start);
    if (left <= left.zero()) {
      return std::nullopt;
    }
    std::this_thread::sleep_for(std::min<std::chrono::nanoseconds>(left, lookPause));
    lock = tryTake(file, offset, mode);
  }
  return lock;
}

bool ByteLock::isTaken(const std::filesystem::path& file, std::int64_t offset) {
  const int descriptor = ::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
  if (descriptor < 0) {
    if (errno == ENOENT) {
      return false;
    }
    fail(file, errno);
  }
  const ByteLock opened(descriptor);
  struct flock lock = oneByte(offset);
  if (::fcntl(descriptor, F_OFD_GETLK, &lock) != 0) {
    fail(file, errno);
  }
  return lock.l_type != F_UNLCK;
}

ByteLock::ByteLock(ByteLock&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}

ByteLock& ByteLock::operator=(ByteLock&& other) noexcept {
  std::swap(descriptor_, other.descriptor_);
  return *this;
}

ByteLock::~ByteLock() {
  if (descriptor_ >= 0) {
    ::close(descriptor_);
  }
}

std::int64_t lockOffset(std::string_view name) {
  std::uint64_t hash = 0xcbf29ce484222325;  // FNV-1a
  for (const char character : name) {
    hash = (hash ^ static_cast<unsigned char>(character)) * 0x100000001b3;
  }
  return static_cast<std::int64_t>(hash >> 2U) + 1;
}

}  // namespace quordalvane
