// Simulates jobs on ESC/POS printers that support any set of proofs. The printers' answers have
// every kind of fault and may arrive during the next job. Some printers still have a job of another
// host.

#include <gtest/gtest.h>

#include <map>
#include <sstream>

#include "tests/simulation/ProofCase.h"
#include "tests/simulation/World.h"
#include "tests/support/Bytes.h"
#include "tests/support/Replay.h"

namespace quordalvane::simulation {
namespace {

struct Tally {
  std::uint64_t honest = 0;
  std::uint64_t confirmed = 0;
  std::map<PrintOutcome, std::uint64_t> outcomes;
};

void expectHonest(const Receipt& receipt, const PrintResult& result, const ByteBuffer& paper) {
  switch (result.outcome) {
    case PrintOutcome::Printed:
      EXPECT_EQ(result.bytesAccepted, receipt.data.size());
      EXPECT_TRUE(isOn(paper, receipt)) << "called printed without the paper";
      break;
    case PrintOutcome::Unconfirmed:
      EXPECT_GT(result.bytesAccepted, 0U);
      break;
    case PrintOutcome::Refused:
      EXPECT_EQ(result.bytesAccepted, 0U);
      EXPECT_TRUE(isNotOn(paper, receipt));
      break;
  }
  EXPECT_EQ(result.reason.empty(), result.outcome == PrintOutcome::Printed);
}

void show(const ProofCase& given, const PrintResult& result, World& world) {
  std::ostringstream text;
  text << given << '\n'
       << world.trace() << "outcome " << static_cast<int>(result.outcome) << " \"" << result.reason
       << "\", by " << nameOf(result.proof) << "\npaper " << test::shown(world.paper()) << '\n';
  test::showReplay(text.str());
}

void runCase(const ProofCase& given, Tally& tally) {
  World world(given.common);
  if (given.ofAnotherHost) {
    world.printForAnotherHost(*given.ofAnotherHost);
  }
  world.openPort();
  for (const Receipt& receipt : given.receipts) {
    const PrintResult result = world.printOnOpenPort(receipt.data);
    if (test::replayedCase()) {
      show(given, result, world);
    }
    expectHonest(receipt, result, world.paper());
    ++tally.outcomes[result.outcome];
    if (given.isHonest && gives(given, given.common.proof)) {
      ++tally.honest;
      tally.confirmed += result.outcome == PrintOutcome::Printed ? 1 : 0;
    }
  }
}

class SimulatedProofs : public testing::TestWithParam<std::uint64_t> {
 protected:
  static constexpr std::uint64_t parts = 2;
};

TEST_P(SimulatedProofs, NeverConfirmAJobThatIsNotOnPaper) {
  const auto replayed = test::replayedSeed("proof");
  const std::uint64_t first = replayed.value_or(test::firstSeed());
  const std::uint64_t count = replayed ? 1 : test::caseCount("QUOR_SIMULATED_PROOFS", 20000);
  Tally tally;
  for (std::uint64_t seed = first + GetParam(); seed < first + count && !HasFailure();
       seed += parts) {
    const ProofCase given = makeProofCase(seed);
    SCOPED_TRACE(testing::Message() << test::howToReplay("proof " + std::to_string(seed)) << '\n'
                                    << given);
    runCase(given, tally);
  }
  RecordProperty("cases", std::to_string(count / parts));
  RecordProperty("honest-jobs", std::to_string(tally.confirmed) + " of " +
                                    std::to_string(tally.honest) + " confirmed");
  if (count >= 1000 && !HasFailure()) {
    for (const PrintOutcome outcome :
         {PrintOutcome::Printed, PrintOutcome::Unconfirmed, PrintOutcome::Refused}) {
      EXPECT_GT(tally.outcomes[outcome], count / parts / 20) << static_cast<int>(outcome);
    }
    EXPECT_EQ(tally.confirmed, tally.honest) << "a job without any trouble was not confirmed";
  }
}

INSTANTIATE_TEST_SUITE_P(Part, SimulatedProofs, testing::Range<std::uint64_t>(0, 2));

}  // namespace
}  // namespace quordalvane::simulation
