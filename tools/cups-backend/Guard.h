#pragma once

#include <functional>
#include <optional>
#include <string>

#include "tools/cups-backend/ExitCode.h"

namespace quordalvane::cups {

/// The end of a worker that did not decide the fate of its job.
struct BrokenOff {
  bool isCanceled = false;  ///< the scheduler ended it
  std::string how;          ///< for people
};

/// Runs `work` in a process of its own and returns its exit code. A stop signal is handed on to it.
/// If it ends without a decision, `judge` decides: a job may be half on paper, and its end must not
/// be taken for success. Called by a process without threads, and once. Throws `std::system_error`
/// if the system has no process left.
ExitCode guarded(const std::function<ExitCode()>& work,
                 const std::function<ExitCode(const BrokenOff&)>& judge);

}  // namespace quordalvane::cups
