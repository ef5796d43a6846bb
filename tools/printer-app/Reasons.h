#pragma once

#include "job/PrintResult.h"
#include "tools/printer-app/Pappl.h"

namespace quordalvane::printer_app {

/// Shows in `printer-state-reasons` the state of the printer after a job with this result.
void showReasons(pappl_printer_t* printer, const PrintResult& result);

/// Asks an idle printer for its status, at most every two seconds, and shows it in
/// `printer-state-reasons`. A busy printer is not asked. Always returns true, as the framework
/// expects.
bool updateReasons(pappl_printer_t* printer);

/// Makes an idle printer beep, so that a person can find it.
void beep(pappl_printer_t* printer, pappl_identify_actions_t actions, const char* message);

}  // namespace quordalvane::printer_app
