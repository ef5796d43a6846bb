#pragma once

#include "tools/cups-backend/BackEndJob.h"
#include "tools/cups-backend/DeviceUri.h"
#include "tools/cups-backend/ExitCode.h"
#include "tools/cups-backend/Guard.h"
#include "tools/cups-backend/StatusLines.h"

namespace quordalvane::cups {

/// Decides about a job whose worker (the process that prints it) ended without a decision; the
/// journal shows which blocks are on paper. Holds the job for a person, unless the whole job is on
/// paper or the scheduler has canceled the job.
ExitCode judgeBrokenOff(const BackEndJob& job, const DeviceUri& uri, const BrokenOff& end,
                        StatusLines& lines);

}  // namespace quordalvane::cups
