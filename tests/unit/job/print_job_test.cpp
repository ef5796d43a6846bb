#include "job/PrintJob.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/unit/job/Till.h"

namespace quordalvane {
namespace {

using simulator::PrinterBuilder;
using std::chrono::milliseconds;

class InBothEmulations : public testing::TestWithParam<ZKEmulation> {};

INSTANTIATE_TEST_SUITE_P(Job, InBothEmulations,
                         testing::Values(ZKEmulationQuorLine, ZKEmulationESCPOS), emulationName);

TEST_P(InBothEmulations, AJobOnPaperIsReportedAsPrinted) {
  Till till(GetParam());
  const PrintResult result = till.print(receiptText);
  EXPECT_EQ(result.outcome, PrintOutcome::Printed) << result.reason;
  EXPECT_EQ(result.resultCode, ZKQuorIOResultCodeSuccess);
  EXPECT_EQ(result.bytesTotal, receiptText.size());
  EXPECT_EQ(result.bytesAccepted, receiptText.size());
  EXPECT_EQ(result.reason, "");
  EXPECT_EQ(result.advice, "");
  ASSERT_TRUE(result.status);
  EXPECT_EQ(till.printed(), receiptText);
}

TEST_P(InBothEmulations, AJobOnAnIdlePrinterSendsItsDataWithin100Milliseconds) {
  Till till(GetParam());
  Clock& clock = till.platform->clock();
  const auto start = clock.monotonic();
  std::chrono::nanoseconds firstByte{};
  const auto look = [&](const PrintProgress& progress) {
    if (progress.stage == PrintStage::Data && progress.bytesAccepted == 0) {
      firstByte = clock.monotonic() - start;
    }
  };
  EXPECT_EQ(PrintJob(till.port, {.progress = look}).run(receiptText).outcome,
            PrintOutcome::Printed);
  EXPECT_LT(firstByte, milliseconds(100)) << "not even one slice";
}

TEST_P(InBothEmulations, AJobIsConfirmedByTheCheckedBlockByDefault) {
  Till till(GetParam());
  EXPECT_EQ(PrintJob(till.port).run(receiptText).proof, ProofKind::Block);
}

TEST_P(InBothEmulations, AnEmptyJobIsRefused) {
  Till till(GetParam());
  const PrintResult result = till.print({});
  EXPECT_EQ(result.outcome, PrintOutcome::Refused);
  EXPECT_EQ(result.reason, "there is nothing to print");
  EXPECT_EQ(till.printed(), ByteBuffer());
}

TEST_P(InBothEmulations, ConsecutiveJobsAreEachPrintedOnce) {
  Till till(GetParam());
  ByteBuffer expected;
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(till.print(receiptText).outcome, PrintOutcome::Printed);
    expected.insert(expected.end(), receiptText.begin(), receiptText.end());
  }
  EXPECT_EQ(till.printed(), expected);
}

TEST_P(InBothEmulations, ALongJobOnASlowPrinterWithASmallBufferIsPrintedOnceAndWhole) {
  ByteBuffer data;
  for (int i = 0; data.size() < 200000; ++i) {
    const ByteBuffer line = bytesOf("line " + std::to_string(i) + "\n");
    data.insert(data.end(), line.begin(), line.end());
  }
  Till till(PrinterBuilder().speed(20000).buffer(4096), {.emulation = GetParam()});
  const PrintResult result = till.print(data);
  EXPECT_EQ(result.outcome, PrintOutcome::Printed) << result.reason;
  EXPECT_EQ(till.printed(), data);
}

TEST_P(InBothEmulations, AJobIsRefusedWithoutSendingAByteIfTheCoverIsOpen) {
  Till till(PrinterBuilder().coverOpen(), {.emulation = GetParam()});
  const PrintResult result = till.print(receiptText);
  EXPECT_EQ(result.outcome, PrintOutcome::Refused);
  EXPECT_EQ(result.obstacle, PrintObstacle::PrinterNotReady);
  EXPECT_EQ(result.reason, "cover open");
  EXPECT_EQ(result.bytesAccepted, 0U);
  EXPECT_EQ(result.advice, "nothing of the job was sent; sending it again is safe");
  till.set("coverOpen", false);
  till.platform->clock().usleep(10000000);
  EXPECT_EQ(till.printed(), ByteBuffer());
}

TEST_P(InBothEmulations, AJobThatRunsOutOfPaperIsUnconfirmedAndReportsByteCountAndCause) {
  Till till(PrinterBuilder().speed(10), {.emulation = GetParam()});
  till.after(milliseconds(2000), "receiptPaperEmpty", true);
  const PrintResult result = till.print(receiptText);
  EXPECT_EQ(result.outcome, PrintOutcome::Unconfirmed);
  EXPECT_EQ(result.obstacle, PrintObstacle::PrinterNotReady);
  EXPECT_EQ(result.reason, "paper out after all 45 bytes");
  EXPECT_EQ(result.bytesAccepted, receiptText.size());
  ASSERT_TRUE(result.status);
  EXPECT_EQ(result.status->receiptPaperEmpty, 1U);
  EXPECT_LT(till.printed().size(), receiptText.size());
}

TEST_P(InBothEmulations, AJobThatPrintsLongerThanTheEndTimeoutIsUnconfirmed) {
  Till till(PrinterBuilder().speed(1), {.emulation = GetParam()});
  till.port->setEndCheckedBlockTimeoutMillis(3000);
  Clock& clock = till.platform->clock();
  std::chrono::nanoseconds end{};
  const auto look = [&](const PrintProgress& progress) {
    if (progress.stage == PrintStage::End) {
      end = clock.monotonic();
    }
  };
  const PrintResult result =
      PrintJob(till.port, {.proof = ProofKind::Block, .progress = look}).run(receiptText);
  EXPECT_EQ(result.outcome, PrintOutcome::Unconfirmed);
  EXPECT_EQ(result.reason, "no confirmation within 3 s after all 45 bytes");
  EXPECT_GT(clock.monotonic() - end, milliseconds(3000));
  EXPECT_LT(clock.monotonic() - end, milliseconds(5000)) << "limits count in whole seconds";
}

TEST_P(InBothEmulations, AnUnconfirmedJobReportsOnlyAStatusThatFollowsTheData) {
  Till till(PrinterBuilder().speed(10), {.emulation = GetParam()});
  till.port->close();
  till.accessory->setFaults(with("at", "2000:drop-reply=all"));
  ASSERT_TRUE(till.port->open());
  const PrintResult result = till.print(receiptText);
  EXPECT_EQ(result.outcome, PrintOutcome::Unconfirmed);
  EXPECT_EQ(result.reason, "no confirmation within 10 s after all 45 bytes");
  // In line mode the printer was asked, and answered, between the data and the fault.
  EXPECT_EQ(result.status.has_value(), GetParam() == ZKEmulationQuorLine);
}

TEST_P(InBothEmulations, AnEndMarkInTheDataDoesNotConfirmTheJob) {
  ByteBuffer data = receiptText;
  data.insert(data.begin() + 5, {0x17, 0x17, 0x1b, 0x1d, 0x03, 0x01, 0x00, 0x00});
  Till till(PrinterBuilder().speed(10), {.emulation = GetParam()});
  // A mechanical error stops the printer for good. At that time it has processed the end marks in
  // the data, but not the whole data.
  till.after(milliseconds(2500), "mechError", true);
  const PrintResult result = till.print(data);
  EXPECT_EQ(result.outcome, PrintOutcome::Unconfirmed);
  EXPECT_EQ(result.bytesAccepted, data.size());
}

TEST_P(InBothEmulations, AJobWithAnEndMarkInItsDataReportsWhyItCannotBeConfirmed) {
  ByteBuffer data = receiptText;
  data.push_back(0x17);
  Till till(GetParam());
  till.port->setEndCheckedBlockTimeoutMillis(0);
  const PrintResult result = till.print(data);
  EXPECT_EQ(result.outcome, PrintOutcome::Unconfirmed);
  EXPECT_EQ(result.obstacle, PrintObstacle::NoProof);
  EXPECT_EQ(result.reason.find("cannot be confirmed: "), 0U) << result.reason;
}

// The end marks of an earlier job are still in the printer, and answers are so late that the answer
// to an earlier question could be taken for the answer to the newest question.
TEST_P(InBothEmulations, AJobIsNotConfirmedByLateAnswersToEarlierJobs) {
  const ByteBuffer data(520, 'n');
  for (const char* const delay : {"400", "1600", "2000", "4000"}) {
    for (std::size_t size = 40; size <= 90; size += 5) {
      Till till(PrinterBuilder().speed(20), {.emulation = GetParam()});
      ByteBuffer earlier(size, 'e');
      earlier.insert(earlier.end(), {0x17, 0x17, 0x1b, 0x1d, 0x03, 0x01, 0x00, 0x00});
      till.port->write(earlier);
      till.port->close();
      till.accessory->setFaults(with("late-reply", delay));
      ASSERT_TRUE(till.port->open());
      till.port->setEndCheckedBlockTimeoutMillis(60000);
      const PrintResult result = till.print(data);
      const ByteBuffer paper = till.printed();
      const auto printed = std::count(paper.begin(), paper.end(), 'n');
      EXPECT_TRUE(result.outcome != PrintOutcome::Printed || printed == 520)
          << delay << " " << size << " " << printed;
      EXPECT_TRUE(result.outcome != PrintOutcome::Refused || printed == 0) << delay << " " << size;
    }
  }
}

TEST_P(InBothEmulations, AJobIsConfirmedEvenIfAnswersAreTwoSecondsLate) {
  Till till(GetParam());
  till.port->close();
  till.accessory->setFaults(with("late-reply", "2000"));
  ASSERT_TRUE(till.port->open());
  till.port->setEndCheckedBlockTimeoutMillis(60000);
  const PrintResult result = till.print(receiptText);
  EXPECT_EQ(result.outcome, PrintOutcome::Printed) << result.reason;
}

TEST_P(InBothEmulations, AnEndMarkInAnImageDoesNotPreventConfirmation) {
  ByteBuffer data = {0x1d, 0x76, 0x30, 0, 2, 0, 2, 0, 0x17, 0x17, 0x10, 0x04, 0x0a};
  Till till(GetParam());
  const PrintResult result = till.print(data);
  EXPECT_EQ(result.outcome, PrintOutcome::Printed) << result.reason;
  EXPECT_EQ(till.printed(), data);
}

TEST_P(InBothEmulations, ALinkLostDuringAJobIsReportedWithTheExactByteCount) {
  const ByteBuffer data(3000, 'x');
  Till till(PrinterBuilder().speed(500).buffer(1000), {.emulation = GetParam()});
  till.port->close();
  till.accessory->setFaults(with("at", "2000:cut=drain"));
  ASSERT_TRUE(till.port->open());
  const PrintResult result = till.print(data);
  EXPECT_EQ(result.outcome, PrintOutcome::Unconfirmed);
  EXPECT_EQ(result.obstacle, PrintObstacle::LinkLost);
  EXPECT_GT(result.bytesAccepted, 1000U);
  EXPECT_LT(result.bytesAccepted, 3000U);
  till.platform->clock().usleep(10000000);
  EXPECT_EQ(result.bytesAccepted, till.printed().size());
  EXPECT_THAT(result.reason, testing::StartsWith("link lost after 1,"));
}

TEST_P(InBothEmulations, ALostLinkIsReportedEvenIfAnswersAreUnread) {
  for (const char* const kind : {"cut-after-in", "cut-after-out"}) {
    for (int bytes = 1; bytes < 250; ++bytes) {
      Till till(GetParam());
      till.port->close();
      till.accessory->setFaults(with(kind, std::to_string(bytes).c_str()));
      ASSERT_TRUE(till.port->open());
      const PrintResult result = till.print(receiptText);
      if (result.outcome != PrintOutcome::Printed) {
        EXPECT_EQ(result.obstacle, PrintObstacle::LinkLost) << kind << bytes << result.reason;
        EXPECT_FALSE(till.port->isConnected()) << kind << bytes;
      }
    }
  }
}

TEST_P(InBothEmulations, AJobReportsAtOnceThatTheLinkWasLostAfterAllData) {
  for (int millis = 2000; millis < 2400; millis += 10) {
    Till till(PrinterBuilder().speed(10), {.emulation = GetParam()});
    simulator::Faults faults = with("late-reply", "100");
    faults.add("at", std::to_string(millis) + ":cut=at-once");
    till.reopenWith(faults);
    const auto start = till.platform->clock().monotonic();
    const PrintResult result = till.print(receiptText);
    EXPECT_EQ(result.outcome, PrintOutcome::Unconfirmed);
    EXPECT_EQ(result.reason, "link lost after all 45 bytes");
    EXPECT_LT(till.platform->clock().monotonic() - start, milliseconds(millis + 500));
  }
}

TEST_P(InBothEmulations, AJobOnAClosedPortIsRefused) {
  Till till(GetParam());
  till.port->close();
  const PrintResult result = till.print(receiptText);
  EXPECT_EQ(result.outcome, PrintOutcome::Refused);
  EXPECT_EQ(result.obstacle, PrintObstacle::LinkLost);
}

TEST_P(InBothEmulations, AJobFailsAtTheTimeoutIfThePrinterAcceptsNoMoreData) {
  Till till(PrinterBuilder().buffer(1000).speed(100),
            {.emulation = GetParam(), .timeoutMillis = 5000});
  till.after(milliseconds(1500), "coverOpen", true);
  const auto start = till.platform->clock().monotonic();
  const PrintResult result = till.print(ByteBuffer(9000, 'x'));
  EXPECT_EQ(result.outcome, PrintOutcome::Unconfirmed);
  EXPECT_EQ(result.obstacle, PrintObstacle::ExchangeFailed);
  EXPECT_THAT(result.reason, testing::StartsWith("the printer took no data for 5 s after 1,"));
  EXPECT_FALSE(result.status) << "it was on line when it was asked last, and is not";
  EXPECT_LT(till.platform->clock().monotonic() - start, std::chrono::seconds(8));
}

TEST_P(InBothEmulations, AJobWithoutAProofIsNeverReportedAsPrinted) {
  Till till(GetParam());
  PrintJob job(till.port, {.proof = ProofKind::None});
  const PrintResult result = job.run(receiptText);
  EXPECT_EQ(result.outcome, PrintOutcome::Unconfirmed);
  EXPECT_EQ(result.obstacle, PrintObstacle::NoProof);
  EXPECT_EQ(result.bytesAccepted, receiptText.size());
  EXPECT_EQ(till.printed(), receiptText);
}

TEST_P(InBothEmulations, ProgressReportsEachStageOfAJob) {
  Till till(GetParam());
  std::vector<std::pair<PrintStage, std::uint64_t>> seen;
  PrintJob job(till.port, {.progress = [&seen](const PrintProgress& progress) {
                 seen.emplace_back(progress.stage, progress.bytesAccepted);
               }});
  job.run(receiptText);
  EXPECT_THAT(seen, testing::ElementsAre(testing::Pair(PrintStage::Begin, 0U),
                                         testing::Pair(PrintStage::Data, 0U),
                                         testing::Pair(PrintStage::Data, receiptText.size()),
                                         testing::Pair(PrintStage::End, receiptText.size())));
}

TEST_P(InBothEmulations, ProgressCountsFromZeroToAllBytesOfTheJob) {
  Till till(PrinterBuilder().speed(20000).buffer(1000), {.emulation = GetParam()});
  std::vector<std::uint64_t> seen;
  PrintJob job(till.port, {.progress = [&seen](const PrintProgress& progress) {
                 EXPECT_EQ(progress.bytesTotal, 5000U);
                 seen.push_back(progress.bytesAccepted);
               }});
  job.run(ByteBuffer(5000, 'x'));
  ASSERT_GT(seen.size(), 2U);
  EXPECT_EQ(seen.front(), 0U);
  EXPECT_TRUE(std::is_sorted(seen.begin(), seen.end()));
  EXPECT_EQ(seen.back(), 5000U);
}

TEST(EscPosJob, IsUnconfirmedWithoutItsReportEvenIfThePrinterIsOnLineAgain) {
  Till till(PrinterBuilder().speed(10), {.emulation = ZKEmulationESCPOS});
  till.after(milliseconds(2000), "coverOpen", true);
  till.after(milliseconds(2250), "coverOpen", false);
  const PrintResult result = till.print(receiptText);
  EXPECT_EQ(result.outcome, PrintOutcome::Unconfirmed);
  EXPECT_LT(till.printed().size(), receiptText.size());
}

TEST(EscPosJob, ReportsThatThePrinterAlsoCountedTheEndOfAnotherJob) {
  Till till(ZKEmulationESCPOS);
  PrintJob job(till.port, {.progress = [&till](const PrintProgress& progress) {
                 if (progress.stage == PrintStage::Data && progress.bytesAccepted == 0) {
                   till.accessory->withPrinter([](simulator::VirtualPrinter& printer, auto now) {
                     printer.receive(ByteBuffer{0x1b, 0x1d, 0x03, 0x01, 0x00, 0x00}, now);
                   });
                   till.platform->clock().usleep(500000);
                 }
               }});
  const PrintResult result = job.run(receiptText);
  EXPECT_EQ(result.outcome, PrintOutcome::Unconfirmed);
  EXPECT_EQ(result.reason,
            "the printer reported the ends of 2 jobs instead of only this job after all 45 bytes");
}

TEST(EscPosJob, ReportsThatItsLastStatusIsInvalid) {
  Till till(ZKEmulationESCPOS);
  till.port->close();
  till.accessory->setFaults(with("stray-byte", "00"));
  ASSERT_TRUE(till.port->open());
  const PrintResult result = till.print(receiptText);
  EXPECT_EQ(result.outcome, PrintOutcome::Unconfirmed);
  EXPECT_EQ(result.reason, "the printer's last status could not be read after all 45 bytes");
}

TEST(EscPosJob, IsNotConfirmedByTheLateReportOfAnEarlierJob) {
  Till till(PrinterBuilder().speed(10), {.emulation = ZKEmulationESCPOS});
  till.port->setEndCheckedBlockTimeoutMillis(1000);
  EXPECT_EQ(till.print(receiptText).outcome, PrintOutcome::Unconfirmed);
  till.platform->clock().usleep(
      10000000);  // the printer still prints the earlier job and has not reported it
  const PrintResult result = till.print(receiptText);
  EXPECT_EQ(result.outcome, PrintOutcome::Unconfirmed) << "printed in no time";
}

TEST(EscPosJob, IsConfirmedWithinSecondsByAReportInPieces) {
  Till till(ZKEmulationESCPOS);
  for (const char* const places : {"1", "2", "6", "7", "1/2/3/4/5/6/7"}) {
    till.port->close();
    till.accessory->setFaults(with("split-reply", places));
    ASSERT_TRUE(till.port->open());
    const auto start = till.platform->clock().monotonic();
    const PrintResult result = till.print(receiptText);
    EXPECT_EQ(result.outcome, PrintOutcome::Printed) << "split at " << places << result.reason;
    EXPECT_EQ(result.status->offline, 0U);
    EXPECT_LT(till.platform->clock().monotonic() - start, std::chrono::seconds(5)) << places;
  }
}

TEST(EscPosJob, IsConfirmedEvenIfItsDataContainsAStatusRequest) {
  Till till(ZKEmulationESCPOS);
  ByteBuffer data = receiptText;
  data.insert(data.end(), {0x10, 0x04, 0x01});
  EXPECT_EQ(till.print(data).outcome, PrintOutcome::Printed);
}

TEST(LineModeJob, IsRefusedWhilePaperIsLeftInTheExit) {
  Till till(PrinterBuilder().paperInExit(), {});
  till.port->setHoldPrintTimeoutMillis(2000);
  const PrintResult result = till.print(receiptText);
  EXPECT_EQ(result.outcome, PrintOutcome::Refused);
  EXPECT_EQ(result.obstacle, PrintObstacle::PrinterNotReady);
  EXPECT_EQ(result.resultCode, ZKQuorIOResultCodePaperPresentError);
  EXPECT_EQ(result.reason, "paper was left in the printer's exit");
}

TEST(LineModeJob, ReportsThatAStatusRequestInItsDataPreventsConfirmation) {
  Till till(ZKEmulationQuorLine);
  ByteBuffer data = receiptText;
  data.insert(data.end(), {0x1b, 0x06, 0x01});
  const PrintResult result = till.print(data);
  EXPECT_EQ(result.outcome, PrintOutcome::Unconfirmed);
  EXPECT_EQ(
      result.reason,
      "cannot be confirmed: the data contains a status request (1b 06 01) at byte 45; this could "
      "itself cause the printer's confirmation after all 48 bytes");
}

TEST(JobInAnUnknownEmulation, IsSentAndNeverConfirmed) {
  Till till(PrinterBuilder(), {.emulation = ZKEmulationUnknown, .timeoutMillis = 1000});
  const PrintResult result = till.print(receiptText);
  EXPECT_EQ(result.outcome, PrintOutcome::Unconfirmed);
  EXPECT_EQ(result.reason, "no job can be confirmed without a known emulation after all 45 bytes");
  EXPECT_EQ(result.proof, ProofKind::None);
  EXPECT_EQ(till.printed(), receiptText);
}

}  // namespace
}  // namespace quordalvane
