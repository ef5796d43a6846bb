#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <memory>
#include <string>

#include "tests/support/Eventually.h"
#include "tests/support/LogCapture.h"
#include "tests/unit/port/Printer.h"

namespace quordalvane::test {

/// A world that is made on the main thread, and a port that is made on it.
class PortThread : public testing::Test {
 protected:
  using Port = std::shared_ptr<ExternalAccessoryPort>;

  explicit PortThread(const Layer& layer = {}) : world_({}, {shopPrinter()}, layer) {
    world_.machine().setMainThread(true);
  }

  Port create() {
    auto port = ExternalAccessoryPort::initWithPortName("BT:", "", 5000, ZKEmulationQuorLine,
                                                        world_.platform());
    world_.trace().name(port.get(), "<self>");
    return port;
  }

  /// The events during a call with logging on, without the slices.
  template <typename Body>
  std::string during(Body body) {
    const Logging logging(true);
    world_.trace().clear();
    body();
    std::string all;
    for (const Line& line : world_.trace().lines()) {
      all += line.text == "port thread: slice 0.1" ? "" : line.text + "\n";
    }
    return all;
  }

  /// Runs `body` on a thread that is not the main thread, in the same virtual time.
  void elsewhere(const std::function<void()>& body) {
    const auto thread = world_.machine().makeThread(body);
    ASSERT_TRUE(thread->start());
    pass(10);
  }

  void pass(double seconds) {
    world_.machine().clock().usleep(static_cast<std::uint64_t>(seconds * 1e6));
  }

  double now() {
    return std::chrono::duration<double>(world_.machine().clock().monotonic()).count();
  }

  /// Whether `holders` hold the port. The port thread releases it after its last pass in virtual
  /// time, so the release may still be unfinished on the machine.
  static bool isHeldBy(const std::weak_ptr<ExternalAccessoryPort>& port, long holders) {
    return eventually([&] { return port.use_count() == holders; });
  }

  ScriptedWorld world_;
};

}  // namespace quordalvane::test
