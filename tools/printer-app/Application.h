#pragma once

#include "tools/printer-app/JobDelivery.h"
#include "tools/printer-app/Pappl.h"

namespace quordalvane::printer_app {

/// Creates the framework's system from the options of the command `server` (see `Settings`), and
/// loads the printers and the waiting jobs of the last run. Returns null after an error, which is
/// reported on standard error.
///
/// Also creates the journal of the jobs, which lives until the process ends.
pappl_system_t* makeSystem(int optionCount, cups_option_t* options, void* data);

}  // namespace quordalvane::printer_app
