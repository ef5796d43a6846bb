#include "journal/NamedJob.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <stdexcept>

#include "journal/History.h"
#include "journal/Rows.h"
#include "tests/unit/journal/JournalCase.h"

namespace quordalvane {
namespace {

using testing::HasSubstr;

class NamedJobTest : public JournalCase, public testing::WithParamInterface<ZKEmulation> {
 protected:
  Till till{GetParam()};

  /// A process that begins to print under the name, and ends after its first byte.
  void dieInTheMiddle(const std::string& name) {
    const pid_t process = ::fork();
    if (process == 0) {
      Journal journal(file);
      NamedJob named(journal, request(name), receiptText);
      PrintJob job(till.port, named.recorded({.progress = [](const PrintProgress& progress) {
        if (progress.bytesAccepted > 0) {
          ::_exit(0);
        }
      }}));
      named.run(job);
      ::_exit(1);
    }
    int status = -1;
    ::waitpid(process, &status, 0);
    ASSERT_EQ(status, 0);
  }
};

TEST_P(NamedJobTest, AJobWithANewNameIsPrintedAndRecorded) {
  const auto first = print(till, "receipt 1");
  EXPECT_EQ(first.result.outcome, PrintOutcome::Printed);
  EXPECT_EQ(first.attempt, 1);
  EXPECT_FALSE(first.isRepeated);
  EXPECT_EQ(first.notRecorded, "");
  const JobRecord known = onlyJob();
  EXPECT_EQ(known.name, "receipt 1");
  EXPECT_EQ(known.device, "virtual:");
  EXPECT_EQ(known.bytes, receiptText.size());
  EXPECT_EQ(known.attempts, 1);
  EXPECT_EQ(known.state, JobState::Printed);
  EXPECT_EQ(known.reason, "");
  EXPECT_TRUE(known.ended);
}

TEST_P(NamedJobTest, APrintedJobIsReportedAsPrintedAndSendsNothing) {
  print(till, "receipt 1");
  const auto second = print(till, "receipt 1");
  EXPECT_EQ(second.result.outcome, PrintOutcome::Printed);
  EXPECT_TRUE(second.isRepeated);
  EXPECT_EQ(second.attempt, 1);
  EXPECT_EQ(second.result.bytesAccepted, receiptText.size());
  EXPECT_EQ(second.result.bytesTotal, receiptText.size());
  EXPECT_EQ(till.printed(), receiptText);
}

TEST_P(NamedJobTest, ARepeatedJobReportsTheProofAndObstacleOfItsFirstAttempt) {
  const auto first = print(till, "receipt 1");
  ASSERT_NE(first.result.proof, ProofKind::Auto);
  EXPECT_EQ(print(till, "receipt 1").result.proof, first.result.proof);
  EXPECT_EQ(print(till, "receipt 1").result.obstacle, PrintObstacle::None);
  const ByteBuffer data(3000, 'x');
  Till cut(simulator::PrinterBuilder().speed(500).buffer(1000), {.emulation = GetParam()});
  cut.port->close();
  cut.accessory->setFaults(with("at", "2000:cut=drain"));
  ASSERT_TRUE(cut.port->open());
  const auto lost = print(cut, "receipt 2", false, data);
  ASSERT_EQ(lost.result.outcome, PrintOutcome::Unconfirmed);
  ASSERT_EQ(lost.result.obstacle, PrintObstacle::LinkLost);
  const auto second = print(till, "receipt 2", false, data);
  EXPECT_EQ(second.result.obstacle, PrintObstacle::LinkLost);
  EXPECT_EQ(second.result.proof, lost.result.proof);
  EXPECT_EQ(second.result.advice, lost.result.advice);
}

TEST_P(NamedJobTest, APrintedJobIsNotPrintedAgainEvenOnRequest) {
  print(till, "receipt 1");
  EXPECT_TRUE(print(till, "receipt 1", true).isRepeated);
  EXPECT_EQ(till.printed(), receiptText);
}

TEST_P(NamedJobTest, ARefusedJobIsPrintedAfterTheCauseHasEnded) {
  till.set("coverOpen", true);
  const auto refused = print(till, "receipt 1");
  EXPECT_EQ(refused.result.outcome, PrintOutcome::Refused);
  EXPECT_EQ(onlyJob().state, JobState::Refused);
  EXPECT_EQ(onlyJob().reason, refused.result.reason);
  till.set("coverOpen", false);
  const auto second = print(till, "receipt 1");
  EXPECT_EQ(second.result.outcome, PrintOutcome::Printed);
  EXPECT_EQ(second.attempt, 2);
  EXPECT_FALSE(second.isRepeated);
}

TEST_P(NamedJobTest, RepeatingAnUnconfirmedJobReportsItsCauseAndSendsNothing) {
  Till slow(simulator::PrinterBuilder().speed(1), {.emulation = GetParam()});
  slow.port->setEndCheckedBlockTimeoutMillis(0);
  const auto first = print(slow, "receipt 1");
  ASSERT_EQ(first.result.outcome, PrintOutcome::Unconfirmed);
  const auto second = print(till, "receipt 1");
  EXPECT_EQ(second.result.outcome, PrintOutcome::Unconfirmed);
  EXPECT_EQ(second.result.reason, first.result.reason);
  EXPECT_EQ(second.result.bytesAccepted, receiptText.size());
  EXPECT_NE(second.result.advice, "");
  EXPECT_EQ(second.attempt, 1);
  EXPECT_EQ(till.printed(), ByteBuffer());
}

TEST_P(NamedJobTest, AnUnconfirmedJobIsPrintedAgainOnRequest) {
  dieInTheMiddle("receipt 1");
  const auto again = print(till, "receipt 1", true);
  EXPECT_EQ(again.result.outcome, PrintOutcome::Printed);
  EXPECT_EQ(again.attempt, 2);
  EXPECT_EQ(onlyJob().attempts, 2);
  EXPECT_EQ(onlyJob().state, JobState::Printed);
  EXPECT_TRUE(print(till, "receipt 1").isRepeated);
}

TEST_P(NamedJobTest, AJobIsUnconfirmedIfItsProcessEndedDuringPrinting) {
  dieInTheMiddle("receipt 1");
  const auto next = print(till, "receipt 1");
  EXPECT_EQ(next.result.outcome, PrintOutcome::Unconfirmed);
  EXPECT_EQ(next.result.reason,
            "the process that printed the job ended too early; up to 45 bytes were sent");
  EXPECT_EQ(till.printed(), ByteBuffer());
  EXPECT_EQ(onlyJob().state, JobState::Unconfirmed);
  EXPECT_EQ(onlyJob().reason, next.result.reason);
  EXPECT_FALSE(onlyJob().ended);
}

TEST_P(NamedJobTest, AJobRemainsUnconfirmedAfterARefusedSecondAttempt) {
  dieInTheMiddle("receipt 1");
  till.set("coverOpen", true);
  EXPECT_EQ(print(till, "receipt 1", true).result.outcome, PrintOutcome::Refused);
  EXPECT_EQ(print(till, "receipt 1").result.outcome, PrintOutcome::Unconfirmed);
}

TEST_P(NamedJobTest, ARepeatedlyRefusedJobTakesOneRowOfTheJournal) {
  till.set("coverOpen", true);
  for (int attempt = 1; attempt <= 3; ++attempt) {
    EXPECT_EQ(print(till, "receipt 1").attempt, attempt);
  }
  EXPECT_EQ(onlyJob().attempts, 3);
  Database database(file);
  EXPECT_EQ(allRows(database).size(), 1U);
}

TEST_P(NamedJobTest, AKnownNameWithOtherDataIsAUsageErrorAndSendsNothing) {
  till.set("coverOpen", true);
  print(till, "receipt 1");
  till.set("coverOpen", false);
  const auto other = bytesOf("Tea  1.80\n");
  const auto sameLength = ByteBuffer(receiptText.size(), 'x');
  for (const auto& data : {other, sameLength}) {
    EXPECT_THAT(errorOf<std::invalid_argument>([&] { print(till, "receipt 1", false, data); }),
                HasSubstr("other data, of 45 bytes"));
  }
  EXPECT_EQ(till.printed(), ByteBuffer());
}

TEST_P(NamedJobTest, AJobIsRecordedAsBegunBeforeItsFirstByteIsSent) {
  Journal journal(file);
  NamedJob named(journal, request("receipt 1"), receiptText);
  std::vector<std::string> seen;
  PrintJob job(till.port, named.recorded({.progress = [&](const PrintProgress& progress) {
    if (progress.stage == PrintStage::Begin) {
      EXPECT_TRUE(Journal(file).jobs().empty());
    } else if (seen.empty()) {
      EXPECT_EQ(progress.bytesAccepted, 0U);
      seen.push_back(onlyJob().reason);
    }
  }}));
  named.run(job);
  EXPECT_EQ(seen, std::vector<std::string>{"the job is being printed"});
}

TEST_P(NamedJobTest, AJobIsUnconfirmedIfAnotherProcessStillPrintsTheJobAtTheTimeout) {
  Journal journal(file);
  const NamedJob held(journal, request("receipt 1"), receiptText);
  int waits = 0;
  auto asked = request("receipt 1");
  asked.timeout = std::chrono::milliseconds(20);
  asked.onWait = [&] { ++waits; };
  Journal other(file);
  const NamedJob second(other, asked, receiptText);
  ASSERT_TRUE(second.answer());
  EXPECT_EQ(second.answer()->result.outcome, PrintOutcome::Unconfirmed);
  EXPECT_THAT(second.answer()->result.reason, HasSubstr("another process is printing this job"));
  EXPECT_EQ(waits, 1);
  EXPECT_FALSE(NamedJob(other, request("receipt 2"), receiptText).answer());
}

TEST_P(NamedJobTest, AJobThatAnotherProcessPrintedMeanwhileIsNotPrintedAgain) {
  Journal journal(file);
  auto held = std::make_unique<NamedJob>(journal, request("receipt 1"), receiptText);
  auto asked = request("receipt 1");
  asked.timeout = std::chrono::minutes(1);
  asked.onWait = [&] {
    PrintJob job(till.port, held->recorded());
    held->run(job);
    held.reset();
  };
  Journal other(file);
  const NamedJob second(other, asked, receiptText);
  ASSERT_TRUE(second.answer());
  EXPECT_TRUE(second.answer()->isRepeated);
  EXPECT_EQ(till.printed(), receiptText);
}

TEST_P(NamedJobTest, AJobIsRecordedAsRefusedIfThePrinterCannotBeReached) {
  Journal journal(file);
  PrintResult unreachable;
  unreachable.reason = "cannot be reached";
  const auto result = NamedJob(journal, request("receipt 1"), receiptText).refuse(unreachable);
  EXPECT_EQ(result.attempt, 1);
  EXPECT_EQ(onlyJob().state, JobState::Refused);
  EXPECT_EQ(onlyJob().reason, "cannot be reached");
  EXPECT_EQ(print(till, "receipt 1").result.outcome, PrintOutcome::Printed);
}

TEST_P(NamedJobTest, ALaterAnswerContainsTheTimeAtWhichAPersonWasInformed) {
  dieInTheMiddle("receipt 1");
  Journal journal(file);
  const std::int64_t begun = onlyJob().begun;
  {
    NamedJob named(journal, request("receipt 1"), receiptText);
    ASSERT_TRUE(named.answer());
    EXPECT_EQ(named.answer()->begun, begun);
    EXPECT_FALSE(named.answer()->told);
    named.tell();
  }
  const auto before = onlyJob();
  NamedJob named(journal, request("receipt 1"), receiptText);
  ASSERT_TRUE(named.answer() && named.answer()->told);
  EXPECT_GE(*named.answer()->told, begun);
  EXPECT_EQ(named.answer()->result.outcome, PrintOutcome::Unconfirmed);
  EXPECT_EQ(before.state, JobState::Unconfirmed) << "and nothing else has changed";
  EXPECT_FALSE(before.ended);
}

TEST_P(NamedJobTest, NobodyWasInformedYetOfALaterAttempt) {
  dieInTheMiddle("receipt 1");
  {
    Journal journal(file);
    NamedJob(journal, request("receipt 1"), receiptText).tell();
  }
  EXPECT_EQ(print(till, "receipt 1", true).result.outcome, PrintOutcome::Printed);
  Journal journal(file);
  EXPECT_FALSE(NamedJob(journal, request("receipt 1"), receiptText).answer()->told);
}

TEST_P(NamedJobTest, AJobIsRecordedAsPrintedEvenIfAPersonWasInformedDuringPrinting) {
  Journal journal(file);
  NamedJob printing(journal, request("receipt 1"), receiptText);
  PrintJob job(till.port, printing.recorded({.progress = [this](const PrintProgress& progress) {
    if (progress.stage == PrintStage::End) {
      Journal other(file);
      NamedJob(other, request("receipt 1"), receiptText).tell();
    }
  }}));
  EXPECT_EQ(printing.run(job).notRecorded, "");
  EXPECT_EQ(onlyJob().state, JobState::Printed);
}

TEST_P(NamedJobTest, MarkingAnUnknownJobAsReportedChangesNothing) {
  Journal journal(file);
  NamedJob(journal, request("receipt 1"), receiptText).tell();
  EXPECT_TRUE(journal.jobs().empty());
}

TEST_P(NamedJobTest, AJobCanBeIdentifiedByItsNameWithoutItsData) {
  print(till, "receipt 1");
  Journal journal(file);
  auto asked = request("receipt 1");
  asked.isNameEnough = true;
  const ByteBuffer other = {'a'};
  const NamedJob named(journal, asked, other);
  ASSERT_TRUE(named.answer());
  EXPECT_TRUE(named.answer()->isRepeated);
}

TEST_P(NamedJobTest, TheOrderOfAttemptsDoesNotDependOnTheClock) {
  { const Journal made(file); }
  {
    Database database(file);
    constexpr std::int64_t aDay = std::int64_t{24} * 60 * 60 * 1000;
    insertRow(database, {.name = "receipt 1",
                         .number = 1,
                         .data = fingerprintOf(receiptText),
                         .begun = millisecondsNow() + aDay});
  }
  till.set("coverOpen", true);
  EXPECT_EQ(print(till, "receipt 1", true).attempt, 2);
  till.set("coverOpen", false);
  EXPECT_EQ(print(till, "receipt 1").attempt, 1) << "of which bytes may be on paper";
  EXPECT_EQ(print(till, "receipt 1", true).attempt, 3);
  EXPECT_EQ(onlyJob().attempts, 3);
  EXPECT_EQ(onlyJob().state, JobState::Printed);
}

INSTANTIATE_TEST_SUITE_P(Emulations, NamedJobTest,
                         testing::Values(ZKEmulationQuorLine, ZKEmulationESCPOS), emulationName);

using JobName = JournalCase;

TEST_F(JobName, AnInvalidNameIsAUsageErrorAndSendsNothing) {
  Till till(ZKEmulationQuorLine);
  for (const std::string& name :
       {std::string(), std::string(256, 'n'), std::string("a\nb"), std::string("\x7f"),
        std::string("\xc2\x80"), std::string("a\0b", 3), std::string("\xff"),
        std::string("\xed\xa0\x80")}) {
    EXPECT_THAT(errorOf<std::invalid_argument>([&] { print(till, name); }),
                HasSubstr("1 to 255 bytes of UTF-8"));
  }
  EXPECT_EQ(till.printed(), ByteBuffer());
}

TEST_F(JobName, MayHaveUpTo255BytesOfTextInAnyLanguage) {
  Till till(ZKEmulationQuorLine);
  for (const std::string& name : {std::string("1"), std::string(255, 'n'),
                                  std::string("Größe 日本 🧾"), std::string("' OR 1")}) {
    EXPECT_EQ(print(till, name).result.outcome, PrintOutcome::Printed) << name;
    EXPECT_TRUE(print(till, name).isRepeated) << name;
  }
  EXPECT_EQ(Journal(file).jobs().size(), 4U);
}

}  // namespace
}  // namespace quordalvane
