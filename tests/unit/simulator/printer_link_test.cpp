#include <gtest/gtest.h>

#include "tests/unit/simulator/Session.h"

namespace quordalvane::simulator {
namespace {

TEST(PrinterLink, ReadsNoMoreThanIsAskedFor) {
  Session session;
  session.send(kStatusRequest);
  Bytes two(2);
  EXPECT_EQ(session.link->read(two, session.now), 2U);
  EXPECT_EQ(two, hex("8901"));
  EXPECT_EQ(session.link->available(session.now), 7U);
  EXPECT_EQ(session.link->read({}, session.now), 0U);
}

TEST(PrinterLink, ANewLinkEndsTheOneBeforeIt) {
  Session session;
  session.send(kStatusRequest);
  const auto other = session.connect();
  EXPECT_TRUE(session.link->dropped(session.now));
  EXPECT_EQ(session.link->write(Bytes{'x'}, session.now), 0U);
  EXPECT_EQ(session.receive().size(), 9U) << "what came before can be read";
  EXPECT_FALSE(session.link->connected(session.now));
  EXPECT_EQ(other->write(hex("100401"), session.now), 3U);
  EXPECT_EQ(other->available(session.now), 1U);
}

TEST(PrinterLink, AReplyThatNobodyReadDoesNotReachTheNextLink) {
  Session session(PrinterBuilder().speed(1));
  session.send("1b0601 1b1d03010000");
  session.reconnect();
  EXPECT_EQ(session.receive(), Bytes{});
  session.wait(6s);
  EXPECT_EQ(session.receive(), hex("1b1d03010000 01 00")) << "a report goes to whoever is there";
}

TEST(PrinterLink, AnIdleLinkHasNothingDue) {
  Session session;
  EXPECT_EQ(session.link->nextEvent(session.now), std::nullopt);
  EXPECT_TRUE(session.link->connected(session.now));
}

}  // namespace
}  // namespace quordalvane::simulator
