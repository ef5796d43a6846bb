#include <gtest/gtest.h>

#include "simulator/TextRendering.h"
#include "tests/unit/simulator/Session.h"

namespace quordalvane::simulator {
namespace {

constexpr std::string_view fiveSeconds = "1b 1d 03 05 01 05";
constexpr std::string_view never = "1b 1d 03 05 01 00";

PrinterBuilder slow() {
  return PrinterBuilder().speed(10);
}

TEST(DataCancel, DropsUnprintedDataAndItsEndMarks) {
  Session session(slow());
  session.send(ascii("0123456789") + hex("17 1b1d03010000"));
  session.wait(300ms);
  session.send(dataCancel);
  EXPECT_EQ(session.printer.buffered(), 0U);
  session.send(dataCancelEnd);
  session.send(ascii("x") + hex("17"));
  EXPECT_EQ(session.link->nextEvent(session.now), session.now + 200ms);
  session.wait(1h);
  EXPECT_EQ(session.receive(), Bytes{});
  EXPECT_EQ(session.printer.printed(), ascii("012x"));
  EXPECT_EQ(session.printer.state().etbCounter, 1);
}

TEST(DataCancel, IsObeyedAnywhereInTheDataAndInPieces) {
  for (std::size_t at = 0; at <= 6; ++at) {
    Session session(slow());
    const Bytes command = hex(dataCancel);
    const auto middle = command.begin() + static_cast<std::ptrdiff_t>(at);
    session.send(ascii("abc") + Bytes(command.begin(), middle));
    session.send(Bytes(middle, command.end()) + ascii("xy"));
    session.wait(1s);
    session.link->available(session.now);
    EXPECT_EQ(session.printer.printed(), ascii("xy")) << "split at " << at;
  }
}

TEST(DataCancel, FreesTheBufferOfAnOffLinePrinter) {
  Session session(PrinterBuilder().buffer(20).coverOpen());
  session.send(Bytes(14, 'x'));
  session.send(dataCancel);
  EXPECT_EQ(session.link->space(session.now), 20U);
}

TEST(DataCancel, EndsAnUnfinishedLine) {
  Session session(slow());
  session.send(ascii("012345"));
  session.wait(300ms);
  session.send(hex(dataCancel) + hex(dataCancelEnd) + ascii("new\n"));
  session.wait(1s);
  session.link->available(session.now);
  EXPECT_EQ(renderText(session.printer.paper()), "012\nnew\n");
}

TEST(DataCancel, EndsAnUnfinishedCommand) {
  Session session(slow());
  session.send("1d7630 00 0a00 0100 00000000000000000000");
  session.wait(1s);
  session.send(dataCancel);
  session.send(hex(dataCancelEnd) + ascii("hello\n"));
  session.wait(10s);
  session.link->available(session.now);
  const auto& items = session.printer.paper().items();
  ASSERT_EQ(items.size(), 1U);
  EXPECT_EQ(std::get<TextRun>(std::get<Line>(items[0]).items[0].content).text, U"hello");
}

TEST(DataTimeout, DropsAllDataUntilTheCommandThatEndsDataCancel) {
  Session session(slow().coverOpen());
  session.send(hex(fiveSeconds) + hex(dataCancel) + ascii("held") + hex("17"));
  EXPECT_EQ(session.link->nextEvent(session.now), session.now + 5s);
  session.wait(5s);
  EXPECT_EQ(session.link->available(session.now), 0U);
  EXPECT_EQ(session.printer.buffered(), 0U);
  session.printer.setFlag("coverOpen", false, session.now);
  session.send(ascii("late") + hex("17 1b1d03010000"));
  session.wait(10s);
  EXPECT_EQ(session.receive(), Bytes{});
  session.send(hex(dataCancelEnd) + ascii("new") + hex("17"));
  session.wait(10s);
  EXPECT_EQ(etbCounterOf(session.ask(statusRequest)), 1);
  EXPECT_EQ(session.printer.printed(), ascii("new"));
}

TEST(DataTimeout, RunsFromTheLastReceivedByte) {
  Session session(slow().coverOpen());
  session.send(hex(fiveSeconds) + hex(dataCancel));
  for (int i = 0; i < 3; ++i) {
    session.wait(4999ms);
    session.send(ascii("x"));
  }
  session.wait(4999ms);
  session.link->available(session.now);
  EXPECT_EQ(session.printer.buffered(), 3U);
  session.wait(1ms);
  session.link->available(session.now);
  EXPECT_EQ(session.printer.buffered(), 0U);
}

TEST(DataTimeout, DropsNoDataThatIsAlreadyOnPaper) {
  Session session(slow());
  session.send(hex(fiveSeconds) + hex(dataCancel) + Bytes(100, 'x'));
  session.wait(1h);
  session.link->available(session.now);
  EXPECT_EQ(session.printer.printed().size(), 50U);
}

TEST(DataTimeout, StillDropsDataAfterASecondDataCancelCommand) {
  Session session;
  session.send(hex(fiveSeconds) + hex(dataCancel));
  session.wait(5s);
  session.send(hex(dataCancel) + ascii("lost"));
  EXPECT_EQ(session.printer.printed(), Bytes{});
  session.send(hex(dataCancelEnd) + ascii("kept"));
  EXPECT_EQ(session.printer.printed(), ascii("kept"));
}

TEST(DataTimeout, DropsNothingIfItIsZeroOrTheDataCancelCommandIsMissing) {
  const std::string_view commands[] = {fiveSeconds, "1b1d03050105 1b1d03030000 1b1d03040000",
                                       "1b1d03050100 1b1d03030000", dataCancel, never};
  for (std::string_view before : commands) {
    Session session(slow().coverOpen());
    session.send(hex(before) + ascii("held"));
    session.wait(1000s);
    session.link->available(session.now);
    EXPECT_EQ(session.printer.buffered(), 4U) << before;
    EXPECT_EQ(session.link->nextEvent(session.now), std::nullopt) << before;
  }
}

TEST(DataTimeout, DoesNotPreventStatusAnswers) {
  Session session;
  session.send(hex(fiveSeconds) + hex(dataCancel));
  session.wait(6s);
  EXPECT_EQ(session.ask("100401"), hex("12"));
  EXPECT_EQ(etbCounterOf(session.ask("17 1b0601")), 0);
}

TEST(DataCancelEnd, DropsNothingWithoutAnEarlierDataCancel) {
  Session session(slow());
  session.send(ascii("ab") + hex(dataCancelEnd) + ascii("cd"));
  session.wait(1s);
  session.link->available(session.now);
  EXPECT_EQ(session.printer.printed(), ascii("abcd"));
}

}  // namespace
}  // namespace quordalvane::simulator
