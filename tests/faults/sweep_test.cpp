// Every call to the platform fails, in every way. In run k of an operation, its k-th call fails.
// The first run that makes fewer than k calls is the last.

#include <gtest/gtest.h>

#include <set>

#include "tests/faults/AnsweringPrinter.h"
#include "tests/faults/CaseNames.h"
#include "tests/faults/Sweep.h"
#include "tests/model/Scenario.h"
#include "tests/support/FaultyPlatform.h"
#include "tests/support/ReadsAddresses.h"
#include "tests/support/Replay.h"

namespace quordalvane::test {
namespace {

/// Returns the operation's own exceptions. The operation may also throw those of the platform.
std::set<std::string> ownExceptions(const std::string& operation) {
  std::set<std::string> raised;
  if (operation == "getParsedStatus" || operation == "getOnlineStatus" ||
      operation == "beginCheckedBlock" || operation == "endCheckedBlock") {
    raised.insert("PortException: Native WritePort failed");
    raised.insert("PortException: GetParsedStatus detected bluetooth disconnection");
  }
  if (operation == "beginCheckedBlock") {
    raised.insert("PortException: [beginCheckedBlock] Failed to set data cancel timeout");
  }
  if (operation == "retrieveFirmwareInformation" ||
      operation == "retrieveESCPOSFirmwareInformation" || operation == "enterATMode" ||
      operation == "getPrinterResponse" || operation == "disconnect") {
    raised.insert("std::out_of_range");
  }
  return raised;
}

bool isDocumented(const std::string& operation, const Fault& fault, const std::string& result) {
  if (result == "std::exception: fault" || result == "another exception") {
    const bool isRaised =
        fault.name() == "standard-exception" || fault.name() == "another-exception";
    return isRaised && operation != "open" && operation != "close";
  }
  if (result.find("xception") != std::string::npos || result.starts_with("std::")) {
    return ownExceptions(operation).contains(result);
  }
  return true;
}

/// Runs an operation in which one call to the platform fails, alone or with all later calls.
/// Afterwards, without the fault, the port is closed and opened again.
class FaultyRun {
 public:
  FaultyRun(Call call, MakeFault makeFault, bool fromThereOn)
      : call_(std::move(call)), makeFault_(std::move(makeFault)), fromThereOn_(fromThereOn) {}

  /// Makes the k-th call fail. Returns false if there was no k-th call.
  bool run(Scenario scenario, std::uint64_t k) {
    scenario.layerStepsBack = std::max<std::int64_t>(0, -makeFault_()->clockStep());
    scenario.layer = [this, k, below = scenario.layer](std::shared_ptr<Platform> next) {
      fault_ = makeFault_();
      plan_ = std::make_shared<FaultPlan>(fault_, k, fromThereOn_);
      return std::make_shared<FaultyPlatform>(below ? below(std::move(next)) : std::move(next),
                                              plan_);
    };
    const Outcome outcome = scenario.run(underPlan());
    EXPECT_TRUE(isDocumented(call_.name, *fault_, result_)) << result_;
    EXPECT_TRUE(outcome.result.ends_with("true; true")) << "a port can be opened after any fault";
    showReplay(call_.name + " " + outcome.report());
    return plan_->hasStruck();
  }

 private:
  Call underPlan() {
    Call whole = inTurn({call_, close(), open()});
    whole.onPort = [this](auto& port, Caller& caller) { return runOn(call_.onPort, port, caller); };
    whole.onModel = [this](auto& model, Caller& caller) {
      return runOn(call_.onModel, model, caller);
    };
    return whole;
  }

  template <typename Side, typename Port>
  std::string runOn(const Side& side, Port& port, Caller& caller) {
    plan_->arm();
    result_ = side(port, caller);
    plan_->disarm();
    return result_ + "; " + resultOf([&port] {
             port.close();
             return std::string("true");
           }) +
           "; " + resultOf([&port] { return shownResult(port.open()); });
  }

  const Call call_;
  const MakeFault makeFault_;
  const bool fromThereOn_;
  std::shared_ptr<Fault> fault_;
  std::shared_ptr<FaultPlan> plan_;
  std::string result_;  // the result of the operation in its latest run
};

class FaultSweep : public testing::TestWithParam<std::tuple<std::int32_t, bool>> {
 protected:
  static Scenario scenario() {
    const auto [emulation, logs] = GetParam();
    Scenario scenario = Scenario::in(emulation, 1000);
    // The printer is chosen by its address, because then the port reads every property of the
    // accessory. The address is in the accessory's description, or the platform knows it.
    const std::string address = "00:11:22:33:44:55";
    scenario.creation.portName = "BT:" + address;
    if (logs) {
      scenario.accessories.front().address = address;
    } else {
      scenario.layer = [address](std::shared_ptr<Platform> next) {
        return std::make_shared<ReadsAddresses>(std::move(next), address);
      };
    }
    scenario.creation.portSettings = "d9";
    scenario.script = answeringPrinter();
    scenario.logging = logs;
    return scenario;
  }

  /// Runs the operation repeatedly; in run k, its k-th call fails. The first run that makes fewer
  /// than k calls is the last. Returns in how many runs the fault had an effect.
  static std::uint64_t sweep(const Call& call, const MakeFault& makeFault, bool fromThereOn) {
    const auto [emulation, logs] = GetParam();
    const std::string name = std::string("fault ") + emulationName(emulation) +
                             (logs ? " logged " : " silent ") + call.name + " " +
                             makeFault()->name() + (fromThereOn ? " from" : " at");
    FaultyRun faulty(call, makeFault, fromThereOn);
    return sweepAll(name, [&](std::uint64_t k) { return faulty.run(scenario(), k); });
  }
};

TEST_P(FaultSweep, EveryOperationEndsInADocumentedWayAfterAnyFault) {
  std::uint64_t cases = 0;
  for (const MakeFault& makeFault : allFaults()) {
    std::uint64_t strikes = 0;
    for (const Call& call : allCalls()) {
      strikes += sweep(call, makeFault, false);
      strikes += makeFault()->mayLast() ? sweep(call, makeFault, true) : 0;
      if (HasFailure()) {
        return;
      }
    }
    EXPECT_TRUE(strikes > 0 || replayedCase()) << makeFault()->name() << " never struck";
    cases += strikes;
  }
  RecordProperty("cases", std::to_string(cases));
}

INSTANTIATE_TEST_SUITE_P(EmulationAndLogging, FaultSweep,
                         testing::Combine(testing::Values(unknownEmulation, lineMode, escPos),
                                          testing::Bool()));

}  // namespace
}  // namespace quordalvane::test
