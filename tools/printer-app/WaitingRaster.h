#pragma once

namespace quordalvane::printer_app {

/// The format under which the framework keeps a document of raster pages, PWG or Apple.
///
/// The framework would print such a document while it arrives, refuse every other one meanwhile,
/// and know nothing of it after a restart. A document of any other format gets a file and waits for
/// its turn. The framework reads a request by a function of the print system's library, `ippRead`.
/// This program has a function of that name in front of the library's, which adds to a request with
/// raster that it was detected as this format.
///
/// It is defined beside that function: a linker takes the function into the program only if the
/// program uses something of the same source.
extern const char* const waitingRasterType;

}  // namespace quordalvane::printer_app
