#pragma once

#include <filesystem>

#include "tools/printer-app/Pappl.h"

namespace quordalvane::printer_app {

/// Saves the framework's printers and jobs in the file, which is whole at any moment: a process
/// that is killed must not lose its printers. False if it cannot be written. May be called from any
/// thread.
bool saveState(pappl_system_t* system, const std::filesystem::path& file);

/// The same if a job has arrived, ended, or been held or released since the last call: the
/// framework saves a job when it begins to arrive, but not once it is there.
void saveChangedJobs(pappl_system_t* system, const std::filesystem::path& file);

/// Prepares the file in which the framework has saved its printers and jobs for being loaded. A job
/// that was being printed when the process ended would remain so without end, and one that was held
/// for its turn as well: they wait again, and the journal decides what becomes of them. One that a
/// user held remains held. A file that is not there is left alone. Throws std::system_error if it
/// cannot be written.
void letJobsWaitAgain(const std::filesystem::path& file);

}  // namespace quordalvane::printer_app
