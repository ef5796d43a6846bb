#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <vector>

namespace quordalvane {

/// Numbers of system calls, in the order in which they were made.
using SystemCalls = std::vector<long>;

/// The system calls that `body` makes on its thread. It runs in a copy of this process, which ends
/// with it: connections that are open here are open there, threads of this process continue here
/// and are missing there, and nothing that it changes in memory is seen here. None where the system
/// does not let a process be traced.
std::optional<SystemCalls> systemCallsOf(const std::function<void()>& body);

std::size_t countOf(const SystemCalls& calls, long number);

}  // namespace quordalvane
