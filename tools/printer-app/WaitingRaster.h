#pragma once

namespace quordalvane::printer_app {

/// The name of the format under which the framework keeps each document in PWG raster or Apple
/// raster.
///
/// If such a document kept its own format, the framework would print the document while it arrives,
/// would refuse every other document meanwhile, and would forget the document at a restart. A
/// document of this format gets a file and waits until it can be printed.
///
/// The framework reads each request with `ippRead`, a function of the print system's library. This
/// program defines a function of the same name, which the framework calls instead. If a request
/// contains raster data, the program's function marks this data as a document of this format.
///
/// This constant is defined in the same source as the program's `ippRead`. A linker adds that
/// function to the program only if the program uses something else of that source.
extern const char* const waitingRasterType;

}  // namespace quordalvane::printer_app
