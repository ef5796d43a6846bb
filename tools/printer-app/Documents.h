#pragma once

#include "tools/printer-app/Pappl.h"

namespace quordalvane::printer_app {

/// Sets the function by which the framework passes on a file of printer commands.
void addCommandDocuments(pappl_pr_driver_data_t& data);

/// Makes the framework accept text/plain, which is UTF-8, pictures in PNG and JPEG, and raster. A
/// job's pages are converted to printer commands of one bit a dot, and are sent together.
void addRenderedDocuments(pappl_system_t* system);

}  // namespace quordalvane::printer_app
