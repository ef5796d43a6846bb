#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <vector>

namespace quordalvane {

/// System calls, in the order in which they were made. Each is a number such as SYS_read.
using SystemCalls = std::vector<long>;

/// The system calls that `body` makes on its thread. `body` runs in a copy of this process, and the
/// copy ends after `body`. The copy has the open connections of this process, but not its threads.
/// Changes of memory by `body` have no effect in this process. Returns no value if the system does
/// not allow a process to be traced.
std::optional<SystemCalls> systemCallsOf(const std::function<void()>& body);

std::size_t countOf(const SystemCalls& calls, long number);

}  // namespace quordalvane
