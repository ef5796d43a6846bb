#pragma once

#include "tools/printer-app/Pappl.h"

namespace quordalvane::printer_app {

/// Sets the functions by which the framework passes on a printer's documents: raster pages, and
/// files of printer commands. A job's pages are converted to printer commands of one bit a dot, and
/// are sent together after the last page. If a client disappears before that, nothing of its job is
/// printed.
void addRasterDocuments(pappl_pr_driver_data_t& data);

/// Makes the framework accept text/plain, which is UTF-8, and pictures in PNG and JPEG.
void addOtherDocuments(pappl_system_t* system);

}  // namespace quordalvane::printer_app
