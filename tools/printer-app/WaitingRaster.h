#pragma once

namespace quordalvane::printer_app {

/// The format under which the framework keeps a document of raster pages, PWG or Apple.
///
/// The framework would print a document of another raster format while it arrives, refuse every
/// other document meanwhile, and not know the document after a restart. A document of any other
/// format gets a file and waits for its turn. The framework reads a request by a function of the
/// print system's library, `ippRead`. This program defines a function of that name, which the
/// framework calls instead. This function adds to a request with raster data that the document was
/// detected as this format.
///
/// This constant is defined beside that function, because a linker adds the function to the program
/// only if the program uses something of the same source.
extern const char* const waitingRasterType;

}  // namespace quordalvane::printer_app
