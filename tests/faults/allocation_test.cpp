// Memory runs short: in run k of an operation, its k-th allocation fails.

#include <gtest/gtest.h>

#include <new>

#include "tests/faults/AllocationFault.h"
#include "tests/faults/AnsweringPrinter.h"
#include "tests/faults/CaseNames.h"
#include "tests/faults/PortThreads.h"
#include "tests/faults/Sweep.h"
#include "tests/model/Scenario.h"
#include "tests/support/FaultyPlatform.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Replay.h"

namespace quordalvane::test {
namespace {

constexpr const char* noMemory = "std::bad_alloc";

/// The thread on which the operation is called.
enum class On { AnotherThread, MainThread };

struct Circumstances {
  std::int32_t emulation;
  bool logs;
  On thread;
  Layer layer = {};
};

/// A platform that lets `AllocationFault` also affect the allocations of the threads that it makes.
class CoveredThreads : public ForwardingPlatform {
 public:
  using ForwardingPlatform::ForwardingPlatform;

  std::shared_ptr<NSThread> makeThread(std::function<void()> body) override {
    return ForwardingPlatform::makeThread([body = std::move(body)] {
      AllocationFault::coverThisThread();
      body();
    });
  }
};

std::shared_ptr<Platform> portThreadIsCovered(std::shared_ptr<Platform> next) {
  return std::make_shared<CoveredThreads>(std::move(next));
}

/// A port whose printer answers everything.
class AnsweredPort {
 public:
  explicit AnsweredPort(const Circumstances& given)
      : world_(answeringPrinter(), {shopPrinter()},
               given.layer ? given.layer : portThreadIsCovered) {
    world_.machine().setMainThread(given.thread == On::MainThread);
    port_ = ExternalAccessoryPort::initWithPortName(
        "BT:", "d9", 1000, static_cast<ZKEmulation>(given.emulation), world_.platform());
    EXPECT_TRUE(port_->open());
    world_.start();
  }
  ~AnsweredPort() {
    port_->close();
    world_.machine().clock().usleep(1000000);
    port_ = nullptr;
    waitUntilReleased(world_.platform());
  }
  AnsweredPort(const AnsweredPort&) = delete;
  AnsweredPort& operator=(const AnsweredPort&) = delete;

  ExternalAccessoryPort& port() { return *port_; }

  /// The result of an operation, and whether the fault had an effect.
  std::string result(const Call& call, Allocation which, std::uint64_t k, bool fromThereOn,
                     bool& struck) {
    Caller caller;
    const AllocationFault fault(which, k, fromThereOn);
    std::string result = resultOrRaised(call, caller);
    struck = fault.hasStruck();
    return result;
  }

 private:
  std::string resultOrRaised(const Call& call, Caller& caller) {
    try {
      // These two operations never throw, so the code around them must not allocate memory.
      if (call.name == "open") {
        return shownResult(port_->open());
      }
      if (call.name == "close") {
        port_->close();
        return "closed";
      }
      std::string result = call.onPort(*port_, caller);
      return result == "std::exception: std::bad_alloc" ? noMemory : result;
    } catch (const std::bad_alloc&) {
      return noMemory;
    }
  }

  ScriptedWorld world_;
  std::shared_ptr<ExternalAccessoryPort> port_;
};

class AllocationSweep : public testing::TestWithParam<std::tuple<std::int32_t, bool, Allocation>> {
 protected:
  static Circumstances circumstances(On thread) {
    return {std::get<0>(GetParam()), std::get<1>(GetParam()), thread};
  }

  static bool isDocumented(const Call& call, const std::string& result) {
    if (result != noMemory) {
      return result.find("std::") == std::string::npos;
    }
    return call.name != "open" && call.name != "close" &&
           std::get<2>(GetParam()) == Allocation::Any;
  }

  static bool runOnce(const Call& call, On thread, std::uint64_t k, bool fromThereOn) {
    const Circumstances given = circumstances(thread);
    const auto which = std::get<2>(GetParam());
    AnsweredPort answered(given);
    bool struck = false;
    std::string result;
    {
      const Logging logging(given.logs);
      result = answered.result(call, which, k, fromThereOn, struck);
    }
    EXPECT_TRUE(isDocumented(call, result)) << result;
    if (struck && which == Allocation::AnsweringNull && call.name.starts_with("write")) {
      EXPECT_EQ(result, "-1") << "without memory for its scratch";
    }
    EXPECT_NO_THROW(answered.port().close());
    EXPECT_TRUE(answered.port().open()) << "a port can be opened again when there is memory";
    showReplay(call.name + " -> " + result + "\n");
    return struck;
  }

