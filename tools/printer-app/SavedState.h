#pragma once

#include <filesystem>

#include "tools/printer-app/Pappl.h"

namespace quordalvane::printer_app {

/// Saves the framework's printers and jobs in the file. The file is complete at every moment, so a
/// process that is killed loses no printers. Returns false if the file cannot be written. May be
/// called from any thread.
bool saveState(pappl_system_t* system, const std::filesystem::path& file);

/// Saves the printers and jobs if a job has arrived, ended, or been held or released since the last
/// call. The framework itself saves a job when its data begins to arrive, but not when the data is
/// complete.
void saveChangedJobs(pappl_system_t* system, const std::filesystem::path& file);

/// Prepares the file in which the framework has saved its printers and jobs. To be called before
/// the framework loads the file. The framework would never continue a job that was being printed
/// when the process ended, or that was held because another job was to be printed first. This
/// function changes the state of such jobs to waiting. The journal later decides whether they are
/// printed. A job that a user held remains held. Does nothing if the file does not exist. Throws
/// std::system_error if the file cannot be written.
void letJobsWaitAgain(const std::filesystem::path& file);

}  // namespace quordalvane::printer_app
