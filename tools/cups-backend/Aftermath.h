#pragma once

#include "tools/cups-backend/BackEndJob.h"
#include "tools/cups-backend/DeviceUri.h"
#include "tools/cups-backend/ExitCode.h"
#include "tools/cups-backend/Guard.h"
#include "tools/cups-backend/StatusLines.h"

namespace quordalvane::cups {

/// The fate of a job whose worker has not decided it: the journal knows how far it was. Unless all
/// of it is on paper, or it is not wanted any more, it is held for a person.
ExitCode judgeBrokenOff(const BackEndJob& job, const DeviceUri& uri, const BrokenOff& end,
                        StatusLines& lines);

}  // namespace quordalvane::cups
