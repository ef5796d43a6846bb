#pragma once

#include <filesystem>

#include "tools/printer-app/Pappl.h"

namespace quordalvane::printer_app {

/// Makes the program save changed jobs, as `saveChangedJobs` does, before it sends an answer to a
/// client. If an answer tells a client that a job has arrived or is held, the job is thus not lost
/// when the process ends. To be called once, before there are clients.
///
/// The framework sends its answers with `ippWrite`, a function of the print system's library. This
/// program defines a function of the same name, which the framework calls instead.
void saveBeforeAnswers(pappl_system_t* system, const std::filesystem::path& file);

}  // namespace quordalvane::printer_app
