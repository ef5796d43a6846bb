#include <gtest/gtest.h>

#include "simulator/TextRendering.h"
#include "tests/unit/simulator/Session.h"

namespace quordalvane::simulator {
namespace {

// 10 bytes a second, so that each byte takes 100 ms.
PrinterBuilder slow() {
  return PrinterBuilder().speed(10).buffer(100);
}

TEST(VirtualPrinter, PrintsDataOnceAndInOrder) {
  Session session;
  Bytes job = ascii("A line\n") + hex("1d7630 00 0100 0200 1b17") + hex("1b45 01") + ascii("x\n");
  for (std::uint8_t byte : job)
    ASSERT_TRUE(session.send(Bytes{byte}));
  EXPECT_EQ(session.printer.printed(), job);
  EXPECT_EQ(session.printer.printedBytes(), job.size());
  EXPECT_EQ(session.printer.buffered(), 0U);
}

TEST(VirtualPrinter, DoesNotRecordControlCommandsAsPrintedData) {
  Session session;
  session.send(ascii("ab") + hex("1b0601 100401 1b2a7242 1b1e4500 17 1b1d03010000") + ascii("cd"));
  EXPECT_EQ(session.printer.printed(), ascii("abcd"));
}

TEST(VirtualPrinter, TreatsCommandsInsideACountedPayloadAsData) {
  const char* trap = "17 100401 1b0601 1b1d03030000 1b1d03010000 1d4941 100402";
  const Bytes payload = hex(trap);
  ASSERT_EQ(payload.size(), 25U);
  const struct {
    const char* what;
    const char* header;
  } commands[] = {
      {"raster", "1d7630 00 0500 0500"},
      {"bit image, one byte a column", "1b2a 01 1900"},
      {"graphics", "1d284c 1900"},
      {"large graphics", "1d384c 19000000"},
      {"two-dimensional code", "1d286b 1900"},
      {"bar code, counted", "1d6b49 19"},
      {"another counted command", "1b2859 1900"},
  };
  for (const auto& command : commands) {
    Session session;
    const Bytes job = hex(command.header) + payload;
    EXPECT_TRUE(session.send(job));
    EXPECT_EQ(session.receive(), Bytes{}) << command.what;
    EXPECT_EQ(session.printer.printed(), job) << command.what;
    EXPECT_EQ(session.ask("100401"), hex("12")) << command.what << ": the payload must have ended";
    EXPECT_EQ(session.printer.state().etbCounter, 0) << command.what;
  }
}

TEST(VirtualPrinter, PrintsNoParameterOfACommandAsText) {
  const char* commands[] = {
      "1d43 30 30 30",
      "1d43 31 30 30 31 31 30 30",
      "1d43 32 30 30",
      "1d43 3b 31 3b 32 3b 33 3b 34 3b 35 3b",
      "1d51 00 30 0100 0100 41",
      "1b66 30 31",
      "1d7c 30",
      "1b42 33 34",
      "1c7d 36 31",
      "1d44 30 43 30 41 42 30 30 424d 10000000 4141 4242 4343 4444 4545",
      "1c61 30 31",
      "1d5a 32",
      "1d41 30 31",
      "1d46 31 31 31 31",
      "1b4f 41",
      "1b51 41",
      "1b6c 41",
      "1d6a 31",
      "1014 07 31",
      "1004 07 31",
      "1b37 41 42 43",
      "1b38 41 42",
      "1b39 41",
      "1b43 41",
      "1b46 41",
      "1b41 41",
      "1b6a 41",
      "1b7a 41",
      "1b7e4a 41",
      "1b0e 41",
      "1b14 41",
      "1c72 41",
      "1c74 41",
      "1d27 01 41424344",
      "1d5e 41 42 43",
      "1d28 7a 0200 4142",
      "1223 41",
      "122a 02 02 41424344",
      "126d 41 42",
      "1b38 30 30",
      "1f24 41 42",
      "1f43 31",
      "1f45 31",
      "1f54 41 42",
      "1f58 34",
      "1f5e 41 42",
      "1f72 31",
      "1f76 31",
      "1f2c 41",
      "1f2e 41",
      "1f3b 41",
      "1f2847 0200 6141",
  };
  for (const char* command : commands) {
    Session session;
    session.send(hex(command) + ascii("x\n"));
    const std::string text = renderText(session.printer.paper());
    EXPECT_EQ(text.substr(0, text.find('\n')), "x") << command;
    EXPECT_TRUE(session.printer.paper().record().unknown().empty()) << command;
  }
}

TEST(VirtualPrinter, ReadsOneOrThreeBytesForEachColumnOfABitImage) {
  for (const char* mode : {"00", "01", "20", "21"}) {
    Session session;
    const std::size_t columns = 4;
    const std::size_t bytes = columns * (mode[0] == '2' ? 3 : 1);
    session.send(hex("1b2a") + hex(mode) + hex("0400") + Bytes(bytes, 0x17) + hex("17"));
    EXPECT_EQ(session.printer.state().etbCounter, 1) << mode;
  }
}

TEST(VirtualPrinter, TreatsCommandsInsideAZeroTerminatedBarcodeAsData) {
  Session session;
  session.send("1d6b04 1017 41 00 17");
  EXPECT_EQ(session.printer.printed(), hex("1d6b04 1017 41 00"));
  EXPECT_EQ(session.printer.state().etbCounter, 1);
}

TEST(VirtualPrinter, DistinguishesTheMakersCommandFromABitImage) {
  Session session;
  EXPECT_EQ(session.ask("1b2a 21 0100 1b0601 1b2a7242 1b0601").size(), 9U)
      << "the first request is image data";
}

TEST(VirtualPrinter, StoresPrintedDataOnlyOnRequest) {
  VirtualPrinter printer(PrinterBuilder().state());
  PrinterLink link(printer, 0s);
  EXPECT_EQ(link.write(hex("1b401b40") + ascii("text\n"), 0s), 9U);
  EXPECT_EQ(printer.printed(), Bytes{});
  EXPECT_EQ(printer.printedBytes(), 9U);
  EXPECT_EQ(printer.paper().items().size(), 1U);
}

TEST(VirtualPrinter, PrintsAtTheGivenSpeed) {
  Session session(slow());
  session.send(ascii("0123456789"));
  EXPECT_EQ(session.printer.buffered(), 10U);
  session.wait(99ms);
  EXPECT_EQ(session.link->space(session.now), 90U);
  session.wait(1ms);
  EXPECT_EQ(session.link->space(session.now), 91U);
  session.wait(900ms);
  EXPECT_EQ(session.link->space(session.now), 100U);
  EXPECT_EQ(session.printer.printed(), ascii("0123456789"));
}

TEST(VirtualPrinter, PrintsTheSameIfItsStateIsReadThousandsOfTimes) {
  Session rarely(PrinterBuilder().speed(7));
  Session often(PrinterBuilder().speed(7));
  for (Session* session : {&rarely, &often})
    session->send(ascii("some text of a job") + hex("1b1d03010000"));
  for (int i = 0; i < 3'000; ++i) {
    often.wait(1ms);
    often.link->available(often.now);
  }
  rarely.wait(3s);
  rarely.link->available(rarely.now);
  EXPECT_EQ(rarely.printer.printed(), often.printer.printed());
  EXPECT_EQ(often.printer.printed().size(), 18U);
  EXPECT_EQ(rarely.link->nextEvent(rarely.now), often.link->nextEvent(often.now));
}

TEST(VirtualPrinter, AcceptsNoDataAfterItsBufferWasFullUntilAQuarterIsFree) {
  Session session(slow());
  EXPECT_EQ(session.link->write(Bytes(150, 'x'), session.now), 100U);
  EXPECT_EQ(session.link->space(session.now), 0U);
  EXPECT_EQ(session.link->nextEvent(session.now), session.now + 2500ms);
  session.wait(2400ms);
  EXPECT_EQ(session.link->space(session.now), 0U);
  session.wait(100ms);
  EXPECT_EQ(session.link->space(session.now), 25U);
}

TEST(VirtualPrinter, AnnouncesTheTimeOfItsNextReport) {
  Session session(slow());
  EXPECT_TRUE(session.send(ascii("0123") + hex("1b1d03010000") + Bytes(90, 'x')));
  EXPECT_EQ(session.link->space(session.now), 0U);
  EXPECT_EQ(session.link->nextEvent(session.now), session.now + 1s);
}

TEST(VirtualPrinter, PrintsAnImageLargerThanItsBuffer) {
  Session session(PrinterBuilder().speed(1000).buffer(16));
  const Bytes job = hex("1d7630 00 4800 0a00") + Bytes(720, 0x17) + hex("0a");
  std::size_t sent = 0;
  while (sent < job.size()) {
    sent += session.link->write(std::span(job).subspan(sent), session.now);
    session.now = session.link->nextEvent(session.now).value();
  }
  session.wait(1s);
  session.link->available(session.now);
  EXPECT_EQ(session.printer.printed(), job);
}

TEST(VirtualPrinter, CountsAnEndMarkWhenAllEarlierDataIsPrinted) {
  Session session(slow());
  session.send(ascii("0123") + hex("17 17"));
  session.wait(499ms);
  EXPECT_EQ(etbCounterOf(session.ask(statusRequest)), 0);
  session.wait(1ms);
  EXPECT_EQ(etbCounterOf(session.ask(statusRequest)), 1);
  session.wait(100ms);
  EXPECT_EQ(etbCounterOf(session.ask(statusRequest)), 2);
}

TEST(VirtualPrinter, SendsTheReportOfAnEndMarkWhenAllEarlierDataIsPrinted) {
  Session session(slow());
  session.send(ascii("0123") + hex("1b1d03010000"));
  EXPECT_EQ(session.link->nextEvent(session.now), session.now + 1s);
  session.wait(999ms);
  EXPECT_EQ(session.receive(), Bytes{});
  session.wait(1ms);
  EXPECT_EQ(session.receive(), hex("1b1d03010000 01 00"));
  EXPECT_EQ(session.link->nextEvent(session.now), std::nullopt);
}

TEST(VirtualPrinter, ResetsItsEndMarkCounterAsSoonAsTheResetCommandArrives) {
  Session session(slow().etbCounter(7));
  session.send(ascii("0123456789"));
  EXPECT_EQ(etbCounterOf(session.ask("1b1e4500 1b0601")), 0);
  session.send(ascii("0") + hex("1b1d03020000"));
  EXPECT_EQ(session.printer.state().etbCounter, 0);
}

TEST(VirtualPrinter, AnswersAStatusRequestBeforeEarlierDataIsPrinted) {
  Session session(slow());
  session.send(ascii("0123456789"));
  EXPECT_EQ(session.ask("100401"), hex("12"));
  EXPECT_EQ(session.ask(statusRequest).size(), 9U);
  EXPECT_EQ(session.printer.buffered(), 10U);
}

TEST(VirtualPrinter, PrintsHeldDataWhenItIsOnLineAgain) {
  Session session(slow());
  session.send(ascii("0123456789") + hex("17"));
  session.wait(300ms);
  session.printer.setFlag("coverOpen", true, session.now);
  session.wait(1h);
  EXPECT_EQ(session.ask("100401"), hex("1a"));
  EXPECT_EQ(session.printer.printed(), ascii("012"));
  EXPECT_EQ(session.printer.buffered(), 8U);
  EXPECT_EQ(session.link->nextEvent(session.now), std::nullopt);
  session.printer.setFlag("coverOpen", false, session.now);
  EXPECT_EQ(session.link->nextEvent(session.now), session.now + 800ms);
  session.wait(800ms);
  EXPECT_EQ(etbCounterOf(session.ask(statusRequest)), 1);
  EXPECT_EQ(session.printer.printed(), ascii("0123456789"));
}

TEST(VirtualPrinter, WithoutASpeedLimitPrintsBufferedDataAsSoonAsOnLine) {
  Session session(PrinterBuilder().paperOut());
  session.send(ascii("0123456789") + hex("17"));
  EXPECT_EQ(session.printer.buffered(), 11U);
  session.printer.setFlag("receiptPaperEmpty", false, session.now);
  EXPECT_EQ(session.printer.printed(), ascii("0123456789"));
  EXPECT_EQ(session.printer.state().etbCounter, 1);
}

TEST(VirtualPrinter, UsesANewSpeedAtOnce) {
  Session session(slow());
  session.send(ascii("0123456789"));
  session.wait(500ms);
  session.printer.set("speed", "1000", session.now);
  session.wait(4ms);
  EXPECT_EQ(session.link->space(session.now), 99U);
  session.wait(1ms);
  EXPECT_EQ(session.link->space(session.now), 100U);
}

TEST(VirtualPrinter, PrintsTheDataOfAHostThatHasDisconnected) {
  Session session(slow());
  session.send(ascii("0123456789"));
  session.wait(200ms);
  session.reconnect();
  session.wait(800ms);
  EXPECT_EQ(session.ask("100401"), hex("12"));
  EXPECT_EQ(session.printer.printed(), ascii("0123456789"));
}

TEST(VirtualPrinter, EndsAnUnfinishedCommandWhenTheHostDisconnects) {
  for (const PrinterBuilder& printer : {PrinterBuilder(), slow()}) {
    Session session(printer);
    session.send(ascii("a") + hex("1d7630 00 0a00 0a00 ffff"));
    session.reconnect();
    EXPECT_EQ(session.ask("100401"), hex("12"));
    session.send(ascii("b\n"));
    session.wait(10s);
    session.link->available(session.now);
    EXPECT_EQ(session.printer.printed(),
              ascii("a") + hex("1d7630 00 0a00 0a00 ffff") + ascii("b\n"));
    const auto* line = std::get_if<Line>(&session.printer.paper().items().at(0));
    ASSERT_NE(line, nullptr);
    EXPECT_EQ(std::get<TextRun>(line->items.at(0).content).text, U"ab");
  }
}

TEST(VirtualPrinter, HasEmptyPaperAfterThePaperIsTornOff) {
  Session session;
  session.send(ascii("one\n"));
  EXPECT_EQ(session.printer.tearOff().items().size(), 1U);
  EXPECT_TRUE(session.printer.paper().items().empty());
  EXPECT_TRUE(session.printer.printed().empty());
  EXPECT_EQ(session.printer.printedBytes(), 4U);
}

TEST(VirtualPrinter, TearsOffAnUnfinishedLineWithThePaper) {
  Session session;
  session.send(ascii("half"));
  EXPECT_EQ(session.printer.tearOff().items().size(), 1U);
  session.send(ascii("next\n"));
  EXPECT_EQ(session.printer.tearOff().items().size(), 1U);
}

TEST(VirtualPrinter, TreatsEachConnectionThatPrintsAsAJob) {
  Session session(slow());
  std::vector<std::string> jobs;
  session.printer.keepJobs([&jobs](const Paper& paper) { jobs.push_back(renderText(paper)); });
  for (const char* job : {"one", "", "two\n", "1b0601"}) {
    session.send(ascii(job));
    session.reconnect();
  }
  session.wait(300ms);
  EXPECT_EQ(session.link->nextEvent(session.now), session.now + 400ms);
  EXPECT_EQ(jobs, std::vector<std::string>{"one\n"});
  session.wait(10s);
  session.link->available(session.now);
  EXPECT_EQ(jobs, (std::vector<std::string>{"one\n", "two\n", "1b0601\n"}));
}

TEST(VirtualPrinter, EndsAJobWhenDataCancelDropsTheRemainingData) {
  Session session(slow());
  std::vector<std::string> jobs;
  session.printer.keepJobs([&jobs](const Paper& paper) { jobs.push_back(renderText(paper)); });
  session.send(ascii("a line\n"));
  session.wait(200ms);
  session.reconnect();
  session.send(dataCancel);
  EXPECT_EQ(jobs, std::vector<std::string>{"a\n"});
}

}  // namespace
}  // namespace quordalvane::simulator
