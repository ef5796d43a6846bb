#pragma once

#include "tools/printer-app/Pappl.h"

namespace quordalvane::printer_app {

/// Makes the oldest job that waits for the printer the next one. The framework would print the
/// newest job first. So this holds all others, with the reason `job-queued`, and releases each in
/// its turn. A job that a user holds remains held. May be called at any time, from any thread.
void letOldestGoNext(pappl_printer_t* printer);

/// True if a job in this state, for these reasons, is held for its turn and not by a user.
bool isHeldForItsTurn(ipp_jstate_t state, pappl_jreason_t reasons);

}  // namespace quordalvane::printer_app
