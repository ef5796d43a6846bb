#pragma once

#include <system_error>

#include "backends/DeviceSpec.h"
#include "platform/EAAccessory.h"
#include "tools/quorport/ExitCode.h"
#include "tools/quorport/doctor/Finding.h"

namespace quordalvane::tool {

/// How a command ends that could not open a device because of `error`.
ExitCode codeOfOpening(const std::error_code& error);

/// Why a session on the device could not be opened; to be asked after an attempt that failed.
Finding whyNotOpened(const DeviceSpec& spec, EAAccessory& accessory);

}  // namespace quordalvane::tool
