#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

#include "journal/JournalError.h"

namespace quordalvane {

/// The name of a file system, by the number that the kernel has for it, on which other machines
/// write as well; null if it is not a known one. Locks and shared memory do not hold there.
std::optional<std::string_view> networkFileSystem(unsigned long type);

/// The one true path of `file`, through all links. The folders above it are made if they are not
/// there, for this user alone, and are on disk. Throws `JournalError` if that fails, or if they are
/// on a network file system.
std::filesystem::path preparedPath(const std::filesystem::path& file);

/// Makes an empty journal, for this user alone. It appears under its name when it is whole and on
/// disk: a file that is empty, or a part of one, is a damaged journal and never a new one. Nobody
/// else may be making it. Throws `JournalError`.
void makeJournal(const std::filesystem::path& file);

/// The file whose bytes are the locks of a journal: one for its opening, and one for each name.
/// @{
std::filesystem::path lockFileOf(const std::filesystem::path& journal);
constexpr std::int64_t offsetOfOpening = 0;
constexpr unsigned modeOfLocks = 0600;
/// @}

/// The answer of `action`, which is given that file; throws `JournalError` if it throws a
/// `std::system_error`.
template <typename Action>
auto withLocksOf(const std::filesystem::path& journal, Action action) {
  try {
    return action(lockFileOf(journal));
  } catch (const std::system_error& error) {
    throw JournalError(journal, "its locks: " + std::string(error.what()));
  }
}

}  // namespace quordalvane
