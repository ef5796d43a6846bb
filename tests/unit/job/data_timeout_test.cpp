// Jobs with a data time-out. If no byte of a job arrives for so long, the printer drops the data
// that it holds. It also drops all later bytes, until it receives the command "data-cancel end".

#include <gtest/gtest.h>

#include <algorithm>
#include <utility>

#include "tests/unit/job/Till.h"

namespace quordalvane {
namespace {

using simulator::PrinterBuilder;
using std::chrono::milliseconds;

class DataTimeout : public testing::TestWithParam<ZKEmulation> {
 protected:
  static Till tillWithTimeout(PrinterBuilder printer) {
    return {std::move(printer), {.emulation = GetParam(), .portSettings = "d1"}};
  }

  /// Whether the printer prints data after a pause that is longer than the time-out.
  static bool printsLaterOn(Till& till) {
    till.platform->clock().usleep(5000000);
    if (!till.port->isConnected()) {
      EXPECT_TRUE(till.port->open());
    }
    till.port->write(receiptText);
    till.platform->clock().usleep(5000000);
    const ByteBuffer paper = till.printed();
    return paper.size() >= receiptText.size() &&
           std::equal(receiptText.rbegin(), receiptText.rend(), paper.rbegin());
  }
};

INSTANTIATE_TEST_SUITE_P(Job, DataTimeout, testing::Values(ZKEmulationQuorLine, ZKEmulationESCPOS),
                         emulationName);

TEST_P(DataTimeout, LeavesAJobUnconfirmedIfThePrinterDroppedTheRestOfTheJob) {
  ByteBuffer data(100000, 'x');
  Till till = tillWithTimeout(PrinterBuilder().speed(50000));
  till.port->setEndCheckedBlockTimeoutMillis(3000);
  bool paused = false;
  PrintJob job(till.port, {.progress = [&](const PrintProgress& progress) {
                 if (progress.stage == PrintStage::Data && !std::exchange(paused, true)) {
                   till.platform->clock().usleep(2500000);
                 }
               }});
  const PrintResult result = job.run(data);
  EXPECT_EQ(result.outcome, PrintOutcome::Unconfirmed);
  EXPECT_EQ(result.bytesAccepted, data.size());
  EXPECT_LT(till.printed().size(), data.size());
}

TEST_P(DataTimeout, DoesNotDropLaterJobsAfterACancelledJob) {
  Till till = tillWithTimeout(PrinterBuilder().speed(1000));
  PrintJob job(till.port);
  till.at(milliseconds(1000), [&job] { job.cancel(); });
  EXPECT_EQ(job.run(ByteBuffer(5000, 'x')).obstacle, PrintObstacle::Cancelled);
  EXPECT_TRUE(printsLaterOn(till));
}

TEST_P(DataTimeout, DoesNotDropLaterJobsAfterACancelEvenIfAnEarlierJobHasSetIt) {
  Till till = tillWithTimeout(PrinterBuilder().speed(1000));
  EXPECT_EQ(till.print(receiptText).outcome, PrintOutcome::Printed);
  till.port->setDataTimeoutSeconds(-1);
  PrintJob job(till.port);
  till.at(milliseconds(1000), [&job] { job.cancel(); });
  EXPECT_EQ(job.run(ByteBuffer(5000, 'x')).obstacle, PrintObstacle::Cancelled);
  EXPECT_TRUE(printsLaterOn(till));
}

TEST_P(DataTimeout, DoesNotDropLaterJobsAfterARefusedJob) {
  Till till = tillWithTimeout(PrinterBuilder().coverOpen());
  EXPECT_EQ(till.print(receiptText).outcome, PrintOutcome::Refused);
  till.set("coverOpen", false);
  EXPECT_TRUE(printsLaterOn(till));
}

}  // namespace
}  // namespace quordalvane
