#pragma once

#include "tools/cups-backend/BackEndJob.h"
#include "tools/cups-backend/DeviceUri.h"
#include "tools/cups-backend/ExitCode.h"
#include "tools/cups-backend/Guard.h"
#include "tools/cups-backend/StatusLines.h"

namespace quordalvane::cups {

/// Decides about a job whose worker ended without a decision; the journal shows how far it was. The
/// job is held for a person, unless all of it is on paper or it is no longer wanted.
ExitCode judgeBrokenOff(const BackEndJob& job, const DeviceUri& uri, const BrokenOff& end,
                        StatusLines& lines);

}  // namespace quordalvane::cups
