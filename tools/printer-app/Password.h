#pragma once

#include <string>

#include "tools/printer-app/Pappl.h"

namespace quordalvane::printer_app {

/// Sets the password of the web page to the first line of the file. Returns false if the file has
/// no password. To be called after the framework has loaded its state, which contains the old
/// password.
///
/// The framework's version 1.3 accepts any password, because it compares a hash with itself. The
/// framework computes the hash with its function `papplSystemHashPassword`. This program defines a
/// function of the same name, which hashes the typed text. The framework calls this function
/// instead of its own.
bool setPassword(pappl_system_t* system, const std::string& file);

}  // namespace quordalvane::printer_app
