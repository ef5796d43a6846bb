#pragma once

#include <string>

namespace quordalvane {

/// The text of the exception that is being handled.
std::string thrownText();

/// Runs `work`, which may throw. False if it did, after `report` was called to log it. Throws
/// nothing itself: a record for which there is no memory is lost.
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
