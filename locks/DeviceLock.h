#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <optional>
#include <string_view>

#include <quordalvane/QuorExport.h>

#include "locks/ByteLock.h"

namespace quordalvane {

/// Takes the lock of a printer for one job, so that jobs on this machine use the printer one after
/// the other. If another job has the lock, calls `onWait` once and waits for the lock, at most for
/// `limit`. Returns null if the lock is not free by then. The printer is free again when the
/// returned lock is destroyed or the process ends.
///
/// `identity` distinguishes the device from others; see `deviceIdentity`. The lock does not stop a
/// program that does not try to take it. Throws `std::system_error` if the lock file cannot be
/// used.
QUOR_EXPORT std::optional<ByteLock> takeDevice(std::string_view identity,
                                               std::chrono::milliseconds limit,
                                               const std::function<void()>& onWait = {});

/// Returns the path of the file that holds the locks of all printers. The file is in `/run/lock`,
/// where all users of the machine share it. If there is no such folder, the file is in
/// `$XDG_RUNTIME_DIR` or, if this is not set, in a private temporary folder. In these two cases,
/// jobs of different users do not wait for each other.
QUOR_EXPORT std::filesystem::path deviceLockFile();

/// Works as the function above, with the folder `shared` in place of `/run/lock`.
std::filesystem::path deviceLockFile(const std::filesystem::path& shared);

}  // namespace quordalvane
