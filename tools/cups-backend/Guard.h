#pragma once

#include <functional>
#include <optional>
#include <string>

#include "tools/cups-backend/ExitCode.h"

namespace quordalvane::cups {

/// How a worker process ended, if it made no decision about its job.
struct BrokenOff {
  bool isCanceled = false;  ///< true if the scheduler has canceled the job
  std::string how;          ///< how the worker ended, for people
};

/// Runs `work` in a process of its own, passes stop signals on to it, and returns its exit code. If
/// the process ends without a decision, `judge` decides. The job may then be half on paper, so it
/// must not count as done. To be called once, by a process without threads. Throws
/// `std::system_error` if the system cannot start a process.
ExitCode guarded(const std::function<ExitCode()>& work,
                 const std::function<ExitCode(const BrokenOff&)>& judge);

}  // namespace quordalvane::cups
