#pragma once

#include <optional>
#include <string>

#include "locks/ByteLock.h"
#include "tools/quorport/Commands.h"

namespace quordalvane::tool {

/// Reserves the printer of `device` for a job. While another job of this machine has it, it waits,
/// and says so on standard error. The result is empty if no lock is needed, because the printer is
/// the built-in one. It is also empty if the locks cannot be used: this is reported on standard
/// error, and the job is printed anyway. Throws a CommandFailure with ExitCode::NotReady if the
/// wait exceeds the time-out in the options.
std::optional<ByteLock> takePrinter(const std::string& device, const Options& options,
                                    const Surroundings& surroundings);

}  // namespace quordalvane::tool
