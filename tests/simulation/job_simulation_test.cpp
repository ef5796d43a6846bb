// Seeded print jobs on a printer that never lies, with everything going wrong on the way to it and
// in it. A failure names its seed: QUOR_SEED=… runs that one alone.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <map>
#include <memory>

#include "backends/virtual/VirtualAccessory.h"
#include "backends/virtual/VirtualPlatform.h"
#include "job/PrintData.h"
#include "job/PrintJob.h"
#include "simulator/PrinterBuilder.h"
#include "tests/simulation/Case.h"

namespace quordalvane::simulation {
namespace {

using std::chrono::seconds;

std::uint64_t numberFromEnvironment(const char* name, std::uint64_t otherwise) {
  const char* text = std::getenv(name);
  return text == nullptr ? otherwise : std::strtoull(text, nullptr, 10);
}

simulator::Faults faultsOf(const Case& given) {
  simulator::Faults faults;
  for (const auto& [key, value] : given.faults) {
    faults.add(key, value);
  }
  return faults;
}

std::unique_ptr<simulator::VirtualPrinter> printerOf(const Case& given) {
  simulator::PrinterBuilder builder;
  for (const auto& [key, value] : given.printer) {
    builder.set(key, value);
  }
  return std::make_unique<simulator::VirtualPrinter>(builder.state());
}

/// One till, one printer, one job, and what is on the paper.
class World {
 public:
  explicit World(const Case& given)
      : given_(given),
        platform_(std::make_shared<virtuals::VirtualPlatform>()),
        accessory_(std::make_shared<virtuals::VirtualAccessory>(
            AccessoryIdentity{}, printerOf(given), platform_->clock(), faultsOf(given))) {
    platform_->attach(accessory_);
    for (const Turn& turn : given.turns) {
      platform_->virtualClock().at(turn.after, [this, turn] { set(turn.flag, turn.value); });
    }
  }

  PrintResult print(const ByteBuffer& data, std::uint32_t timeoutMillis,
                    std::uint32_t endTimeoutMillis) {
    const auto port = ExternalAccessoryPort::initWithPortName(
        "BT:", given_.portSettings, timeoutMillis, given_.emulation, platform_);
    port->setEndCheckedBlockTimeoutMillis(endTimeoutMillis);
    port->open();
    PrintResult result = PrintJob(port).run(data);
    port->close();
    return result;
  }

  ByteBuffer paper() {
    ByteBuffer bytes;
    accessory_->withPrinter(
        [&bytes](simulator::VirtualPrinter& printer, auto) { bytes = printer.printed(); });
    return bytes;
  }

  /// Ends all trouble, and gives the printer time to print what it holds.
  void recover() {
    accessory_->setFaults({});
    platform_->clock().usleep(10000000);  // past the last turn
    for (const Turn& turn : given_.turns) {
      set(turn.flag, false);
    }
    platform_->clock().usleep(600000000);
  }

  simulator::Instant now() { return platform_->clock().monotonic(); }

 private:
  void set(const std::string& flag, bool value) {
    accessory_->withPrinter(
        [&](simulator::VirtualPrinter& printer, auto now) { printer.setFlag(flag, value, now); });
  }

  const Case& given_;
  const std::shared_ptr<virtuals::VirtualPlatform> platform_;
  const std::shared_ptr<virtuals::VirtualAccessory> accessory_;
};

bool isPrefix(const ByteBuffer& part, const ByteBuffer& whole) {
  return part.size() <= whole.size() && std::equal(part.begin(), part.end(), whole.begin());
}

void expectHonestOutcome(const Case& given, const PrintResult& result, const ByteBuffer& paper) {
  EXPECT_EQ(result.bytesTotal, given.data.size());
  EXPECT_LE(result.bytesAccepted, given.data.size());
  EXPECT_EQ(result.reason.empty(), result.outcome == PrintOutcome::Printed);
  switch (result.outcome) {
    case PrintOutcome::Printed:
      EXPECT_EQ(result.bytesAccepted, given.data.size());
      if (!given.dataMakesSigns) {
        EXPECT_EQ(paper, given.data);
      }
      break;
    case PrintOutcome::Unconfirmed:
      EXPECT_GT(result.bytesAccepted, 0U);
      break;
    case PrintOutcome::Refused:
      EXPECT_EQ(result.bytesAccepted, 0U);
      EXPECT_EQ(paper, ByteBuffer());
      break;
  }
}

/// Nothing drops bytes that the link took: then all of them come out in the end.
bool losesNothing(const Case& given) {
  return given.portSettings.empty() || given.portSettings == "d0"
             ? std::none_of(given.faults.begin(), given.faults.end(),
                            [](const auto& fault) {
                              return fault.first == "prints-nothing" ||
                                     fault.first.starts_with("cut") || fault.first == "at";
                            })
             : false;
}

PrintOutcome runCase(const Case& given) {
  World world(given);
  const PrintResult result = world.print(given.data, given.timeoutMillis, given.endTimeoutMillis);
  EXPECT_LT(world.now(), seconds(120));
  expectHonestOutcome(given, result, world.paper());
  world.recover();
  const ByteBuffer paper = world.paper();
  if (!given.dataMakesSigns) {
    EXPECT_TRUE(isPrefix(paper, given.data)) << "not a copy of the job's beginning, once";
    EXPECT_LE(paper.size(), result.bytesAccepted);
    const bool endsInACommand =
        commandEnd(given.data, result.bytesAccepted) != result.bytesAccepted;
    if (losesNothing(given) && !endsInACommand) {
      EXPECT_EQ(paper.size(), result.bytesAccepted);
    }
  }
  const ByteBuffer next = {'n', 'e', 'x', 't', '\n'};
  const PrintResult after = world.print(next, 10000, 10000);
  EXPECT_EQ(after.outcome, PrintOutcome::Printed) << "a job after the trouble: " << after.reason;
  ByteBuffer expected = paper;
  expected.insert(expected.end(), next.begin(), next.end());
  EXPECT_EQ(world.paper(), expected);
  return result.outcome;
}

TEST(SimulatedJobs, AreNeverCalledPrintedWithoutThePaper) {
  const std::uint64_t first = numberFromEnvironment("QUOR_SEED", 1);
  const bool one = std::getenv("QUOR_SEED") != nullptr;
  const std::uint64_t count = numberFromEnvironment("QUOR_SIMULATED_JOBS", one ? 1 : 20000);
  std::map<PrintOutcome, std::uint64_t> outcomes;
  for (std::uint64_t seed = first; seed < first + count && !HasFailure(); ++seed) {
    const Case given = makeCase(seed);
    SCOPED_TRACE(testing::Message() << given);
    ++outcomes[runCase(given)];
  }
  if (count >= 1000 && !HasFailure()) {
    // The cases reach every outcome often: a run that never prints, or never fails, shows nothing.
    EXPECT_GT(outcomes[PrintOutcome::Printed], count / 5);
    EXPECT_GT(outcomes[PrintOutcome::Unconfirmed], count / 5);
    EXPECT_GT(outcomes[PrintOutcome::Refused], count / 20);
  }
}

}  // namespace
}  // namespace quordalvane::simulation
