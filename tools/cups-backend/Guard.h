#pragma once

#include <functional>
#include <optional>
#include <string>

#include "tools/cups-backend/ExitCode.h"

namespace quordalvane::cups {

/// How a worker process ended, if a signal ended it or its exit code was `ExitCode::CutOff`.
struct BrokenOff {
  bool isCanceled = false;  ///< true if the scheduler has canceled the job
  std::string how;          ///< how the worker ended, for people
};

/// Runs `work` in a new process, passes stop signals on to the new process, and returns its exit
/// code. If a signal ends the new process, or its exit code is `ExitCode::CutOff`, the job may be
/// half on paper. In this case, returns the exit code that `judge` chooses. To be called once, by a
/// process without threads. Throws `std::system_error` if the system cannot start a process.
ExitCode guarded(const std::function<ExitCode()>& work,
                 const std::function<ExitCode(const BrokenOff&)>& judge);

}  // namespace quordalvane::cups
