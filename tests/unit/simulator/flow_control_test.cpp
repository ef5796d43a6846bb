#include <gtest/gtest.h>

#include "tests/unit/simulator/Session.h"

namespace quordalvane::simulator {
namespace {

PrinterBuilder slow() {
  return PrinterBuilder().set("flow", "xonxoff").buffer(256).speed(100);
}

TEST(FlowControl, PausesAHostWhenThreeQuartersAreFullAndResumesWhenHalfIsFree) {
  Session session(slow());
  session.send(Bytes(191, 'a'));
  EXPECT_EQ(session.receive(), Bytes{}) << "more than a quarter is free";
  session.send(Bytes(1, 'a'));
  EXPECT_EQ(session.receive(), hex("13"));
  EXPECT_TRUE(session.send(Bytes(8, 'a'))) << "there is room for what is on its way";
  EXPECT_EQ(session.receive(), Bytes{}) << "once is enough";
  session.wait(80ms);
  EXPECT_EQ(session.link->nextEvent(session.now), session.now + 640ms) << "64 more bytes";
  session.wait(639ms);
  EXPECT_EQ(session.receive(), Bytes{});
  session.wait(1ms);
  EXPECT_EQ(session.receive(), hex("11"));
}

TEST(FlowControl, IsOffByDefault) {
  Session session(slow().set("flow", "none"));
  session.send(Bytes(250, 'a'));
  session.wait(10s);
  EXPECT_EQ(session.receive(), Bytes{});
}

TEST(FlowControl, LetsAHostContinueWhenDataIsDroppedOrFlowControlIsSwitchedOff) {
  Session dropped(slow());
  dropped.send(Bytes(200, 'a'));
  EXPECT_EQ(dropped.ask("1014 0801031401060208"), hex("13 372500 11"));
  Session ended(slow());
  ended.send(Bytes(200, 'a'));
  ended.printer.set("flow", "none", ended.now);
  EXPECT_EQ(ended.receive(), hex("13 11"));
}

TEST(FlowControl, PausesANewHostWhileTheBufferIsStillFull) {
  Session session(slow().coverOpen());
  session.send(Bytes(200, 'a'));
  EXPECT_EQ(session.receive(), hex("13"));
  session.reconnect();
  session.send(Bytes(1, 'a'));
  EXPECT_EQ(session.receive(), hex("13"));
  session.printer.setFlag("coverOpen", false, session.now);
  session.wait(2s);
  EXPECT_EQ(session.receive(), hex("11"));
}

TEST(FlowControl, WorksInTheSmallestBuffer) {
  Session session(slow().buffer(16));
  session.send(Bytes(12, 'a'));
  EXPECT_EQ(session.receive(), hex("13"));
  session.wait(40ms);
  EXPECT_EQ(session.receive(), hex("11"));
}

}  // namespace
}  // namespace quordalvane::simulator
