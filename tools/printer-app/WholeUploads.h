#pragma once

#include <chrono>

namespace quordalvane::printer_app {

/// Makes sure that a document is whole before it is printed, and that a client which sends nothing
/// for `longestSilence` is given up. Called once, before there are clients.
///
/// The framework takes the end of a connection for the end of the document, and waits without end
/// for a client that neither sends nor leaves: a telephone out of range. It reads by a function of
/// the print system's library, `httpRead2`. This program has a function of that name in front of
/// the library's, which reports both as errors; the framework then aborts a job that is a file.
void requireWholeUploads(std::chrono::seconds longestSilence);

/// Whether the last read of a document on this thread was such an error: the framework makes pages
/// of raster of what was there before.
bool isUploadCutShort();

}  // namespace quordalvane::printer_app
