#pragma once

#include <cstdint>
#include <filesystem>
#include <vector>

#include "tools/printer-app/Pappl.h"

namespace quordalvane::printer_app {

/// The journal of all jobs, and the framework's list of printers and jobs, lie in these files.
/// Called once, before there is any job.
void keepJobsIn(const std::filesystem::path& journal, const std::filesystem::path& state);

/// Brings a job to its printer, and returns true once the printer has confirmed it: it then counts
/// as completed.
///
/// A job that the printer refuses has sent nothing, so it waits, with the reason as its message and
/// as the printer's, and is tried again each second until it is canceled. If nobody knows whether a
/// job is on paper, it is aborted with a message for a person, and false is returned. The journal
/// prevents a second print, even after a restart.
///
/// Saves the framework's list first: the framework itself would save it only with the next job.
/// Blocks the thread of the job. Throws nothing.
bool deliver(pappl_job_t* job, const std::vector<std::uint8_t>& data);

}  // namespace quordalvane::printer_app
