#pragma once

#include "backends/DeviceSpec.h"
#include "platform/EAAccessory.h"
#include "tools/quorport/doctor/Finding.h"

namespace quordalvane::tool {

/// Why a session on the device could not be opened; to be asked after an attempt that failed.
Finding whyNotOpened(const DeviceSpec& spec, EAAccessory& accessory);

}  // namespace quordalvane::tool
