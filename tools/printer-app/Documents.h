#pragma once

#include "tools/printer-app/Pappl.h"

namespace quordalvane::printer_app {

/// Sets the functions by which the framework hands over a printer's documents: pages of raster, and
/// files of the printer's own commands. The pages of a job are collected in the printer's commands,
/// a bit a dot, and delivered together when the last one is there. Of a client that disappears
/// before, nothing is printed.
void addRasterDocuments(pappl_pr_driver_data_t& data);

/// Makes the framework accept text/plain, which is UTF-8, and pictures in PNG and JPEG.
void addOtherDocuments(pappl_system_t* system);

}  // namespace quordalvane::printer_app