  /// Returns how often the fault had an effect.
  static std::uint64_t sweep(const Call& call, On thread, bool fromThereOn) {
    const auto& [emulation, logs, which] = GetParam();
    const std::string name = std::string("allocation ") + emulationName(emulation) +
                             (logs ? " logged " : " silent ") +
                             (which == Allocation::Any ? "any " : "scratch ") +
                             (thread == On::MainThread ? "main " : "other ") + call.name +
                             (fromThereOn ? " from" : " at");
    return sweepAll(name, [&](std::uint64_t k) { return runOnce(call, thread, k, fromThereOn); });
  }
};

TEST(NewPortWithoutMemory, LeavesNoThreadIfAnAllocationFails) {
  const Logging logging(true);
  std::uint64_t failures = 0;
  bool struck = true;
  for (std::uint64_t k = 1; struck && !testing::Test::HasFailure(); ++k) {
    ScriptedWorld world;
    world.machine().setMainThread(true);
    const auto platform = std::make_shared<CountedThreads>(world.platform());
    std::shared_ptr<ExternalAccessoryPort> port;
    try {
      const AllocationFault fault(Allocation::Any, k, false);
      port = ExternalAccessoryPort::initWithPortName("BT:00:11:22:33:44:55",
                                                     "a text that is too long for its object, d9",
                                                     1000, ZKEmulationQuorLine, platform);
      struck = fault.hasStruck();
    } catch (const std::bad_alloc&) {
      ++failures;
    }
    world.machine().clock().usleep(1000000);
    EXPECT_EQ(platform->running(), port ? 1 : 0) << "after allocation " << k;
    if (port) {
      port->close();
      world.machine().clock().usleep(1000000);
      port = nullptr;
    }
    waitUntilReleased(platform);
  }
  EXPECT_GT(failures, 5U);
}

/// The platform throws, and there is no memory to report the exception.
class NoMemoryAtAll : public testing::TestWithParam<bool> {
 protected:
  /// Returns true if there was a k-th call to the platform.
  static bool runOnce(const Call& call, std::uint64_t k) {
    const auto plan = std::make_shared<FaultPlan>(anotherException(), k, GetParam());
    AnsweredPort answered({lineMode, true, On::AnotherThread, [plan](auto next) {
                             return std::make_shared<FaultyPlatform>(std::move(next), plan);
                           }});
    const Logging logging(true);
    plan->arm();
    bool struck = false;
    const std::string result = answered.result(call, Allocation::Any, 1, true, struck);
    plan->disarm();
    EXPECT_NE(result, noMemory);
    answered.port().close();
    EXPECT_FALSE(answered.port().isConnected()) << "still holds its accessory";
    EXPECT_TRUE(answered.port().open());
    return plan->hasStruck();
  }
};

TEST_P(NoMemoryAtAll, NeverMakesOpenOrCloseThrow) {
  for (const Call& call : {open(), close()}) {
    for (std::uint64_t k = 1; runOnce(call, k) && !HasFailure(); ++k) {
    }
  }
}

INSTANTIATE_TEST_SUITE_P(OnceAndFromThereOn, NoMemoryAtAll, testing::Bool());

TEST_P(AllocationSweep, EveryOperationEndsInADocumentedWayIfAnAllocationFails) {
  std::uint64_t strikes = 0;
  for (const Call& call : allCalls()) {
    for (const bool fromThereOn : {false, true}) {
      strikes += sweep(call, On::AnotherThread, fromThereOn);
      if (call.name == "open" || call.name == "close") {
        strikes += sweep(call, On::MainThread, fromThereOn);
      }
      if (HasFailure()) {
        return;
      }
    }
  }
  EXPECT_TRUE(strikes > 0 || replayedCase());
  RecordProperty("cases", std::to_string(strikes));
}

INSTANTIATE_TEST_SUITE_P(
    EmulationLoggingAndKind, AllocationSweep,
    testing::Combine(testing::Values(unknownEmulation, lineMode, escPos), testing::Bool(),
                     testing::Values(Allocation::Any, Allocation::AnsweringNull)));

}  // namespace
}  // namespace quordalvane::test
