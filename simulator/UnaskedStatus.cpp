#include "simulator/UnaskedStatus.h"

#include "simulator/StatusReplies.h"

namespace quordalvane::simulator {

Bytes UnaskedStatus::change(const PrinterState& state) {
  if (!latest_) {
    return {};
  }
  Bytes current = unaskedStatus(state);
  if (current == *latest_) {
    return {};
  }
  latest_ = current;
  return current;
}

}  // namespace quordalvane::simulator
