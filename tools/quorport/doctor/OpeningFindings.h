#pragma once

#include <system_error>

#include "backends/DeviceSpec.h"
#include "platform/EAAccessory.h"
#include "tools/quorport/ExitCode.h"
#include "tools/quorport/doctor/Finding.h"

namespace quordalvane::tool {

/// Returns the exit status of a command that could not open a device because of `error`.
ExitCode codeOfOpening(const std::error_code& error);

/// Finds out why a session on the device could not be opened. To be called after a failed attempt.
Finding whyNotOpened(const DeviceSpec& spec, EAAccessory& accessory);

}  // namespace quordalvane::tool
