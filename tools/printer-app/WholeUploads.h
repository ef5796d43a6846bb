#pragma once

#include <chrono>

namespace quordalvane::printer_app {

/// Ensures that only complete documents are printed, and that a client that sends nothing for
/// `longestSilence` is disconnected. To be called once, before clients connect.
///
/// The framework takes the end of a connection for the end of the document. It also waits for ever
/// for a client that neither sends nor closes the connection, like a telephone out of range. The
/// framework reads with `httpRead2` of the print system's library. This program defines a function
/// of that name, which replaces the library's and reports both cases as errors. The framework then
/// aborts the job.
void requireWholeUploads(std::chrono::seconds longestSilence);

}  // namespace quordalvane::printer_app
