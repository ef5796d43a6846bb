// Line-mode jobs: the last answers that a printer must send before a job is reported as printed.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "job/PrintJob.h"
#include "job/StatusText.h"
#include "tests/support/ScriptedWorld.h"

namespace quordalvane {
namespace {

using test::bytes;
using test::Script;

const test::Bytes statusRequest = bytes("1b 06 01");

test::Bytes statusOf(std::uint8_t count, int flag = -1) {
  test::Bytes block = bytes("89 01 00 00 00 00 00 00 05");
  block[6] = count;
  if (flag >= 0) {
    std::uint8_t& byte = block[2 + static_cast<std::size_t>(flag) / 8];
    byte = static_cast<std::uint8_t>(byte | 1U << static_cast<unsigned>(flag) % 8);
  }
  return block;
}

/// Prints a job on a printer that is ready. Before the data, the job sends a mark, and the
/// printer's status shows that it has counted this mark. After the data, the printer sends the
/// answers in `last`, one after the other, and repeats the last one.
PrintResult printOn(const std::vector<test::Bytes>& last) {
  Script script;
  for (const int count : {0, 0, 0, 1}) {
    script.whenAsked(statusRequest, {{statusOf(static_cast<std::uint8_t>(count)), 0.0}});
  }
  for (const test::Bytes& block : last) {
    script.whenAsked(statusRequest, {{block, 0.0}});
  }
  script.wheneverAsked(statusRequest, {{last.back(), 0.0}});
  test::ScriptedWorld world(script);
  const auto port = ExternalAccessoryPort::initWithPortName("BT:", "", 2000, ZKEmulationQuorLine,
                                                            world.platform());
  EXPECT_TRUE(port->open());
  world.start();
  return PrintJob(port).run("receipt\n");
}

TEST(LastStatus, ConfirmsTheJobIfThePrinterCountedBothEndMarks) {
  EXPECT_EQ(printOn({statusOf(1), statusOf(2)}).outcome, PrintOutcome::Printed);
}

TEST(LastStatus, LeavesTheJobUnconfirmedIfItReportsAnError) {
  constexpr int flags = 30;
  int errors = 0;
  for (int flag = 0; flag < flags; ++flag) {
    const PrintResult result = printOn({statusOf(2, flag)});
    ASSERT_TRUE(result.status) << flag;
    const std::string words = errorsIn(*result.status);
    const bool isError = !words.empty() || result.status->offline != 0;
    errors += isError ? 1 : 0;
    EXPECT_EQ(result.outcome, isError ? PrintOutcome::Unconfirmed : PrintOutcome::Printed) << flag;
    EXPECT_THAT(result.reason, testing::StartsWith(isError && words.empty() ? "off line" : words));
  }
  EXPECT_EQ(errors, 17) << "sixteen errors, and off line";
}

TEST(LastStatus, LeavesTheJobUnconfirmedIfTheLastTwoStatusesHaveDifferentCounts) {
  const PrintResult result = printOn({statusOf(1), statusOf(2), statusOf(1)});
  EXPECT_EQ(result.outcome, PrintOutcome::Unconfirmed);
  EXPECT_EQ(result.reason, "the printer's last two answers do not agree after all 8 bytes");
}

TEST(LastStatus, LeavesTheJobUnconfirmedIfOneEndMarkIsMissing) {
  EXPECT_EQ(printOn({statusOf(1)}).outcome, PrintOutcome::Unconfirmed);
}

}  // namespace
}  // namespace quordalvane
