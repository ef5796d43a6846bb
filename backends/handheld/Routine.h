#pragma once

#include <exception>
#include <functional>

namespace quordalvane::handheld {

/// A routine of the port that a framework calls. This class is compiled as C++, so that no
/// exception of the routine reaches the framework.
class Routine {
 public:
  explicit Routine(std::function<void()> body) : body_(std::move(body)) {}

  /// Runs the routine, stores the exception if the routine throws, and then destroys the routine.
  void run() noexcept;

  /// Returns whether the routine has run.
  bool hasRun() const { return hasRun_; }

  /// If the routine threw an exception, throws it again.
  void throwIfFailed() const;

 private:
  std::function<void()> body_;
  std::exception_ptr failure_;
  bool hasRun_ = false;
};

}  // namespace quordalvane::handheld
