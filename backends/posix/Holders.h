#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace quordalvane::posix {

/// Returns the IDs, in rising order, of the other processes that have the file at `path` open.
/// Processes of other users are included only if they hold a lock on the file, because this process
/// cannot see their open files.
std::vector<pid_t> holdersOf(const std::string& path);

/// Returns the processes of `holdersOf` in words: "another program: lpd (process 412)". Returns
/// only "another program" if no such process is known.
std::string holderInWords(const std::string& path);

}  // namespace quordalvane::posix
