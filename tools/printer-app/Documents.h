#pragma once

#include "tools/printer-app/Pappl.h"

namespace quordalvane::printer_app {

/// Sets in `data` the functions that the framework calls to print a document. A file of printer
/// commands is printed. Raster data is refused if the framework would print it while it arrives.
void addCommandDocuments(pappl_pr_driver_data_t& data);

/// Makes the framework accept text in UTF-8 (text/plain), pictures in PNG and JPEG, and raster.
/// Each page of a job is converted to printer commands, with pictures in black and white. The pages
/// of a job are sent together.
void addRenderedDocuments(pappl_system_t* system);

}  // namespace quordalvane::printer_app
