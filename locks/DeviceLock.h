#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <optional>
#include <string_view>

#include <quordalvane/QuorExport.h>

#include "locks/ByteLock.h"

namespace quordalvane {

/// Takes a printer for one job, so that jobs of this machine take turns on it: waits for at most
/// `limit` until no other job has it, and calls `onWait` once if it has to wait. Empty when the
/// time is over. The printer is given back when the lock ends or the process does.
///
/// `identity` distinguishes the device from others, see `deviceIdentity`. The lock does not stop
/// programs that do not ask for it. Throws `std::system_error` if the file of the locks cannot be
/// used.
QUOR_EXPORT std::optional<ByteLock> takeDevice(std::string_view identity,
                                               std::chrono::milliseconds limit,
                                               const std::function<void()>& onWait = {});

/// The file on which these locks lie. In `/run/lock`, where it is one for all users of the machine;
/// without such a folder in `$XDG_RUNTIME_DIR`, or otherwise in a private folder among the
/// temporary files, and then users do not wait for each other.
QUOR_EXPORT std::filesystem::path deviceLockFile();

/// The same, with `shared` instead of `/run/lock`.
std::filesystem::path deviceLockFile(const std::filesystem::path& shared);

}  // namespace quordalvane
