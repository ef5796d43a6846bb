#pragma once

#include <filesystem>

#include "tools/printer-app/Pappl.h"

namespace quordalvane::printer_app {

/// Saves changed jobs, as `saveChangedJobs` does, before each answer to a client leaves: a job that
/// a client knows to have arrived, or to be held, survives the end of the process. Called once,
/// before there are clients.
///
/// The framework answers by a function of the print system's library, `ippWrite`. This program has
/// a function of that name in front of the library's.
void saveBeforeAnswers(pappl_system_t* system, const std::filesystem::path& file);

}  // namespace quordalvane::printer_app
