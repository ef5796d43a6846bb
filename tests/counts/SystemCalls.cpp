#include "tests/counts/SystemCalls.h"

#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdint>

namespace quordalvane {
namespace {

// Two calls with this number enclose the counted calls. No other code makes this call.
constexpr long mark = SYS_getppid;

void* asPointer(std::uintptr_t value) {
  return reinterpret_cast<void*>(value);
}

[[noreturn]] void runTraced(const std::function<void()>& body) {
  if (::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0) {
    ::_exit(1);
  }
  ::raise(SIGSTOP);
  ::syscall(mark);
  body();
  ::syscall(mark);
  ::_exit(0);
}

bool isStopped(pid_t child) {
  int state = 0;
  return ::waitpid(child, &state, 0) == child && WIFSTOPPED(state);
}

/// Returns the number of the call that the stopped process is about to make. Returns empty if the
/// process has stopped for another reason.
std::optional<long> callBegun(pid_t child) {
  __ptrace_syscall_info info{};
  ::ptrace(PTRACE_GET_SYSCALL_INFO, child, asPointer(sizeof info), &info);
  return info.op == PTRACE_SYSCALL_INFO_ENTRY ? std::optional(static_cast<long>(info.entry.nr))
                                              : std::nullopt;
}

bool runToNextStop(pid_t child) {
  return ::ptrace(PTRACE_SYSCALL, child, nullptr, nullptr) == 0 && isStopped(child);
}

SystemCalls callsUntilItsEnd(pid_t child) {
  SystemCalls calls;
  while (runToNextStop(child)) {
    if (const auto call = callBegun(child)) {
      calls.push_back(*call);
    }
  }
  return calls;
}

SystemCalls betweenTheMarks(const SystemCalls& calls) {
  const auto first = std::find(calls.begin(), calls.end(), mark);
  const auto last = std::find(calls.rbegin(), calls.rend(), mark).base();
  return last - first < 2 ? SystemCalls() : SystemCalls(first + 1, last - 1);
}

}  // namespace

std::optional<SystemCalls> systemCallsOf(const std::function<void()>& body) {
  const pid_t child = ::fork();
  if (child == 0) {
    runTraced(body);
  }
  if (child < 0 || !isStopped(child)) {
    return std::nullopt;
  }
  ::ptrace(PTRACE_SETOPTIONS, child, nullptr, asPointer(PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL));
  return betweenTheMarks(callsUntilItsEnd(child));
}

std::size_t countOf(const SystemCalls& calls, long number) {
  return static_cast<std::size_t>(std::count(calls.begin(), calls.end(), number));
}

}  // namespace quordalvane
