#pragma once

#include "tools/printer-app/Pappl.h"

namespace quordalvane::printer_app {

/// Makes the oldest waiting job the next one on the printer. The framework would print the newest
/// job first. This function therefore holds all other jobs, with the reason `job-queued`, and
/// releases them one after another. A job that a user holds remains held. May be called at any
/// time, from any thread.
void letOldestGoNext(pappl_printer_t* printer);

/// Returns true if an older job of the same printer is being printed. The framework sometimes
/// starts two jobs at the same time. The younger job must then wait.
bool isOlderUnderWay(pappl_job_t* job);

/// Returns true if the printer's oldest waiting job waits in vain: the printer is idle, and at the
/// last call it was also idle and had the same oldest waiting job. After only one such call, the
/// job may still be about to start. To be called at intervals, from one thread.
bool waitsInVain(pappl_printer_t* printer);

/// Returns true if a job with this state and these state reasons is held until its turn, and not by
/// a user.
bool isHeldForItsTurn(ipp_jstate_t state, pappl_jreason_t reasons);

}  // namespace quordalvane::printer_app
