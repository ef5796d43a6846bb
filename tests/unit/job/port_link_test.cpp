#include "job/PortLink.h"

#include <gtest/gtest.h>

#include <atomic>

#include "tests/support/ScriptedWorld.h"

namespace quordalvane {
namespace {

using test::bytes;

TEST(PortLink, ReturnsAnAnswerInPiecesAsSoonAsItsLastByteArrives) {
  const auto question = bytes("10 04 01");
  test::ScriptedWorld world(
      test::Script().whenAsked(question, {{bytes("37 22"), 0.0}, {bytes("00"), 0.001}}));
  const auto port =
      ExternalAccessoryPort::initWithPortName("BT:", "", 2000, ZKEmulationESCPOS, world.platform());
  ASSERT_TRUE(port->open());
  world.start();
  const std::atomic<bool> isCancelled = false;
  PortLink link(port, isCancelled);
  ASSERT_FALSE(link.send(question, PortLink::Reply::Possible));
  const auto asked = link.now();
  std::size_t heard = 0;
  const auto isWhole = [&heard](ByteView piece) { return (heard += piece.size()) == 3; };
  EXPECT_TRUE(link.await(isWhole, std::chrono::seconds(1)));
  EXPECT_EQ(link.now() - asked, std::chrono::milliseconds(1));
}

}  // namespace
}  // namespace quordalvane
