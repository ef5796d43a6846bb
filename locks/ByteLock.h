#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string_view>

#include <quordalvane/QuorExport.h>

namespace quordalvane {

/// A lock on one byte of a file. It is held while this object exists.
///
/// The kernel releases the lock when the process ends, even if the process is killed. The lock
/// stores no process ID, because another process could later have this ID. While the lock is held,
/// no process can take another `ByteLock` on the same byte. Programs that do not try to take the
/// lock are not affected. A forked child process shares the lock, and holds it until the child ends
/// or executes another program.
class QUOR_EXPORT ByteLock {
 public:
  /// Takes the lock on byte `offset` of `file`, without waiting. A missing file is created with the
  /// permissions `mode`. Returns null if the lock is held already. Throws `std::system_error` if
  /// the file cannot be opened or locked.
  static std::optional<ByteLock> tryTake(const std::filesystem::path& file, std::int64_t offset,
                                         unsigned mode);

  /// Works as `tryTake`, but waits up to `limit` for the lock, and calls `onWait` once if it has to
  /// wait. Returns null if the lock is not free by then. With a limit of zero, `take` does not
  /// wait.
  static std::optional<ByteLock> take(const std::filesystem::path& file, std::int64_t offset,
                                      unsigned mode, std::chrono::milliseconds limit,
                                      const std::function<void()>& onWait);

  /// Returns whether any process, this one included, holds the lock on byte `offset` of `file`.
  /// Returns false if the file does not exist. Throws `std::system_error` if the file cannot be
  /// opened or the lock cannot be queried.
  static bool isTaken(const std::filesystem::path& file, std::int64_t offset);

  ByteLock(ByteLock&& other) noexcept;
  ByteLock& operator=(ByteLock&& other) noexcept;
  ~ByteLock();

 private:
  explicit ByteLock(int descriptor) : descriptor_(descriptor) {}

  int descriptor_;  // -1 if the lock was moved to another object
};

/// Returns the offset, 1 to 2^62, of the byte for the lock of `name`. A name has the same offset in
/// every process. Two names may share an offset; then jobs of these two names also wait for each
/// other.
QUOR_EXPORT std::int64_t lockOffset(std::string_view name);

}  // namespace quordalvane
