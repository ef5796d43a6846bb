#pragma once

#include "tools/printer-app/Pappl.h"

namespace quordalvane::printer_app {

/// Sets the framework's functions for documents. A file of printer commands is printed. Raster data
/// that would be printed while they arrive are refused.
void addCommandDocuments(pappl_pr_driver_data_t& data);

/// Makes the framework accept text in UTF-8 (text/plain), pictures in PNG and JPEG, and raster.
/// Each page of a job is converted to printer commands, with pictures in black and white. The pages
/// of a job are sent together.
void addRenderedDocuments(pappl_system_t* system);

}  // namespace quordalvane::printer_app
