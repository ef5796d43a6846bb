#pragma once

#include <cstdint>
#include <functional>
#include <optional>

#include "tools/cups-backend/BackEndJob.h"
#include "tools/cups-backend/DeviceUri.h"
#include "tools/cups-backend/ExitCode.h"

namespace quordalvane::cups {

/// Prints the job. To be called on the first thread of a process of its own. SIGTERM cancels the
/// job within a second. Calls `onConfirmed` as soon as the printer has confirmed the whole job.
ExitCode work(const BackEndJob& job, const DeviceUri& uri,
              std::optional<std::int64_t> schedulerStart, const std::function<void()>& onConfirmed);

}  // namespace quordalvane::cups
