#pragma once

#include <string>

namespace quordalvane {

/// What the exception that is being handled says of itself.
std::string raisedText();

/// Runs `work`, which may raise. False when it did, after `tell` was called to log it. Raises
/// nothing itself: a record for which there is no memory is lost.
template <typename Work, typename Tell>
bool guarded(Work work, Tell tell) noexcept {
  try {
    work();
    return true;
  } catch (...) {
    try {
      tell();
    } catch (...) {
    }
    return false;
  }
}

}  // namespace quordalvane
