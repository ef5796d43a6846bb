#pragma once

#include <sys/types.h>

#include <csignal>
#include <functional>
#include <optional>
#include <thread>

namespace quordalvane::tool {

/// SIGINT, SIGTERM and SIGHUP as something to wait for: while this lives, the calling thread and
/// those that it starts are not disturbed by them. The first two arrive even if the parent
/// process ignored them, as shells do for commands in the background. SIGHUP does not: a parent
/// that ignores it, as nohup does, wants the command to outlive its terminal.
class StopSignals {
 public:
  /// Throws std::system_error if the system has no descriptor left.
  StopSignals();
  ~StopSignals();
  StopSignals(const StopSignals&) = delete;
  StopSignals& operator=(const StopSignals&) = delete;

  /// Becomes readable when a signal arrives. Never blocks.
  int descriptor() const { return descriptor_; }

  /// Takes the next signal; null if none has arrived.
  std::optional<int> take();

 private:
  sigset_t before_{};
  int descriptor_;
};

/// Calls a function on a thread of its own for every signal, with its number.
class SignalWatch {
 public:
  /// Throws std::system_error if the system has no descriptor or thread left.
  explicit SignalWatch(std::function<void(int)> onSignal);

  /// Waits for the function if it is running.
  ~SignalWatch();
  SignalWatch(const SignalWatch&) = delete;
  SignalWatch& operator=(const SignalWatch&) = delete;

 private:
  void watch();

  StopSignals signals_;
  const std::function<void(int)> onSignal_;
  int end_;  // becomes readable when the watch has ended
  std::thread thread_;
};

}  // namespace quordalvane::tool
