// Jobs on printers that give wrong answers.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <utility>

#include "job/PrintJob.h"
#include "tests/support/ScriptedWorld.h"

namespace quordalvane {
namespace {

using test::bytes;
using test::Script;

PrintResult printOn(const Script& script, PrintJob::Options options = {.proof = ProofKind::Block},
                    ZKEmulation emulation = ZKEmulationQuorLine) {
  test::ScriptedWorld world(script);
  const auto port =
      ExternalAccessoryPort::initWithPortName("BT:", "", 2000, emulation, world.platform());
  EXPECT_TRUE(port->open());
  world.start();
  return PrintJob(port, std::move(options)).run(test::ascii("receipt\n"));
}

const test::Bytes statusRequest = bytes("1b 06 01");

TEST(JobWithOddAnswers, IsRefusedIfTheAnswersAreNotLineModeStatuses) {
  // The first block is long enough for a counter, but lacks the fixed bits; the second block is too
  // short.
  for (const char* const block : {"09 01 00 00 00 00 00 00 05", "01"}) {
    const PrintResult result =
        printOn(Script().wheneverAsked(statusRequest, {{bytes(block), 0.0}}));
    EXPECT_EQ(result.outcome, PrintOutcome::Refused) << block;
    EXPECT_EQ(result.reason, "the printer's answer is not a status of this emulation") << block;
  }
}

TEST(JobWithOddAnswers, IsRefusedIfTheStatusHasNoCounter) {
  for (const char* const block : {"82 01", "86 01 00 00 00 00"}) {
    const PrintResult result =
        printOn(Script().wheneverAsked(statusRequest, {{bytes(block), 0.0}}));
    EXPECT_EQ(result.outcome, PrintOutcome::Refused) << block;
    EXPECT_THAT(result.reason, testing::HasSubstr("bytes and no counter")) << block;
  }
}

TEST(JobWithOddAnswers, IsRefusedIfAnAnswerNeverArrives) {
  Script script;
  script.whenAsked(statusRequest, {});  // the job asks again, and gets one answer for two questions
  script.wheneverAsked(statusRequest, {{bytes("89 01 00 00 00 00 00 00 05"), 0.0}});
  const PrintResult result = printOn(script);
  EXPECT_EQ(result.outcome, PrintOutcome::Refused);
  EXPECT_EQ(result.reason, "the printer has not answered every question");
}

TEST(JobWithOddAnswers, IsNotConfirmedByAnAnswerThatArrivesTwice) {
  const auto fresh = bytes("89 01 00 00 00 00 00 00 05");
  Script script;
  script.whenAsked(statusRequest, {{fresh, 0.0}, {fresh, 0.0}});
  script.whenAsked(statusRequest, {{fresh, 0.0}});
  script.wheneverAsked(statusRequest, {{bytes("89 01 00 00 00 00 02 00 05"), 0.0}});
  const PrintResult result = printOn(script);
  EXPECT_EQ(result.outcome, PrintOutcome::Refused) << "two ends were counted before the job";
}

TEST(JobWithOddAnswers, IsUnconfirmedIfTheLastAnswerIsNoStatus) {
  Script script;
  for (int beforeTheMark = 0; beforeTheMark < 3; ++beforeTheMark) {
    script.whenAsked(statusRequest, {{bytes("89 01 00 00 00 00 00 00 05"), 0.0}});
  }
  script.whenAsked(statusRequest, {{bytes("89 01 00 00 00 00 01 00 05"), 0.0}});
  script.wheneverAsked(statusRequest, {{bytes("09 01 00 00 00 00 02 00 05"), 0.0}});
  const PrintResult result = printOn(script);
  EXPECT_EQ(result.outcome, PrintOutcome::Unconfirmed);
  EXPECT_EQ(result.obstacle, PrintObstacle::NoProof);
  EXPECT_EQ(result.reason, "the printer's last two answers do not agree after all 8 bytes");
}

TEST(JobWithOddAnswers, IsRefusedIfUnaskedBytesNeverStop) {
  const test::Bytes chatter(std::size_t{2} << 20U, 'x');
  Script script;
  script.wheneverAsked(statusRequest, {{bytes("89 01 00 00 00 00 00 00 05"), 0.0}});
  script.wheneverAsked(bytes("1b 1d 03 03 00 00"), {{chatter, 0.0}});
  const PrintResult result = printOn(script);
  EXPECT_EQ(result.outcome, PrintOutcome::Refused);
  EXPECT_EQ(result.reason, "the printer has not answered every question");
}

TEST(JobWithOddAnswers, IsUnconfirmedIfOneStatusDuringTheJobIsOffLine) {
  const auto onLine = bytes("12");
  const auto request = bytes("10 04 01");
  Script script;
  for (int beforeTheData = 0; beforeTheData < 4; ++beforeTheData) {
    script.whenAsked(request, {{onLine, 0.0}});
  }
  script.whenAsked(request, {{bytes("1a"), 0.0}});
  script.whenAsked(bytes("1b 1d 03 01 00 00"), {{bytes("1b 1d 03 01 00 00 01 00"), 0.0}});
  for (const char* const any : {"10 04 01", "10 04 02", "10 04 04"}) {
    script.wheneverAsked(bytes(any), {{onLine, 0.0}});
  }
  const PrintResult result = printOn(script, {.proof = ProofKind::Block}, ZKEmulationESCPOS);
  EXPECT_EQ(result.outcome, PrintOutcome::Unconfirmed);
  EXPECT_EQ(result.reason,
            "the printer was off line for a while or garbled its report, and has not reported the "
            "end of the job after all 8 bytes");
}

TEST(JobWithOddAnswers, IsRefusedWithAHintIfThePrinterDoesNotAnswer) {
  const PrintResult result = printOn(Script());
  EXPECT_EQ(result.outcome, PrintOutcome::Refused);
  EXPECT_EQ(result.reason,
            "the printer does not answer; it may be switched off, set to another emulation, or in "
            "use by another program");
}

TEST(JobWithOddAnswers, IsRefusedIfThePrinterDoesNotResetItsCounter) {
  for (const char* const block : {"89 01 00 00 00 00 01 00 05", "89 01 00 00 00 00 03 00 05"}) {
    const PrintResult result =
        printOn(Script().wheneverAsked(statusRequest, {{bytes(block), 0.0}}));
    EXPECT_EQ(result.outcome, PrintOutcome::Refused) << block;
    EXPECT_EQ(result.reason, "the printer did not reset its counter within 2 s") << block;
  }
}

TEST(JobWithOddAnswers, IsRefusedIfTheLinkIsLostWhileItHasNoSpace) {
  const PrintResult result = printOn(Script().hasNoSpace().isLost(1.0), {.proof = ProofKind::None});
  EXPECT_EQ(result.outcome, PrintOutcome::Refused);
  EXPECT_EQ(result.obstacle, PrintObstacle::LinkLost);
  EXPECT_EQ(result.reason, "link lost");
}

}  // namespace
}  // namespace quordalvane
