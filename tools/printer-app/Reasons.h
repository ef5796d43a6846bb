#pragma once

#include "job/PrintResult.h"
#include "tools/printer-app/Pappl.h"

namespace quordalvane::printer_app {

/// Shows in `printer-state-reasons` the state of the printer that a job has found.
void showReasons(pappl_printer_t* printer, const PrintResult& result);

/// Asks an idle printer for its status, at most every two seconds, and shows it likewise. A printer
/// on which a job is printing is not asked. For the framework: true, always.
bool updateReasons(pappl_printer_t* printer);

/// Makes an idle printer beep, so that a person finds it.
void beep(pappl_printer_t* printer, pappl_identify_actions_t actions, const char* message);

}  // namespace quordalvane::printer_app
