// Printers that are switched off and on while a job runs, or that still hold an earlier job.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <utility>

#include "tests/unit/job/Till.h"

namespace quordalvane {
namespace {

using simulator::PrinterBuilder;

class PrinterRestart : public testing::TestWithParam<ZKEmulation> {};

INSTANTIATE_TEST_SUITE_P(Job, PrinterRestart,
                         testing::Values(ZKEmulationQuorLine, ZKEmulationESCPOS), emulationName);

// The link remains open, but the printer's data is lost, and its count begins at 0 again.
void switchOffAndOn(Till& till) {
  till.accessory->withPrinter([](simulator::VirtualPrinter& printer, auto now) {
    printer.receive(ByteBuffer{0x1b, 0x1d, 0x03, 0x03, 0x00, 0x00, 0x1b, 0x1d, 0x03, 0x04, 0x00,
                               0x00, 0x1b, 0x1e, 0x45, 0x00, 0x1b, 0x1d, 0x03, 0x02, 0x00, 0x00},
                    now);
  });
}

TEST_P(PrinterRestart, LeavesTheJobUnconfirmedIfItHappensDuringTheData) {
  Till till(PrinterBuilder().speed(500).buffer(1000), {.emulation = GetParam()});
  bool isDone = false;
  PrintJob job(till.port,
               {.proof = ProofKind::Block, .progress = [&](const PrintProgress& progress) {
                  if (progress.bytesAccepted > 1200 && !std::exchange(isDone, true)) {
                    switchOffAndOn(till);
                  }
                }});
  const PrintResult result = job.run(ByteBuffer(3000, 'x'));
  ASSERT_TRUE(isDone);
  EXPECT_LT(till.printed().size(), 3000U);
  EXPECT_EQ(result.outcome, PrintOutcome::Unconfirmed);
}

TEST_P(PrinterRestart, LeavesTheJobUnconfirmedIfItHappensAfterTheData) {
  Till till(PrinterBuilder().speed(10), {.emulation = GetParam()});
  PrintJob job(till.port,
               {.proof = ProofKind::Block, .progress = [&](const PrintProgress& progress) {
                  if (progress.stage == PrintStage::End) {
                    switchOffAndOn(till);
                  }
                }});
  const PrintResult result = job.run(receiptText);
  EXPECT_LT(till.printed().size(), receiptText.size());
  EXPECT_EQ(result.outcome, PrintOutcome::Unconfirmed);
}

TEST_P(PrinterRestart, ARefusedJobDoesNotDropAnEarlierJobInThePrinter) {
  Till till(PrinterBuilder().speed(100), {.emulation = GetParam()});
  till.after(std::chrono::milliseconds(1500), "coverOpen", true);
  const ByteBuffer first(450, 'a');
  EXPECT_EQ(till.print(first).outcome, PrintOutcome::Unconfirmed);
  EXPECT_EQ(till.print(receiptText).outcome, PrintOutcome::Refused);
  till.set("coverOpen", false);
  till.platform->clock().usleep(30000000);
  EXPECT_EQ(till.printed(), first) << "the refused job has dropped the one before it";
}

}  // namespace
}  // namespace quordalvane
