#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string_view>

#include <quordalvane/QuorExport.h>

namespace quordalvane {

/// A lock on one byte of a file, held as long as this lives.
///
/// The kernel releases it when the process ends in any way. No process ID is stored, so none can
/// belong to another process by now. It excludes every other `ByteLock` on the same byte, of this
/// process and of others, and has no effect on programs that do not ask for it. A process that is
/// forked off shares it, and keeps it until it ends or starts another program.
class QUOR_EXPORT ByteLock {
 public:
  /// Takes the lock on byte `offset` of `file`, which is made with `mode` if it is not there. Empty
  /// if it is held. Throws `std::system_error` if the file cannot be opened or locked.
  static std::optional<ByteLock> tryTake(const std::filesystem::path& file, std::int64_t offset,
                                         unsigned mode);

  /// The same, and waits for it: at most `limit`, and `onWait` is called once if it has to. Empty
  /// when the time is over. A limit of zero is `tryTake`.
  static std::optional<ByteLock> take(const std::filesystem::path& file, std::int64_t offset,
                                      unsigned mode, std::chrono::milliseconds limit,
                                      const std::function<void()>& onWait);

  /// Whether that lock is held, by this process included. False if there is no such file. Throws as
  /// above.
  static bool isTaken(const std::filesystem::path& file, std::int64_t offset);

  ByteLock(ByteLock&& other) noexcept;
  ByteLock& operator=(ByteLock&& other) noexcept;
  ~ByteLock();

 private:
  explicit ByteLock(int descriptor) : descriptor_(descriptor) {}

  int descriptor_;  // -1: handed on
};

/// The byte that the locks of `name` lie on, 1 to 2^62: the same for the same name everywhere. Two
/// names on one byte would only wait for each other.
QUOR_EXPORT std::int64_t lockOffset(std::string_view name);

}  // namespace quordalvane
