#pragma once

namespace quordalvane::printer_app {

/// The format under which the framework keeps a document of raster pages, PWG or Apple.
///
/// If such a document kept its own format, the framework would print the document while it arrives,
/// would refuse every other document meanwhile, and would forget the document at a restart. A
/// document of this format gets a file and waits until it can be printed. The framework reads a
/// request by a function of the print system's library, `ippRead`. This program defines a function
/// of that name, which the framework calls instead. This program's `ippRead` marks raster data in a
/// request as a document of this format.
///
/// This constant is defined beside that function, because a linker adds the function to the program
/// only if the program uses something of the same source.
extern const char* const waitingRasterType;

}  // namespace quordalvane::printer_app
