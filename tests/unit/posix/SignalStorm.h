#pragma once

#include <sys/time.h>

#include <atomic>
#include <csignal>

namespace quordalvane::posix {

/// Interrupts the process by a signal every half millisecond while this object exists; system calls
/// are not restarted.
class SignalStorm {
 public:
  SignalStorm() {
    struct sigaction action {};
    action.sa_handler = [](int) { ++struck_; };
    ::sigaction(SIGALRM, &action, &before_);
    struck_ = 0;
    strikeEvery(500);
  }
  ~SignalStorm() {
    strikeEvery(0);
    ::sigaction(SIGALRM, &before_, nullptr);
  }
  SignalStorm(const SignalStorm&) = delete;
  SignalStorm& operator=(const SignalStorm&) = delete;

  int strikes() const { return struck_; }

 private:
  static void strikeEvery(suseconds_t microseconds) {
    const itimerval period{.it_interval = {.tv_sec = 0, .tv_usec = microseconds},
                           .it_value = {.tv_sec = 0, .tv_usec = microseconds}};
    ::setitimer(ITIMER_REAL, &period, nullptr);
  }

  static inline std::atomic<int> struck_ = 0;
  struct sigaction before_ {};
};

}  // namespace quordalvane::posix
