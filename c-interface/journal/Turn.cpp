#include <quordalvane/QuorJournalC.h>

#include <chrono>
#include <functional>
#include <utility>

#include "backends/DeviceIdentity.h"
#include "c-interface/Failures.h"
#include "locks/DeviceLock.h"

using namespace quordalvane;
using namespace quordalvane::c;

struct QuorTurn {
  const ByteLock lock;
};

QuorCode quor_turn_take(const char* device, uint32_t timeout, QuorWaiting waiting, void* context,
                        QuorTurn** turn) {
  return guarded([&] {
    given(turn, "the pointer that receives the turn") = nullptr;
    const std::string identity = deviceIdentity(parseDeviceSpec(&given(device, "the device")));
    if (identity.empty()) {
      return QUOR_NONE;
    }
    std::function<void()> onWait;
    if (waiting != nullptr) {
      onWait = [waiting, context] { waiting(context); };
    }
    auto lock = takeDevice(identity, std::chrono::milliseconds(timeout), onWait);
    succeed(lock.has_value(), "another job is on this printer, and has not ended in time");
    *turn = new QuorTurn{std::move(*lock)};
    return QUOR_OK;
  });
}

void quor_turn_free(QuorTurn* turn) {
  delete turn;
}
