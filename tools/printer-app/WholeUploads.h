#pragma once

#include <chrono>

namespace quordalvane::printer_app {

/// Ensures that only complete documents are printed, and that a client that sends nothing for
/// `longestSilence` is disconnected. To be called once, before clients connect.
///
/// The framework takes the end of a connection for the end of the document. It also waits for ever
/// for a client that neither sends nor closes the connection, like a telephone out of range. It
/// reads with `httpRead2` of the print system's library. This program defines a function of that
/// name, which replaces the library's and reports both cases as errors. If the job is a file, the
/// framework then aborts it.
void requireWholeUploads(std::chrono::seconds longestSilence);

/// True if the last read of a document on this thread was such an error. For a raster document the
/// framework prints the pages that arrived before the error, so the caller must ask this.
bool isUploadCutShort();

}  // namespace quordalvane::printer_app
