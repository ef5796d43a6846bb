#pragma once

#include "tools/printer-app/Pappl.h"

namespace quordalvane::printer_app {

/// Makes the oldest job that waits for the printer the next one. The framework would take the
/// newest: so all others are held, with the reason `job-queued`, and released in their turn. A job
/// that a user holds remains so. May be called from any thread, and as often as one likes.
void letOldestGoNext(pappl_printer_t* printer);

/// Whether a job in this state, for these reasons, is held for its turn and not by a user.
bool isHeldForItsTurn(ipp_jstate_t state, pappl_jreason_t reasons);

}  // namespace quordalvane::printer_app
