#pragma once

#include <sys/types.h>

#include <csignal>
#include <functional>
#include <optional>
#include <thread>

namespace quordalvane::tool {

/// Turns SIGINT, SIGTERM and SIGHUP into events that a program can wait for. While this object
/// lives, these signals do not interrupt the calling thread or the threads that it starts. SIGINT
/// and SIGTERM arrive even if the parent process ignored them. For example, the shell of a script
/// ignores SIGINT for commands in the background. An ignored SIGHUP remains ignored: a parent that
/// ignores it, like nohup, wants the command to outlive its terminal.
class StopSignals {
 public:
  /// Throws std::system_error if the system has no descriptor left.
  StopSignals();
  ~StopSignals();
  StopSignals(const StopSignals&) = delete;
  StopSignals& operator=(const StopSignals&) = delete;

  /// Returns the descriptor that is readable while a signal waits for `take`. The descriptor
  /// belongs to this object.
  int descriptor() const { return descriptor_; }

  /// Returns the next signal; empty if none has arrived. Never blocks.
  std::optional<int> take();

 private:
  sigset_t before_{};
  int descriptor_;
};

/// A thread that waits for the signals of `StopSignals`, and calls a function with the number of
/// each signal.
class SignalWatch {
 public:
  /// Throws std::system_error if the system has no descriptor or thread left.
  explicit SignalWatch(std::function<void(int)> onSignal);

  /// Ends the thread; waits for the function if it is running.
  ~SignalWatch();
  SignalWatch(const SignalWatch&) = delete;
  SignalWatch& operator=(const SignalWatch&) = delete;

 private:
  void watch();

  StopSignals signals_;
  const std::function<void(int)> onSignal_;
  int end_;  // an event that ends the thread
  std::thread thread_;
};

}  // namespace quordalvane::tool
