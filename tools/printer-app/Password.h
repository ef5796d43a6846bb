#pragma once

#include <string>

#include "tools/printer-app/Pappl.h"

namespace quordalvane::printer_app {

/// Makes the web page ask for the password in the first line of the file. False if there is none.
/// Called after the framework has loaded its state, in which it keeps the password as well.
///
/// The framework's version 1.3 takes any password for the right one: it compares a hash with
/// itself. It makes the hash by `papplSystemHashPassword`, and this program has a function of that
/// name in front of the library's, which makes the hash of what was typed.
bool setPassword(pappl_system_t* system, const std::string& file);

}  // namespace quordalvane::printer_app
