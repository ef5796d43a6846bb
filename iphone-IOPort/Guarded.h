#pragma once

#include <string>

namespace quordalvane {

/// Returns the text of the exception that is being handled.
std::string thrownText();

/// Runs `work`. Returns true, or false if `work` throws; in this case `report` is called to log the
/// exception. Never throws: if `report` throws, for example because memory is short, the log record
/// is lost.
template <typename Work, typename Report>
bool guarded(Work work, Report report) noexcept {
  try {
    work();
    return true;
  } catch (...) {
    try {
      report();
    } catch (...) {
    }
    return false;
  }
}

}  // namespace quordalvane
