#include <gtest/gtest.h>

#include "tests/unit/simulator/Session.h"

namespace quordalvane::simulator {
namespace {

TEST(PrinterLink, ReadsNoMoreBytesThanRequested) {
  Session session;
  session.send(statusRequest);
  Bytes two(2);
  EXPECT_EQ(session.link->read(two, session.now), 2U);
  EXPECT_EQ(two, hex("8901"));
  EXPECT_EQ(session.link->available(session.now), 7U);
  EXPECT_EQ(session.link->read({}, session.now), 0U);
}

TEST(PrinterLink, EndsWhenANewLinkBegins) {
  Session session;
  session.send(statusRequest);
  const auto other = session.connect();
  EXPECT_TRUE(session.link->dropped(session.now));
  EXPECT_EQ(session.link->write(Bytes{'x'}, session.now), 0U);
  EXPECT_EQ(session.receive().size(), 9U) << "earlier bytes can be read";
  EXPECT_FALSE(session.link->connected(session.now));
  EXPECT_EQ(other->write(hex("100401"), session.now), 3U);
  EXPECT_EQ(other->available(session.now), 1U);
}

TEST(PrinterLink, DoesNotSendAnUnreadReplyToTheNextLink) {
  Session session(PrinterBuilder().speed(1));
  session.send("1b0601 1b1d03010000");
  session.reconnect();
  EXPECT_EQ(session.receive(), Bytes{});
  session.wait(6s);
  EXPECT_EQ(session.receive(), hex("1b1d03010000 01 00"))
      << "a report is sent to any host that is connected";
}

TEST(PrinterLink, DoesNotStopThePrinterWhenTheLinkIsCut) {
  Session session(PrinterBuilder().speed(10), with("cut-after-in", "20"));
  ASSERT_TRUE(session.send(Bytes(20, 'x')));
  EXPECT_TRUE(session.link->dropped(session.now));
  session.wait(1s);
  EXPECT_TRUE(session.link->dropped(session.now));
  EXPECT_EQ(session.printer.buffered(), 10U);
}

TEST(PrinterLink, HasNoNextEventIfItIsIdle) {
  Session session;
  EXPECT_EQ(session.link->nextEvent(session.now), std::nullopt);
  EXPECT_TRUE(session.link->connected(session.now));
}

// A printer that does not print, and whose buffer is soon full.
PrinterBuilder standing() {
  return PrinterBuilder().coverOpen().buffer(16);
}

TEST(PrinterWithAFullBuffer, AnswersRequestsEvenIfTheyArriveByteByByte) {
  for (const char* request : {"100402", "1b0601", "1b2a7242 1b1d03040000 1b0601", "1d4941"}) {
    Session session(standing());
    ASSERT_TRUE(session.send(Bytes(16, 'x')));
    EXPECT_EQ(session.link->space(session.now), 0U);
    EXPECT_TRUE(session.send(request)) << request;
    const Bytes whole = session.receive();
    EXPECT_FALSE(whole.empty()) << request;
    for (std::uint8_t byte : hex(request))
      EXPECT_TRUE(session.send(Bytes{byte})) << request;
    EXPECT_EQ(session.receive(), whole) << request;
    EXPECT_EQ(session.printer.buffered(), 16U) << request;
  }
}

TEST(PrinterWithAFullBuffer, AcceptsNoPrintDataAndNoByteAfterPrintData) {
  for (const char* data : {"78 100402", "17 100402", "1b45 01 100402"}) {
    Session session(standing());
    ASSERT_TRUE(session.send(Bytes(16, 'x')));
    const Bytes bytes = hex("100402") + hex(data);
    std::size_t sent = session.link->write(bytes, session.now);
    sent += session.link->write(std::span(bytes).subspan(sent), session.now);
    EXPECT_LT(sent, 6U) << data;
    EXPECT_EQ(session.receive(), hex("16")) << data;
  }
}

TEST(PrinterWithAFullBuffer, AnswersNoRequestInsideAnImage) {
  Session session(standing());
  ASSERT_TRUE(session.send(hex("1d7630 00 0a00 0a00") + Bytes(8, 0)));
  EXPECT_EQ(session.link->write(hex("100402"), session.now), 0U);
}

TEST(PrinterWithAFullBuffer, HasSpaceAgainAfterADataCancel) {
  Session session(standing());
  ASSERT_TRUE(session.send(Bytes(16, 'x')));
  EXPECT_TRUE(session.send(dataCancel));
  EXPECT_EQ(session.link->space(session.now), 16U);
}

TEST(PrinterWithAFullBuffer, IsStillAffectedByInjectedFaults) {
  Session slow(standing(), with("short-writes", "2"));
  while (slow.send(ascii("xx"))) {
  }
  EXPECT_EQ(slow.link->write(hex("100402"), slow.now), 2U);
  Session cut(standing(), with("cut-after-in", "17"));
  ASSERT_TRUE(cut.send(Bytes(16, 'x')));
  EXPECT_EQ(cut.link->write(hex("100402"), cut.now), 1U);
  Session stalled(standing(), with("no-space", "16:1000"));
  ASSERT_TRUE(stalled.send(Bytes(16, 'x')));
  EXPECT_EQ(stalled.link->write(hex("100402"), stalled.now), 0U);
}

}  // namespace
}  // namespace quordalvane::simulator
