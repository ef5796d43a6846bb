#pragma once

#include <chrono>
#include <filesystem>

namespace quordalvane::printer_app {

/// Marks each document whose client disconnects before its end, so that it is not printed. Also
/// disconnects a client that sends nothing for `longestSilence`. To be called once, before clients
/// connect.
///
/// The framework takes the end of a connection for the end of the document. It also waits for ever
/// for a client that neither sends nor closes the connection, like a telephone out of range. The
/// framework reads with `httpRead2` of the print system's library. This program defines a function
/// of that name, which replaces the library's. In both cases the function appends a mark to the
/// document and ends the connection.
///
/// The function reports no error to the framework, because version 1.3 can then wait for ever: it
/// aborts the job, and locks the job before the system. If it saves its jobs at the same time, it
/// locks the system before the jobs.
void markIncompleteUploads(std::chrono::seconds longestSilence);

/// Returns true if the document in the file has the mark of an incomplete document. Returns false
/// if the file cannot be read.
bool isIncomplete(const std::filesystem::path& file);

}  // namespace quordalvane::printer_app
