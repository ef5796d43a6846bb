#include "simulator/Macro.h"

#include <gtest/gtest.h>

#include "tests/unit/simulator/Print.h"

namespace quordalvane::simulator {
namespace {

std::string printed(const Bytes& job) {
  return Print(job).text();
}

const Bytes mark = hex("1d3a");

TEST(Macro, IsPrintedDuringItsDefinitionAndAtEachExecution) {
  EXPECT_EQ(printed(mark + ascii("a\n") + mark + ascii("b\n") + hex("1d5e 02 00 00")),
            "a\nb\na\na\n");
}

TEST(Macro, MayBeginAndEndInTheMiddleOfALine) {
  EXPECT_EQ(printed(ascii("<") + mark + ascii("a") + mark + hex("1d5e 03 00 00") + ascii(">\n")),
            "<aaaa>\n");
}

TEST(Macro, ContainsCommandsAndRemainsAfterAnInitialisation) {
  EXPECT_EQ(printed(mark + hex("1b6102") + ascii("x\n") + mark + hex("1b40 1d5e 01 00 00")),
            std::string(31, ' ') + "x\n" + std::string(31, ' ') + "x\n");
}

TEST(Macro, IsDeletedIfItIsExecutedDuringItsDefinition) {
  EXPECT_EQ(printed(mark + ascii("a\n") + hex("1d5e 01 00 00 1d5e 01 00 00")),
            "a\n[not shown: 1d 5e 01 (2)]\n");
}

TEST(Macro, PrintsNothingIfItIsEmpty) {
  EXPECT_EQ(printed(mark + ascii("a\n") + mark + mark + mark + hex("1d5e 01 00 00")),
            "a\n[not shown: 1d 5e 01 (1)]\n");
}

TEST(Macro, KeepsNoMoreBytesThanItsLimit) {
  Macro macro;
  macro.startOrEnd();
  for (std::size_t i = 0; i < Macro::mostBytes + 10; ++i) {
    macro.keep(ascii("x"));
  }
  macro.startOrEnd();
  ASSERT_TRUE(macro.execute(1));
  std::size_t count = 0;
  while (macro.next() != nullptr) {
    ++count;
  }
  EXPECT_EQ(count, Macro::mostBytes);
}

TEST(Macro, RunsALimitedNumberOfCommandsInOneJob) {
  Macro macro;
  macro.startOrEnd();
  macro.keep(ascii("x"));
  macro.startOrEnd();
  std::size_t count = 0;
  while (macro.execute(255)) {
    while (macro.next() != nullptr) {
      ++count;
    }
  }
  EXPECT_EQ(count, Macro::mostCommandsOfAJob);
  macro.endJob();
  EXPECT_TRUE(macro.execute(1));
}

TEST(Macro, EndsWhenThePrinterTearsOffALongPaper) {
  std::vector<Paper> papers;
  Session session(PrinterBuilder().buffer(100'000));
  session.printer.keepJobs([&](Paper paper) { papers.push_back(std::move(paper)); });
  session.send(hex("1d2a 4830") + Bytes(72 * 48 * 8, 0xff) + mark + hex("1d2f00") + mark);
  for (int i = 0; i < 3; ++i) {
    session.send("1d5e ff 00 00");
  }
  EXPECT_EQ(papers.size(), 3U);
  for (const Paper& paper : papers) {
    EXPECT_LT(paper.weight(), heaviestPaper + 100'000);
  }
}

}  // namespace
}  // namespace quordalvane::simulator
