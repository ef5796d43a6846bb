#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "tests/support/ScriptedLink.h"
#include "tests/support/Trace.h"
#include "tests/support/VirtualPlatform.h"

namespace quordalvane::test {

/// The accessory of most tests.
AccessoryIdentity shopPrinter();

/// Inserts a platform between a port and the scripted platform, for example one with a fault.
using Layer = std::function<std::shared_ptr<Platform>(std::shared_ptr<Platform>)>;

/// A platform under virtual time with accessories on a scripted link, and a trace of the calls to
/// the platform. While this object is used, no other virtual platform may be made on the thread.
class ScriptedWorld {
 public:
  explicit ScriptedWorld(const Script& script = {},
                         const std::vector<AccessoryIdentity>& accessories = {shopPrinter()},
                         const Layer& layer = {});

  /// The time of the wall clock, in whole seconds, when the operation under test begins.
  static constexpr std::int64_t startSecond = 1000000;

  /// The operation under test begins: the script, the clock and the trace start here.
  void start();

  const std::shared_ptr<Platform>& platform() const { return platform_; }
  test::VirtualPlatform& machine() { return *machine_; }
  Trace& trace() { return trace_; }

 private:
  Trace trace_;  // the first member, because the others write to it until they are destroyed
  const std::int64_t startMicroseconds_;
  const std::shared_ptr<test::VirtualPlatform> machine_;
  const std::shared_ptr<ScriptedLink> link_;
  std::shared_ptr<Platform> platform_;
};

}  // namespace quordalvane::test
