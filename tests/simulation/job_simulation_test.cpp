// Random print jobs on a printer that never lies, with every kind of fault in its link and in the
// printer.

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <sstream>

#include "job/PrintData.h"
#include "tests/simulation/Case.h"
#include "tests/simulation/World.h"
#include "tests/support/Bytes.h"
#include "tests/support/Replay.h"

namespace quordalvane::simulation {
namespace {

using std::chrono::seconds;

bool isPrefix(const ByteBuffer& part, const ByteBuffer& whole) {
  return part.size() <= whole.size() && std::equal(part.begin(), part.end(), whole.begin());
}

void expectHonestOutcome(const Case& given, const PrintResult& result, World& world) {
  const ByteBuffer paper = world.paper();
  EXPECT_EQ(result.bytesTotal, given.data.size());
  EXPECT_EQ(result.reason.empty(), result.outcome == PrintOutcome::Printed);
  EXPECT_LE(result.bytesAccepted, result.bytesTotal);
  if (!given.dataMakesSigns) {
    EXPECT_EQ(result.bytesAccepted, world.witness().taken())
        << "not the bytes of the job that the link took";
  }
  switch (result.outcome) {
    case PrintOutcome::Printed:
      EXPECT_EQ(result.bytesAccepted, given.data.size());
      EXPECT_EQ(paper, given.onPaper) << "called printed without the paper";
      EXPECT_FALSE(world.witness().sawFailure()) << "a success after a failed write";
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

/// Whether the printer prints, in the end, all bytes that the link took, because neither a fault
/// nor a data time-out drops any of them.
bool losesNothing(const Case& given) {
  return given.portSettings.empty() || given.portSettings == "d0"
             ? std::none_of(given.faults.begin(), given.faults.end(),
                            [](const auto& fault) {
                              return fault.first == "prints-nothing" ||
                                     fault.first.starts_with("cut") || fault.first == "at";
                            })
             : false;
}

/// Whatever the outcome, the job was sent once, so its beginning is on the paper once.
void expectCopyOfTheBeginning(const Case& given, const PrintResult& result,
                              const ByteBuffer& paper) {
  EXPECT_TRUE(isPrefix(paper, given.onPaper)) << "not a copy of the job's beginning, once";
  EXPECT_LE(paper.size(), result.bytesAccepted);
  const bool endsInACommand = commandEnd(given.data, result.bytesAccepted) != result.bytesAccepted;
  if (losesNothing(given) && !endsInACommand && !given.dataMakesSigns) {
    EXPECT_EQ(paper.size(), result.bytesAccepted);
  }
}

void expectNextJobToPrint(World& world) {
  const ByteBuffer before = world.paper();
  const ByteBuffer next = {'n', 'e', 'x', 't', '\n'};
  const PrintResult result = world.printAgain(next);
  EXPECT_EQ(result.outcome, PrintOutcome::Printed) << "a job after the trouble: " << result.reason;
  ByteBuffer expected = before;
  expected.insert(expected.end(), next.begin(), next.end());
  EXPECT_EQ(world.paper(), expected);
}

void show(const Case& given, const PrintResult& result, World& world) {
  std::ostringstream text;
  text << given << '\n'
       << world.trace() << "outcome " << static_cast<int>(result.outcome) << " \"" << result.reason
       << "\", " << result.bytesAccepted << " bytes accepted\npaper " << test::shown(world.paper())
       << '\n';
  test::showReplay(text.str());
}

PrintOutcome runCase(const Case& given) {
  World world(given);
  const PrintResult result = world.printJob();
  EXPECT_LT(world.now(), seconds(120));
  expectHonestOutcome(given, result, world);
  world.recover();
  expectCopyOfTheBeginning(given, result, world.paper());
  expectNextJobToPrint(world);
  if (test::replayedCase()) {
    show(given, result, world);
  }
  return result.outcome;
}

/// The seeds are divided among several tests, which may run side by side.
class SimulatedJobs : public testing::TestWithParam<std::uint64_t> {
 protected:
  static constexpr std::uint64_t parts = 2;
};

TEST_P(SimulatedJobs, AreReportedAsPrintedOnlyIfThePaperHasThePrint) {
  const auto replayed = test::replayedSeed("job");
  const std::uint64_t first = replayed.value_or(test::firstSeed());
  const std::uint64_t count = replayed ? 1 : test::caseCount("QUOR_SIMULATED_JOBS", 20000);
  std::map<PrintOutcome, std::uint64_t> outcomes;
  for (std::uint64_t seed = first + GetParam(); seed < first + count && !HasFailure();
       seed += parts) {
    const Case given = makeCase(seed);
    SCOPED_TRACE(testing::Message() << test::howToReplay("job " + std::to_string(seed)) << '\n'
                                    << given);
    ++outcomes[runCase(given)];
  }
  RecordProperty("cases", std::to_string(count / parts));
  if (count >= 1000 && !HasFailure()) {
    // Checks that the cases reach every outcome often: a run that never prints, or never fails,
    // would show nothing.
    EXPECT_GT(outcomes[PrintOutcome::Printed], count / parts / 5);
    EXPECT_GT(outcomes[PrintOutcome::Unconfirmed], count / parts / 5);
    EXPECT_GT(outcomes[PrintOutcome::Refused], count / parts / 20);
  }
}

INSTANTIATE_TEST_SUITE_P(Part, SimulatedJobs, testing::Range<std::uint64_t>(0, 2));

}  // namespace
}  // namespace quordalvane::simulation
