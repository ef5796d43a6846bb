#pragma once

#include "tools/printer-app/JobDelivery.h"
#include "tools/printer-app/Pappl.h"

namespace quordalvane::printer_app {

/// Makes the framework's system for the options of the command `server`, with its printers and
/// waiting jobs as they were when it last ended. Null after an error, which is on standard error.
///
/// - `listen-hostname`: the address to listen at; by default localhost, this machine alone
/// - `server-port`: the port; by default 8631
/// - `state-directory`: the folder of the printers, the jobs and the journal; by default
///   /var/lib/quorport-printer-app
/// - `password-file`: a file with the password of the web page, needed to listen to others
/// - `upload-timeout`: the seconds after which a client that sends nothing is given up; by default
///   60
/// - `log-file`, `log-level`: the framework's log; by default standard error, warn
///
/// The journal of its jobs is made here and lives until the process ends.
pappl_system_t* makeSystem(int optionCount, cups_option_t* options, void* data);

}  // namespace quordalvane::printer_app
