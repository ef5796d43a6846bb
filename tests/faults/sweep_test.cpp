#include <gtest/gtest.h>

#include <set>

#include "tests/model/Scenario.h"
#include "tests/support/FaultyPlatform.h"
#include "tests/support/LogCapture.h"

namespace quordalvane::test {
namespace {

/// A printer that answers everything at once, so that a run without a fault succeeds.
Script answeringPrinter() {
  Script script;
  script.wheneverAsked(bytes("1b 06 01"), {{bytes("89 01 00 00 00 00 00 00 05")}})
      .wheneverAsked(bytes("10 04 01"), {{bytes("12")}})
      .wheneverAsked(bytes("10 04 02"), {{bytes("12")}})
      .wheneverAsked(bytes("10 04 04"), {{bytes("12")}})
      .wheneverAsked(bytes("17 17 1b 1d 03 04 00 00 1b 2a 72 42 1b 1d 03 04 00 00 1b 06 01"),
                     {{bytes("89 01 00 00 00 00 02 00 05")}})
      .wheneverAsked(bytes("1b 1d 03 01 00 00"), {{bytes("1b 1d 03 01 00 00 01 00")}})
      .wheneverAsked(bytes("1b 23 2a 0a 00"), {{bytes("1b 23 2a 56 31 0a 00")}})
      .wheneverAsked(bytes("1d 49 41"), {{bytes("5f 56 31 00")}})
      .wheneverAsked(bytes("1b 23 2c 31 0a 00"), {{bytes("1b 23 2c 31 45 02 0a")}})
      .wheneverAsked(bytes("1b 23 2c 32 0a 00"), {{bytes("1b 23 2c 32 00 00 0a")}})
      .wheneverAsked(ascii("AT*AILBA?\r"), {{ascii("\r\n*AILBA:0011223344FF\r\n\r\nOK\r\n")}});
  script.lostAfterCalls = 1000;  // so that the loops that have no limit of their own end
  return script;
}

/// Which exceptions may leave an operation besides those that the platform raises.
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
        fault.name() == "standard exception" || fault.name() == "another exception";
    return isRaised && operation != "open" && operation != "close";
  }
  if (result.find("xception") != std::string::npos || result.starts_with("std::")) {
    return ownExceptions(operation).contains(result);
  }
  return true;
}

/// The longest that an operation may take in virtual time with time-outs of 1 s: every write of a
/// command up to 2.2 s, every status 11.5 s (four writes and a wait), and the waits and guard times
/// of its own. The link is lost for good after 1000 calls, within which the loops without a limit
/// must end.
double mostSeconds(const std::string& operation) {
  constexpr double slice = 0.11;
  constexpr double command = 2.3;
  constexpr double wait = 2.4;
  constexpr double status = 11.5;
  if (operation == "isConnected" || operation == "close") {
    return 0;
  }
  if (operation == "write" || operation == "read" || operation == "open") {
    return slice;
  }
  if (operation == "writeWithRetry" || operation == "startDataCancel") {
    return command;
  }
  if (operation == "getParsedStatus" || operation == "getOnlineStatus") {
    return command + status;
  }
  if (operation == "beginCheckedBlock" || operation == "endCheckedBlock") {
    return 4 * command + 2 * status + wait;
  }
  if (operation == "retrieveFirmwareInformation") {
    return status + command + wait;
  }
  if (operation == "enterATMode" || operation == "disconnect" ||
      operation == "getPrinterResponse") {
    return 2.5 + 3 * command + 11.5 + wait;
  }
  return 2 * (command + wait);
}

class FaultSweep : public testing::TestWithParam<std::tuple<std::int32_t, bool>> {
 protected:
  static std::int32_t emulation() { return std::get<0>(GetParam()); }
  static bool logs() { return std::get<1>(GetParam()); }

  /// Runs the call once with the plan. True when the plan's call was made at all.
  static bool runOnce(const Call& call, const std::shared_ptr<Fault>& fault, std::uint64_t k,
                      bool fromThereOn) {
    const auto plan = std::make_shared<FaultPlan>(fault, k, fromThereOn);
    ScriptedWorld world(answeringPrinter());
    virtuals::VirtualClock& clock = world.machine().virtualClock();
    const auto platform = std::make_shared<FaultyPlatform>(world.platform(), plan, clock);
    const auto port = ExternalAccessoryPort::initWithPortName(
        "BT:", "d9", 1000, static_cast<ZKEmulation>(emulation()), platform);
    EXPECT_TRUE(port->open());
    const Logging logging(logs());
    Caller caller;
    world.start();
    const auto start = clock.monotonic();
    plan->arm();
    const std::string result = call.onPort(*port, caller);
    plan->disarm();
    const double seconds = std::chrono::duration<double>(clock.monotonic() - start).count();
    EXPECT_TRUE(isDocumented(call.name, *fault, result)) << result;
    EXPECT_LE(seconds, mostSeconds(call.name) + fault->delay());
    EXPECT_NO_THROW(port->close());
    EXPECT_TRUE(port->open()) << "a port works again after any fault";
    return plan->hasStruck();
  }

  /// Fails the first, the second, … call until a run makes fewer calls than that. Returns how often
  /// the fault struck.
  static std::uint64_t sweep(const Call& call, std::size_t fault, bool fromThereOn) {
    for (std::uint64_t k = 1;; ++k) {
      const auto chosen = allFaults()[fault];
      SCOPED_TRACE(call.name + ", " + chosen->name() + (fromThereOn ? " from call " : " at call ") +
                   std::to_string(k));
      if (!runOnce(call, chosen, k, fromThereOn) || HasFailure()) {
        return k - 1;
      }
    }
  }
};

TEST_P(FaultSweep, EndsEveryOperationInADocumentedWay) {
  for (std::size_t fault = 0; fault < allFaults().size(); ++fault) {
    std::uint64_t strikes = 0;
    for (const Call& call : allCalls()) {
      strikes += sweep(call, fault, false);
      strikes += allFaults()[fault]->mayLast() ? sweep(call, fault, true) : 0;
      if (HasFailure()) {
        return;
      }
    }
    EXPECT_GT(strikes, 0U) << allFaults()[fault]->name();
  }
}

INSTANTIATE_TEST_SUITE_P(EmulationAndLogging, FaultSweep,
                         testing::Combine(testing::Values(unknownEmulation, lineMode, escPos),
                                          testing::Bool()));

}  // namespace
}  // namespace quordalvane::test
