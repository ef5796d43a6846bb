// Runs a program and kills it at one of its system calls. Usage: kill_at K PLACE COMMAND …
//
// Calls of all its threads are counted from the first open of a path that contains PLACE. The
// program is killed when it enters call K, before the call has any effect. If the program ends
// before call K, its exit status is also that of kill_at. A sanitizer does not look for leaks in
// the program, because it cannot trace a program that kill_at traces.
#include <fcntl.h>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <string>

namespace {

constexpr int killed = 137;
constexpr int usage = 64;

void* option(std::uint64_t value) {
  return reinterpret_cast<void*>(value);  // ptrace takes its options as a pointer
}

std::string textAt(pid_t thread, std::uint64_t address) {
  std::array<char, 256> text{};
  iovec here{text.data(), text.size() - 1};
  iovec there{reinterpret_cast<void*>(address), text.size() - 1};
  if (::process_vm_readv(thread, &here, 1, &there, 1, 0) < 0) {
    there.iov_len = here.iov_len = 64;  // the text may end where its memory mapping ends
    ::process_vm_readv(thread, &here, 1, &there, 1, 0);
  }
  return text.data();
}

// Whether the thread enters a system call; `info` then describes the call.
bool entersCall(pid_t thread, __ptrace_syscall_info& info) {
  ::ptrace(PTRACE_GET_SYSCALL_INFO, thread, option(sizeof info), &info);
  return info.op == PTRACE_SYSCALL_INFO_ENTRY;
}

class Countdown {
 public:
  Countdown(long call, std::string place) : left_(call), place_(std::move(place)) {}

  bool isOver(pid_t thread) {
    __ptrace_syscall_info info{};
    if (!entersCall(thread, info)) {
      return false;
    }
    isCounting_ =
        isCounting_ || (info.entry.nr == SYS_openat &&
                        textAt(thread, info.entry.args[1]).find(place_) != std::string::npos);
    return isCounting_ && --left_ == 0;
  }

 private:
  long left_;
  const std::string place_;
  bool isCounting_ = false;
};

int follow(pid_t process, Countdown countdown) {
  int status = 0;
  while (true) {
    const pid_t thread = ::waitpid(-1, &status, __WALL);
    if (thread < 0) {
      return usage;
    }
    if (WIFEXITED(status) || WIFSIGNALED(status)) {
      if (thread == process) {
        return WIFEXITED(status) ? WEXITSTATUS(status) : killed;
      }
      continue;
    }
    int signal = WSTOPSIG(status);
    if (signal == (SIGTRAP | 0x80)) {
      if (countdown.isOver(thread)) {
        ::kill(process, SIGKILL);
      }
      signal = 0;
    } else if (signal == SIGTRAP || signal == SIGSTOP) {
      signal = 0;  // a new thread or program has stopped; no signal is passed on
    }
    ::ptrace(PTRACE_SYSCALL, thread, nullptr, option(static_cast<std::uint64_t>(signal)));
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 4) {
    return usage;
  }
  const pid_t process = ::fork();
  if (process == 0) {
    ::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
    ::raise(SIGSTOP);
    ::setenv("LSAN_OPTIONS", "detect_leaks=0", 1);
    ::execv(argv[3], argv + 3);
    ::_exit(usage);
  }
  ::waitpid(process, nullptr, 0);
  ::ptrace(PTRACE_SETOPTIONS, process, nullptr,
           option(PTRACE_O_TRACESYSGOOD | PTRACE_O_TRACECLONE | PTRACE_O_EXITKILL));
  ::ptrace(PTRACE_SYSCALL, process, nullptr, nullptr);
  return follow(process, Countdown(std::atol(argv[1]), argv[2]));
}
