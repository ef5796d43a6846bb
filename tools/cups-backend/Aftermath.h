#pragma once

#include "tools/cups-backend/BackEndJob.h"
#include "tools/cups-backend/DeviceUri.h"
#include "tools/cups-backend/ExitCode.h"
#include "tools/cups-backend/Guard.h"
#include "tools/cups-backend/StatusLines.h"

namespace quordalvane::cups {

/// Returns the exit code of a job whose worker, the process that printed the job, ended too early.
/// The journal shows which blocks of the job are on paper. The job is held for a person, unless the
/// whole job is on paper or the scheduler has canceled the job.
ExitCode judgeBrokenOff(const BackEndJob& job, const DeviceUri& uri, const BrokenOff& end,
                        StatusLines& lines);

}  // namespace quordalvane::cups
