#pragma once

#include <filesystem>

#include "tools/printer-app/Pappl.h"

namespace quordalvane::printer_app {

/// Makes the program save changed jobs, as `saveChangedJobs` does, before it sends an answer to a
/// client. A job that a client knows to have arrived, or to be held, thus survives the end of the
/// process. To be called once, before there are clients.
///
/// The framework answers by a function of the print system's library, `ippWrite`. This program
/// defines a function of that name, which the framework calls instead.
void saveBeforeAnswers(pappl_system_t* system, const std::filesystem::path& file);

}  // namespace quordalvane::printer_app
