#include "backends/handheld/Routine.h"

namespace quordalvane::handheld {

void Routine::run() noexcept {
  try {
    body_();
  } catch (...) {
    failure_ = std::current_exception();
  }
  hasRun_ = true;
  body_ = nullptr;
}

void Routine::throwIfFailed() const {
  if (failure_) {
    std::rethrow_exception(failure_);
  }
}

}  // namespace quordalvane::handheld
