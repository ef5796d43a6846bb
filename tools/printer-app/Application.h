#pragma once

#include "tools/printer-app/JobDelivery.h"
#include "tools/printer-app/Pappl.h"

namespace quordalvane::printer_app {

/// Creates the framework's system from the options of the command `server`, and loads the printers
/// and the waiting jobs of the last run. Returns null after an error, which is reported on standard
/// error.
///
/// - `listen-hostname`: the address at which it listens; by default localhost, for this machine
///   alone
/// - `server-port`: the port; by default 8631
/// - `state-directory`: the folder of the printers, the jobs and the journal; by default
///   /var/lib/quorport-printer-app
/// - `password-file`: a file with the password of the web page, required to listen at other
///   addresses
/// - `upload-timeout`: the seconds after which a connection is closed if the client sends nothing;
///   by default 60
/// - `log-file`, `log-level`: the framework's log; by default standard error, warn
///
/// Also creates the journal of the jobs, which lives until the process ends.
pappl_system_t* makeSystem(int optionCount, cups_option_t* options, void* data);

}  // namespace quordalvane::printer_app
