#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

#include "journal/JournalError.h"

namespace quordalvane {

/// Returns the name of the network file system that has this number in the kernel; null if the
/// number is not that of a known network file system. On a network file system, locks and shared
/// memory do not work between machines.
std::optional<std::string_view> networkFileSystem(unsigned long type);

/// Returns the path of `file` with all symbolic links resolved. If folders of this path are
/// missing, creates them for this user only and writes them to disk. Throws `JournalError` if a
/// step fails, if a folder is on a network file system, or if the file has more than one hard link.
std::filesystem::path preparedPath(const std::filesystem::path& file);

/// Creates an empty journal that only this user may read and write. The file gets its name only
/// when it is complete and on disk. So an empty or incomplete file is a damaged journal, never a
/// new one. The caller must ensure that no other process creates the file at the same time. Throws
/// `JournalError` if the file cannot be created.
void makeJournal(const std::filesystem::path& file);

/// The lock file of a journal. One of its bytes is the lock for opening the journal; other bytes
/// are the locks of the job names.
/// @{
std::filesystem::path lockFileOf(const std::filesystem::path& journal);
constexpr std::int64_t offsetOfOpening = 0;
constexpr unsigned modeOfLocks = 0600;
/// @}

/// Calls `action` with the lock file and returns its result. If `action` throws a
/// `std::system_error`, throws a `JournalError` instead.
template <typename Action>
auto withLocksOf(const std::filesystem::path& journal, Action action) {
  try {
    return action(lockFileOf(journal));
  } catch (const std::system_error& error) {
    throw JournalError(journal, "its locks cannot be used: " + std::string(error.what()));
  }
}

}  // namespace quordalvane
