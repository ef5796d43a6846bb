#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <utility>

#include "tests/unit/job/Till.h"

// Jobs that are cancelled before and while they run.

namespace quordalvane {
namespace {

using simulator::PrinterBuilder;
using std::chrono::milliseconds;

class JobCancellation : public testing::TestWithParam<ZKEmulation> {};

INSTANTIATE_TEST_SUITE_P(Job, JobCancellation,
                         testing::Values(ZKEmulationQuorLine, ZKEmulationESCPOS), emulationName);

TEST_P(JobCancellation, MakesThePrinterDropTheDataAndClosesThePort) {
  const ByteBuffer data(5000, 'x');
  Till till(PrinterBuilder().speed(200), {.emulation = GetParam()});
  PrintJob job(till.port);
  till.at(milliseconds(3000), [&job] { job.cancel(); });
  const auto start = till.platform->clock().monotonic();
  const PrintResult result = job.run(data);
  EXPECT_LT(till.platform->clock().monotonic() - start, milliseconds(3500));
  EXPECT_EQ(result.outcome, PrintOutcome::Unconfirmed);
  EXPECT_EQ(result.obstacle, PrintObstacle::Cancelled);
  EXPECT_THAT(result.reason,
              testing::StartsWith("cancelled, and the printer was made to drop the rest after 4,"));
  EXPECT_FALSE(till.port->isConnected());
  till.platform->clock().usleep(60000000);
  EXPECT_LT(till.printed().size(), 1000U);
}

TEST_P(JobCancellation, CompletesAnImageSoThatThePrinterReadsTheCancelCommand) {
  ByteBuffer data = {0x1d, 0x76, 0x30, 0, 10, 0, 100, 0};
  data.resize(8 + 1000, 0x55);
  data.insert(data.end(), 5000, 'x');
  Till till(PrinterBuilder().speed(1000).buffer(500), {.emulation = GetParam()});
  PrintJob job(till.port);
  till.at(milliseconds(350), [&job] { job.cancel(); });
  const PrintResult result = job.run(data);
  EXPECT_EQ(result.obstacle, PrintObstacle::Cancelled);
  till.port->open();
  EXPECT_EQ(till.print(receiptText).outcome, PrintOutcome::Printed);
}

TEST_P(JobCancellation, EndsTheJobWithinASecondDuringALongImage) {
  ByteBuffer data = {0x1d, 0x76, 0x30, 0, 72, 0, 0xe8, 0x03};
  data.resize(8 + 72000, 0x55);
  Till till(PrinterBuilder().speed(2000), {.emulation = GetParam()});
  PrintJob job(till.port);
  till.at(milliseconds(3000), [&job] { job.cancel(); });
  const auto start = till.platform->clock().monotonic();
  const PrintResult result = job.run(data);
  EXPECT_LT(till.platform->clock().monotonic() - start, milliseconds(4000));
  EXPECT_EQ(result.obstacle, PrintObstacle::Cancelled);
  EXPECT_THAT(result.reason, testing::StartsWith("cancelled while the printer waits"));
  EXPECT_FALSE(till.port->isConnected());
}

// If the link first takes only a part of a command, the port may repeat its write without a pause
// and without end.
TEST_P(JobCancellation, EndsAJobWhileThePortWritesWithoutEnd) {
  Till till(GetParam());
  till.port->close();
  till.accessory->setFaults(with("no-space", "2:3000"));
  ASSERT_TRUE(till.port->open());
  PrintJob job(till.port);
  till.at(milliseconds(2990), [&job] { job.cancel(); });
  EXPECT_EQ(job.run(receiptText).outcome, PrintOutcome::Refused);
}

TEST_P(JobCancellation, EndsAJobWithinASecondWhileThePortRepeatsAWrite) {
  Till till(GetParam());
  till.port->close();
  simulator::Faults full = with("no-space", "4:120");
  full.add("no-space", "6:600000");
  till.accessory->setFaults(full);
  ASSERT_TRUE(till.port->open());
  PrintJob job(till.port);
  till.at(milliseconds(3000), [&job] { job.cancel(); });
  const auto start = till.platform->clock().monotonic();
  EXPECT_EQ(job.run(receiptText).outcome, PrintOutcome::Refused);
  EXPECT_LT(till.platform->clock().monotonic() - start, milliseconds(4000));
}

TEST_P(JobCancellation, CanBeRequestedSeveralTimes) {
  Till till(PrinterBuilder().speed(100), {.emulation = GetParam()});
  till.port->close();
  till.accessory->setFaults(with("no-space", "300:60000"));
  ASSERT_TRUE(till.port->open());
  PrintJob job(till.port, {.proof = ProofKind::None});
  for (const int at : {1000, 1050, 1100, 1150, 1200}) {
    till.at(milliseconds(at), [&job] { job.cancel(); });
  }
  EXPECT_EQ(job.run(ByteBuffer(5000, 'x')).obstacle, PrintObstacle::Cancelled);
  EXPECT_FALSE(till.port->isConnected());
}

TEST_P(JobCancellation, SendsNothingIfTheJobHasNotBegun) {
  Till till(GetParam());
  PrintJob job(till.port);
  job.cancel();
  const PrintResult result = job.run(receiptText);
  EXPECT_EQ(result.outcome, PrintOutcome::Refused);
  EXPECT_EQ(result.obstacle, PrintObstacle::Cancelled);
  EXPECT_EQ(till.printed(), ByteBuffer());
}

TEST_P(JobCancellation, SendsNoCommandsIfTheLinkHasNoSpace) {
  for (const char* const noSpace : {"0:60000", "300:60000"}) {
    Till till(GetParam());
    till.port->close();
    till.accessory->setFaults(with("no-space", noSpace));
    ASSERT_TRUE(till.port->open());
    PrintJob job(till.port, {.proof = ProofKind::None});
    till.at(milliseconds(1000), [&job] { job.cancel(); });
    const auto start = till.platform->clock().monotonic();
    ByteBuffer image = {0x1d, 0x76, 0x30, 0, 100, 0, 100, 0};
    image.resize(image.size() + 10000, 0x55);
    EXPECT_THAT(job.run(image).reason, testing::Not(testing::HasSubstr("was told"))) << noSpace;
    EXPECT_LT(till.platform->clock().monotonic() - start, milliseconds(2500)) << noSpace;
    EXPECT_FALSE(till.port->isConnected());
  }
}

TEST_P(JobCancellation, IsTheOnlyReportedReasonIfThePortIsClosed) {
  Till till(GetParam());
  till.port->close();
  PrintJob job(till.port);
  job.cancel();
  const PrintResult result = job.run(receiptText);
  EXPECT_EQ(result.outcome, PrintOutcome::Refused);
  EXPECT_EQ(result.reason, "cancelled");
}

}  // namespace
}  // namespace quordalvane
