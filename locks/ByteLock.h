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
/// The kernel releases the lock when the process ends in any way. It stores no process ID, which
/// could later belong to another process. It excludes every other `ByteLock` on the same byte, in
/// this process and in others. It has no effect on programs that do not try to take it. A forked
/// child process shares the lock, and holds it until it ends or executes another program.
class QUOR_EXPORT ByteLock {
 public:
  /// Takes the lock on byte `offset` of `file`, without waiting. A missing file is created with the
  /// permissions `mode`. Returns null if the lock is held already. Throws `std::system_error` if
  /// the file cannot be opened or locked.
  static std::optional<ByteLock> tryTake(const std::filesystem::path& file, std::int64_t offset,
                                         unsigned mode);

  /// Does the same, but waits up to `limit` for the lock; if it has to wait, it calls `onWait`
  /// once. Returns null if the time has passed. With a limit of zero it does not wait.
  static std::optional<ByteLock> take(const std::filesystem::path& file, std::int64_t offset,
                                      unsigned mode, std::chrono::milliseconds limit,
                                      const std::function<void()>& onWait);

  /// Returns whether the lock on byte `offset` of `file` is held, by this process or another.
  /// Returns false if the file does not exist. Throws `std::system_error` if the file cannot be
  /// opened or asked.
  static bool isTaken(const std::filesystem::path& file, std::int64_t offset);

  ByteLock(ByteLock&& other) noexcept;
  ByteLock& operator=(ByteLock&& other) noexcept;
  ~ByteLock();

 private:
  explicit ByteLock(int descriptor) : descriptor_(descriptor) {}

  int descriptor_;  // -1 if the lock was moved to another object
};

/// Returns the offset, 1 to 2^62, of the byte for the lock of `name`. It is the same for the same
/// name in every process. If two names have the same offset, they only wait for each other.
QUOR_EXPORT std::int64_t lockOffset(std::string_view name);

}  // namespace quordalvane
