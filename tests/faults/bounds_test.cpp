// How long operations may take. Every comparison of a port with the model also checks the bound of
// the run. The tests in this file cover the parts of a run that have no bound. These parts are
// loops, and a lost link ends each loop within one pass.

#include <gtest/gtest.h>

#include <algorithm>

#include "tests/model/Bounds.h"
#include "tests/model/Scenario.h"

namespace quordalvane::test {
namespace {

/// How many bytes the port moved, or tried to move, after it had noticed the lost link.
std::ptrdiff_t movesAfterTheLoss(const Outcome& outcome) {
  const auto seen = std::find_if(outcome.lines.begin(), outcome.lines.end(), [](const Line& line) {
    return line.text == "accessory.isConnected 0";
  });
  return std::count_if(seen, outcome.lines.end(),
                       [](const Line& line) { return line.about == About::Data; });
}

/// Runs a call. Checks that `exemption` names the part of the run that has no bound, and that the
/// call moves no byte after it has noticed the lost link.
Outcome expectEndWithTheLink(const Scenario& scenario, const Call& call,
                             const std::string& exemption) {
  const Outcome outcome = scenario.run(call);
  EXPECT_EQ(exemptionOf(outcome, call).name, exemption);
  EXPECT_EQ(movesAfterTheLoss(outcome), 0);
  return outcome;
}

TEST(TimeBounds, TheRetryingWriterEndsWhenTheLinkIsLost) {
  Scenario scenario = Scenario::in(lineMode, 1000);
  scenario.script.takesInAttempts({3}).isLostAfterBytes(4000);
  const Outcome outcome = expectEndWithTheLink(scenario, writeWithRetry(bytes("1b 40 1b 41 1b 42")),
                                               "the retrying writer's repeat");
  EXPECT_EQ(outcome.result, "-1");
  EXPECT_LE(outcome.sent().size(), 4000U + 3U) << "at most one tail beyond the loss";
}

TEST(TimeBounds, AWriteThatTheStreamNeverAcceptsEndsWhenTheLinkIsLost) {
  Scenario scenario = Scenario::in(lineMode, 1000);
  for (std::size_t nth = 1; nth < 2000; ++nth) {
    scenario.script.writeReturns(nth, 0);
  }
  scenario.script.lostAfterCalls = 1000;
  const Outcome outcome =
      expectEndWithTheLink(scenario, write(bytes("41")), "a stream that says ready");
  EXPECT_EQ(outcome.result, "-1");
}

TEST(TimeBounds, AReadThatReceivesNothingEndsWhenTheLinkIsLost) {
  Scenario scenario = Scenario::in(lineMode, 1000);
  scenario.script.delivers(bytes("41"));
  for (std::size_t nth = 1; nth < 2000; ++nth) {
    scenario.script.readReturns(nth, 0);
  }
  scenario.script.isLostAfterReads(500);
  const Outcome outcome = expectEndWithTheLink(scenario, read(1), "a stream that says ready");
  EXPECT_EQ(outcome.result, "none");
}

TEST(TimeBounds, TheLoopOverInvalidStatusesEndsWhenTheLinkIsLost) {
  Scenario scenario = Scenario::in(escPos, 1000);
  scenario.script.wheneverAsked(bytes("10 04 01"), {{bytes("00"), 0.05}}).isLost(100);
  const Outcome outcome =
      expectEndWithTheLink(scenario, endCheckedBlock(), "the invalid-status loop");
  EXPECT_EQ(outcome.result, "false");
  EXPECT_NEAR(outcome.seconds, 100, 2);
}

TEST(TimeBounds, TheDrainOfTheInputEndsWhenTheLinkIsLost) {
  Scenario scenario = Scenario::in(escPos, 1000);
  scenario.script.whenAsked(bytes("10 04 01"), {{bytes("1a"), 0}});
  for (int i = 1; i <= 2000; ++i) {
    scenario.script.delivers(bytes("55"), 0.05 * i);
  }
  scenario.script.isLost(90);
  const Outcome outcome = expectEndWithTheLink(scenario, endCheckedBlock(), "the drain");
  EXPECT_EQ(outcome.result, "false");
  EXPECT_NEAR(outcome.seconds, 90, 2);
}

TEST(TimeBounds, ApplyToEveryPartOfACallExceptALoopThatHasNoTimeout) {
  Scenario scenario = Scenario::in(escPos, 1000);
  scenario.script.wheneverAsked(bytes("10 04 01"), {{bytes("00"), 0.05}}).isLost(100);
  const Call call = endCheckedBlock();
  Outcome outcome = scenario.run(call);
  EXPECT_EQ(overrun(scenario, call, outcome), "");
  EXPECT_GT(exemptionOf(outcome, call).seconds, 90);
  outcome.seconds += mostSeconds(scenario, call);
  EXPECT_NE(overrun(scenario, call, outcome), "") << "as if it had continued without the link";
}

TEST(TimeBounds, AreCloseToTheRealDurationsWithASilentPrinter) {
  for (const std::int32_t emulation : {unknownEmulation, lineMode, escPos}) {
    for (const Call& call : allCalls()) {
      Scenario scenario = Scenario::in(emulation, 3000);
      const Outcome silent = scenario.run(call);
      EXPECT_LE(silent.seconds, mostSeconds(scenario, call)) << call.name;
    }
    Scenario full = Scenario::in(emulation, 3000);
    full.script.hasNoSpace();
    const Call call = writeWithRetry(bytes("1b"));
    EXPECT_GT(full.run(call).seconds, mostSeconds(full, call) - 1.2);
  }
}

}  // namespace
}  // namespace quordalvane::test
