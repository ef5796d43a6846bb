#pragma once

#include <chrono>
#include <filesystem>
#include <string>

#include "tools/printer-app/Pappl.h"

namespace quordalvane::printer_app {

/// The options of the command `server`.
struct Settings {
  std::string host = "localhost";  ///< `listen-hostname`: the address to listen at, "*" for all
  int port = 8631;                 ///< `server-port`

  /// `state-directory`: the folder of the printers, the jobs and the journal
  std::filesystem::path folder = "/var/lib/quorport-printer-app";

  /// `password-file`: a file with the password of the web page. Required if other machines can
  /// connect.
  std::string passwordFile;

  /// `upload-timeout`: the time after which a client that sends nothing is disconnected
  std::chrono::seconds uploadTimeout{60};

  std::string logFile = "-";                        ///< `log-file`: "-" is standard error
  pappl_loglevel_t logLevel = PAPPL_LOGLEVEL_WARN;  ///< `log-level`

  bool isForOthers() const { return host != "localhost"; }
};

/// Reads the options. Throws `std::invalid_argument`, with a text for people, if an option does not
/// exist or has an invalid value.
Settings settingsIn(int count, const cups_option_t* options);

}  // namespace quordalvane::printer_app
