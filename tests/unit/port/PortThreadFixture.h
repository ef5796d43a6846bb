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

/// A test of a port that is made on the main thread, and so has a thread of its own.
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

  /// Calls `body` with logging on, and returns the trace without the regular waits of the port
  /// thread.
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

  /// Whether the port has `holders` owners. The function waits in real time, because a port
  /// thread that has ended in virtual time may not have released the port yet.
  static bool isHeldBy(const std::weak_ptr<ExternalAccessoryPort>& port, long holders) {
    return eventually([&] { return port.use_count() == holders; });
  }

  ScriptedWorld world_;
};

}  // namespace quordalvane::test
