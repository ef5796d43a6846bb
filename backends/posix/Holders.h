#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace quordalvane::posix {

/// Returns the IDs, in rising order, of the other processes that have the file at `path` open.
/// Processes of other users are included only if they hold a lock on it, because this process
/// cannot see their open files.
std::vector<pid_t> holdersOf(const std::string& path);

/// Returns the same processes in words: "another program: lpd (process 412)", or just "another
/// program" if none is known.
std::string holderInWords(const std::string& path);

}  // namespace quordalvane::posix
