#pragma once

#include <chrono>
#include <filesystem>

namespace quordalvane::printer_app {

/// Marks each document that does not arrive completely, so that it is not printed: its client
/// disconnects before its end, sends nothing for `longestSilence`, or sends damaged compressed
/// data. Disconnects such a client. `longestSilence` must not be zero, because every client would
/// then count as silent. To be called once, before clients connect.
///
/// The framework takes the end of a connection for the end of the document. It also waits for ever
/// for a client that neither sends nor closes the connection, like a telephone out of range. The
/// framework reads with `httpRead2` of the print system's library. This program defines its own
/// `httpRead2`, which replaces the library's, appends a mark to the document and ends the
/// connection. `httpPeek`, with which the framework waits for a document, is replaced as well.
///
/// `httpRead2` does not report an error instead, because version 1.3 of the framework could then
/// wait for ever. After an error the framework aborts the job, and for this locks first the job and
/// then the system. If another thread saves the jobs at the same time, that thread locks first the
/// system and then the job. Each of the two threads then waits for the other.
void markIncompleteUploads(std::chrono::seconds longestSilence);

/// Returns true if the document in the file has the mark of an incomplete document. Returns false
/// if the file cannot be read. Throws nothing. Any thread may call this function.
bool isIncomplete(const std::filesystem::path& file);

}  // namespace quordalvane::printer_app
