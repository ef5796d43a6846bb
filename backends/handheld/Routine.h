#pragma once

#include <exception>
#include <functional>

namespace quordalvane::handheld {

/// A routine of the port. A framework calls the routine, and no exception may reach the framework.
/// So this class, which is compiled as C++, catches every exception of the routine.
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
