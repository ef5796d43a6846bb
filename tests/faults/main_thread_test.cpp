// A port that is created on the main thread has a port thread. Every call to the platform fails, in
// every way, while the port and the port thread are created, and while open and close are passed to
// the port thread.

#include <gtest/gtest.h>

#include "tests/faults/AnsweringPrinter.h"
#include "tests/faults/PortThreads.h"
#include "tests/faults/Sweep.h"
#include "tests/model/Call.h"
#include "tests/model/Scenario.h"
#include "tests/support/FaultyPlatform.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Replay.h"

namespace quordalvane::test {
namespace {

enum class Step { Creation, Open, Close };

const char* nameOf(Step step) {
  return step == Step::Creation ? "creation" : step == Step::Open ? "open" : "close";
}

/// Creates, opens, uses and closes a port, with a fault in one of these steps.
class Life {
 public:
  explicit Life(std::shared_ptr<FaultPlan> plan)
      : plan_(std::move(plan)), world_(answeringPrinter(), {shopPrinter()}, [this](auto next) {
          return std::make_shared<FaultyPlatform>(std::move(next), plan_);
        }) {
    world_.machine().setMainThread(true);
    threads_ = std::make_shared<CountedThreads>(world_.platform());
  }

  /// Returns the result of the step as text.
  std::string run(Step faulty) {
    std::string result = take(Step::Creation, faulty);
    if (faulty != Step::Creation) {
      const std::string opened = take(Step::Open, faulty);
      result = faulty == Step::Open ? opened : take(Step::Close, faulty);
    }
    return result;
  }

  /// Closes the port, checks that nothing of it is left, and makes a port that works.
  void expectGoodEnd() {
    if (port_ != nullptr) {
      port_->close();
      EXPECT_FALSE(port_->isConnected()) << "still holds its accessory";
      EXPECT_TRUE(port_->open()) << "a port can be opened after any fault";
      port_->close();
    }
    expectNothingLeft();
    create();
    EXPECT_TRUE(port_->open());
    port_->close();
    expectNothingLeft();
  }

 private:
  std::string take(Step step, Step faulty) {
    if (step == faulty) {
      plan_->arm();
    }
    std::string result = resultOf([&]() -> std::string {
      if (step == Step::Creation) {
        create();
        return port_ == nullptr ? "none" : "a port";
      }
      if (step == Step::Open) {
        return shownResult(port_->open());
      }
      port_->close();
      return "closed";
    });
    plan_->disarm();
    return result;
  }

  void create() {
    port_ =
        ExternalAccessoryPort::initWithPortName("BT:", "d9", 1000, ZKEmulationQuorLine, threads_);
  }

  void expectNothingLeft() {
    port_ = nullptr;
    world_.machine().clock().usleep(1000000);
    EXPECT_EQ(threads_->running(), 0) << "a port thread is left";
    waitUntilReleased(threads_);
  }

  const std::shared_ptr<FaultPlan> plan_;
  ScriptedWorld world_;
  std::shared_ptr<CountedThreads> threads_;
  std::shared_ptr<ExternalAccessoryPort> port_;
};

bool isDocumented(Step step, const Fault& fault, const std::string& result) {
  if (step == Step::Close) {
    return result == "closed";
  }
  if (step == Step::Open) {
    return result == "true" || result == "false";
  }
  const bool noThread = fault.name() == "no-thread" || fault.name() == "thread-does-not-start";
  return result == (noThread                               ? "none"
                    : fault.name() == "standard-exception" ? "std::exception: fault"
                    : fault.name() == "another-exception"  ? "another exception"
                                                           : "a port");
}

class MainThreadSweep : public testing::TestWithParam<bool> {
 protected:
  /// Returns true if there was a k-th call to the platform.
  static bool runOnce(Step step, const MakeFault& makeFault, std::uint64_t k, bool fromThereOn) {
    const auto fault = makeFault();
    const auto plan = std::make_shared<FaultPlan>(fault, k, fromThereOn);
    const Logging logging(GetParam());
    Life life(plan);
    const std::string result = life.run(step);
    if (plan->hasStruck()) {
      EXPECT_TRUE(isDocumented(step, *fault, result)) << result;
    }
    life.expectGoodEnd();
    showReplay(result + "\n");
    return plan->hasStruck();
  }

  /// Returns how often the fault had an effect.
  static std::uint64_t sweep(Step step, const MakeFault& makeFault, bool fromThereOn) {
    const std::string name = std::string("fault main ") + (GetParam() ? "logged " : "silent ") +
                             nameOf(step) + " " + makeFault()->name() +
                             (fromThereOn ? " from" : " at");
    return sweepAll(name,
                    [&](std::uint64_t k) { return runOnce(step, makeFault, k, fromThereOn); });
  }
};

TEST_P(MainThreadSweep, CreatingOrOpeningOrClosingAPortEndsInADocumentedWayAfterAnyFault) {
  std::uint64_t strikes = 0;
  std::vector<MakeFault> faults = allFaults();
  faults.insert(faults.end(), threadFaults().begin(), threadFaults().end());
  for (const MakeFault& makeFault : faults) {
    for (const Step step : {Step::Creation, Step::Open, Step::Close}) {
      strikes += sweep(step, makeFault, false);
      strikes += makeFault()->mayLast() ? sweep(step, makeFault, true) : 0;
      if (HasFailure()) {
        return;
      }
    }
  }
  EXPECT_TRUE(strikes > 100 || replayedCase());
  RecordProperty("cases", std::to_string(strikes));
}

INSTANTIATE_TEST_SUITE_P(Logging, MainThreadSweep, testing::Bool());

}  // namespace
}  // namespace quordalvane::test
