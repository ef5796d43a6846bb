#pragma once

#include <filesystem>

namespace quordalvane::printer_app {

/// Prepares the file in which the framework has saved its printers and jobs for being loaded. A job
/// that was being printed when the process ended would stay so without end: it waits again, and the
/// journal decides what becomes of it. The framework lists the newest job first and prints those it
/// loads in the order of the list: the oldest is made the first. A file that is not there is left
/// alone. Throws std::system_error if it cannot be written.
void letJobsWaitAgain(const std::filesystem::path& file);

}  // namespace quordalvane::printer_app
