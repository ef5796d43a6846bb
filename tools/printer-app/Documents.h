#pragma once

#include "tools/printer-app/Pappl.h"

namespace quordalvane::printer_app {

/// Sets the function by which the framework passes on a file of printer commands.
void addCommandDocuments(pappl_pr_driver_data_t& data);

/// Makes the framework accept text in UTF-8 (text/plain), pictures in PNG and JPEG, and raster. A
/// job's pages are converted to printer commands of one bit a dot, and are sent together.
void addRenderedDocuments(pappl_system_t* system);

}  // namespace quordalvane::printer_app
