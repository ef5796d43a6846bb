#pragma once

#include <sys/types.h>

#include <csignal>
#include <functional>
#include <optional>
#include <thread>

namespace quordalvane::tool {

/// SIGINT, SIGTERM and SIGHUP as something to wait for: while this lives, the calling thread and
/// those that it starts are not disturbed by them. The first two arrive even where the parent
/// process had them ignored, as shells do for what runs in the background. SIGHUP does not: who
/// ignores it, as nohup does, has the command outlive its terminal.
class StopSignals {
 public:
  /// Raises std::system_error if the system has no descriptor left.
  StopSignals();
  ~StopSignals();
  StopSignals(const StopSignals&) = delete;
  StopSignals& operator=(const StopSignals&) = delete;

  /// Becomes readable when a signal comes. Never blocks.
  int descriptor() const { return descriptor_; }

  /// The signal that has come, which is taken away; none if none has.
  std::optional<int> take();

 private:
  sigset_t before_{};
  int descriptor_;
};

/// Calls a function on a thread of its own for every signal, with its number.
class SignalWatch {
 public:
  /// Raises std::system_error if the system cannot provide what it takes.
  explicit SignalWatch(std::function<void(int)> onSignal);

  /// Waits for the function if it is running.
  ~SignalWatch();
  SignalWatch(const SignalWatch&) = delete;
  SignalWatch& operator=(const SignalWatch&) = delete;

 private:
  void watch();

  StopSignals signals_;
  const std::function<void(int)> onSignal_;
  int end_;  // becomes readable when the watch is over
  std::thread thread_;
};

}  // namespace quordalvane::tool
