#pragma once

#include <optional>
#include <string>

#include "locks/ByteLock.h"
#include "tools/quorport/Commands.h"

namespace quordalvane::tool {

/// Reserves the printer of `device` for a job. While another job of this machine uses the printer,
/// it waits and reports this on standard error. Returns an empty lock for the built-in printer,
/// which needs none. Also returns an empty lock, and reports it on standard error, if the locks
/// cannot be used: the job is then printed anyway. Throws a CommandFailure with ExitCode::NotReady
/// if the wait exceeds the time-out in the options.
std::optional<ByteLock> takePrinter(const std::string& device, const Options& options,
                                    const Surroundings& surroundings);

}  // namespace quordalvane::tool
