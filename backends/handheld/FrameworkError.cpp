#include "backends/handheld/FrameworkError.h"

namespace quordalvane::handheld {

void throwIfRaised(const std::string& text) {
  if (!text.empty()) {
    throw FrameworkError(text);
  }
}

}  // namespace quordalvane::handheld
