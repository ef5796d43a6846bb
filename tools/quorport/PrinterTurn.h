#pragma once

#include <optional>
#include <string>

#include "locks/ByteLock.h"
#include "tools/quorport/Commands.h"

namespace quordalvane::tool {

/// Reserves the printer of `device` for a job. While another job of this machine uses the printer,
/// this function waits, and reports on standard error that it waits. Returns an empty lock for the
/// virtual printer, which needs none. If the locks cannot be used, reports this on standard error
/// and returns an empty lock: the job is printed in any case. Throws a CommandFailure with
/// ExitCode::NotReady if the wait exceeds the time-out in the options.
std::optional<ByteLock> takePrinter(const std::string& device, const Options& options,
                                    const Surroundings& surroundings);

}  // namespace quordalvane::tool
