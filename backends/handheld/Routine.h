#pragma once

#include <exception>
#include <functional>

namespace quordalvane::handheld {

/// A routine of the port on its way through a framework. Compiled as C++, so that no exception of
/// the routine reaches the framework that calls it.
class Routine {
 public:
  explicit Routine(std::function<void()> body) : body_(std::move(body)) {}

  /// Runs it, keeps the exception that leaves it, and releases what it holds.
  void run() noexcept;

  /// Whether it has run.
  bool hasRun() const { return hasRun_; }

  /// Throws the exception that left it, if one did.
  void throwIfFailed() const;

 private:
  std::function<void()> body_;
  std::exception_ptr failure_;
  bool hasRun_ = false;
};

}  // namespace quordalvane::handheld
