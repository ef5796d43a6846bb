#pragma once

#include <cstdint>
#include <filesystem>
#include <vector>

#include "tools/printer-app/Pappl.h"

namespace quordalvane::printer_app {

/// Sets the file of the journal of all jobs, and the file of the framework's list of printers and
/// jobs. To be called once, before the first job.
void keepJobsIn(const std::filesystem::path& journal, const std::filesystem::path& state);

/// Sends a job to its printer. Returns true once the printer has confirmed it; the job then counts
/// as completed.
///
/// If nothing of the job can be sent, for example because the printer cannot be reached, the job
/// waits. It is tried again each second until it is sent or canceled; if it is canceled, the result
/// is false. The reason for the wait is shown as the job's message and as the printer's state. If
/// nobody knows whether a job is on paper, it is aborted with a message for a person, and the
/// result is false. The journal prevents a second print, even after a restart.
///
/// First saves the framework's list of jobs, which the framework itself would save only with the
/// next job. Blocks the job's thread. Throws a std::exception if the journal or
/// the lock of the printer fails.
bool deliver(pappl_job_t* job, const std::vector<std::uint8_t>& data);

}  // namespace quordalvane::printer_app
