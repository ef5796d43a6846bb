#include "tests/support/ScriptedWorld.h"

#include <utility>

#include "platform/Forwarding.h"
#include "tests/support/TracingPlatform.h"

namespace quordalvane::test {
namespace {

/// Lets the link change the wall clock before each reading. The script lists the readings at which
/// the clock jumps.
class SteppingClock : public ForwardingClock {
 public:
  SteppingClock(Clock& next, ScriptedLink& link) : ForwardingClock(next), link_(link) {}

  TimeValue gettimeofday() override {
    link_.beforeClockReading();
    return ForwardingClock::gettimeofday();
  }

 private:
  ScriptedLink& link_;
};

/// Reports to the link the events that it cannot see: the clock's readings, and the beginning of a
/// `write:`.
class ScriptedPlatform : public ForwardingPlatform {
 public:
  ScriptedPlatform(std::shared_ptr<Platform> next, std::shared_ptr<ScriptedLink> link)
      : ForwardingPlatform(std::move(next)),
        link_(std::move(link)),
        clock_(ForwardingPlatform::clock(), *link_) {}

  Clock& clock() override { return clock_; }
  void ignoreSigPipe() override { link_->beginAttempt(); }

 private:
  const std::shared_ptr<ScriptedLink> link_;
  SteppingClock clock_;
};

}  // namespace

AccessoryIdentity shopPrinter() {
  AccessoryIdentity identity;
  identity.name = "Shop printer";
  identity.serialNumber = "S-17";
  identity.modelNumber = "XQ300";
  identity.connectionID = 41;
  return identity;
}

ScriptedWorld::ScriptedWorld(const Script& script,
                             const std::vector<AccessoryIdentity>& accessories, const Layer& layer)
    : startMicroseconds_(script.startMicroseconds),
      machine_(std::make_shared<test::VirtualPlatform>()),
      link_(std::make_shared<ScriptedLink>(script, machine_->virtualClock())) {
  // Objects that are released together with the machine still appear in the trace, without a time.
  trace_.measureBy([clockOf = std::weak_ptr(machine_)] {
    const auto machine = clockOf.lock();
    return machine ? std::chrono::duration<double>(machine->virtualClock().monotonic()).count() : 0;
  });
  for (const AccessoryIdentity& accessory : accessories) {
    machine_->attach(std::make_shared<ScriptedAccessory>(accessory, link_));
  }
  std::shared_ptr<Platform> scripted = std::make_shared<ScriptedPlatform>(machine_, link_);
  platform_ = std::make_shared<TracingPlatform>(layer ? layer(scripted) : scripted, trace_);
}

void ScriptedWorld::start() {
  const TimeValue now = machine_->clock().gettimeofday();
  machine_->virtualClock().stepWallClock(
      std::chrono::seconds(startSecond - now.tv_sec) +
      std::chrono::microseconds(startMicroseconds_ - now.tv_usec));
  link_->start();
  trace_.clear();
}

}  // namespace quordalvane::test
