#pragma once

#include <sys/types.h>

#include <csignal>
#include <functional>
#include <thread>

namespace quordalvane::tool {

/// SIGINT and SIGTERM as something to wait for: while this lives, the calling thread and those that
/// it starts are not disturbed by them. They arrive even where the parent process had them ignored,
/// as shells do for what runs in the background.
class StopSignals {
 public:
  /// Raises std::system_error if the system has no descriptor left.
  StopSignals();
  ~StopSignals();
  StopSignals(const StopSignals&) = delete;
  StopSignals& operator=(const StopSignals&) = delete;

  /// Becomes readable when a signal comes. Never blocks.
  int descriptor() const { return descriptor_; }

  /// Whether a signal has come, which is taken away.
  bool take();

 private:
  sigset_t before_{};
  int descriptor_;
};

/// Calls a function on a thread of its own for every SIGINT and SIGTERM.
class SignalWatch {
 public:
  /// Raises std::system_error if the system cannot provide what it takes.
  explicit SignalWatch(std::function<void()> onSignal);

  /// Waits for the function if it is running.
  ~SignalWatch();
  SignalWatch(const SignalWatch&) = delete;
  SignalWatch& operator=(const SignalWatch&) = delete;

 private:
  void watch();

  StopSignals signals_;
  const std::function<void()> onSignal_;
  int end_;  // becomes readable when the watch is over
  std::thread thread_;
};

}  // namespace quordalvane::tool
