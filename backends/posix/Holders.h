#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace quordalvane::posix {

/// The other processes that have the file at `path` open, as far as this one may know: those of
/// other users are visible only by a lock on it. In rising order.
std::vector<pid_t> holdersOf(const std::string& path);

/// Those processes in words: "another program: lpd (process 412)", or "another program" alone if
/// none is known.
std::string holderInWords(const std::string& path);

}  // namespace quordalvane::posix
