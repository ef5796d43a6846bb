#pragma once

#include <optional>
#include <string>

#include "locks/ByteLock.h"
#include "tools/quorport/Commands.h"

namespace quordalvane::tool {

/// Takes the printer of `device` for a job. Waits, and says so on standard error, while another job
/// of this machine has it. Empty if there is nothing to wait for: the printer is the built-in one,
/// or the locks cannot be used, which standard error reports; printing matters more. Throws a
/// CommandFailure with ExitCode::NotReady when the time-out of the options is over.
std::optional<ByteLock> takePrinter(const std::string& device, const Options& options,
                                    const Surroundings& surroundings);

}  // namespace quordalvane::tool
