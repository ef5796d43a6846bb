#include <thread>

#include "tests/contract/LinkContract.h"

namespace quordalvane::contract {
namespace {

/// Seconds. A session that does not wait for its device ends in less time. A session that waits for
/// a silent device ends after two seconds.
constexpr double instantly = 1.9;

TEST_P(LinkContract, ALinkClosedByTheDeviceIsLostAndHasNoBytes) {
  peer->close();
  EXPECT_TRUE(isLost());
  EXPECT_FALSE(input->hasBytesAvailable());
  std::uint8_t byte = 0;
  EXPECT_LE(input->read(&byte, 1), 0);
}

TEST_P(LinkContract, BytesReportedAsAvailableCanBeReadAfterTheDeviceClosesTheLink) {
  peer->write({1, 2, 3});
  ASSERT_TRUE(eventually([this] { return input->hasBytesAvailable(); }));
  peer->close();
  maker->platform().clock().usleep(20'000);  // after this time every link checks its state again
  EXPECT_TRUE(accessory->isConnected());
  EXPECT_EQ(receive(3), (Bytes{1, 2, 3}));
  EXPECT_TRUE(isLost());
  EXPECT_FALSE(input->hasBytesAvailable());
}

TEST_P(LinkContract, BytesNotYetReportedAsAvailableCanBeReadAfterTheDeviceClosesTheLink) {
  if (!maker->traits().keepsUnreadBytes) {
    GTEST_SKIP() << "the system throws away bytes that were not read before the end";
  }
  const Bytes bytes(10'000, 9);
  peer->write(bytes);
  peer->close();
  EXPECT_TRUE(accessory->isConnected());
  EXPECT_EQ(receive(bytes.size()), bytes);
  EXPECT_TRUE(isLost());
  EXPECT_FALSE(input->hasBytesAvailable());
}

TEST_P(LinkContract, ALinkIsLostIfTheDeviceEndsItsOutput) {
  if (!maker->traits().closesOneWay) {
    GTEST_SKIP() << "the link has no directions";
  }
  peer->write({4});
  peer->closeWriting();
  EXPECT_EQ(receive(1), (Bytes{4}));
  EXPECT_TRUE(isLost());
}

TEST_P(LinkContract, AResetEndsTheLinkEvenWithBytesUnread) {
  if (!maker->traits().resets) {
    GTEST_SKIP() << "the link cannot be reset";
  }
  // Some kinds of links are reset only if the device has not read all bytes.
  ASSERT_EQ(write({1}), 1);
  peer->write({1, 2, 3});
  peer->reset();
  std::uint8_t buffer[8];
  EXPECT_TRUE(eventually([&] {
    if (input->hasBytesAvailable()) {
      input->read(buffer, sizeof buffer);
    }
    return !accessory->isConnected();
  }));
  EXPECT_FALSE(input->hasBytesAvailable());
}

TEST_P(LinkContract, AWriteToAClosedLinkSoonFails) {
  peer->close();
  EXPECT_TRUE(eventually([this] { return write({1}) == -1; }));
  EXPECT_TRUE(isLost());
}

TEST_P(LinkContract, BytesThatArrivedBeforeAWriteErrorCanBeRead) {
  peer->write({1, 2, 3});
  ASSERT_TRUE(eventually([this] { return input->hasBytesAvailable(); }));
  peer->close();
  EXPECT_TRUE(eventually([this] { return write({1}) == -1; }));
  EXPECT_TRUE(output->hasSpaceAvailable())
      << "a writer that waits for space would never learn of it";
  EXPECT_EQ(write({1}), -1);
  EXPECT_TRUE(accessory->isConnected());
  EXPECT_EQ(receive(3), (Bytes{1, 2, 3}));
  EXPECT_TRUE(isLost());
}

TEST_P(LinkContract, ACheckForLossReportsALostLinkEvenIfBytesAreUnread) {
  peer->write({1, 2, 3});
  ASSERT_TRUE(eventually([this] { return input->hasBytesAvailable(); }));
  peer->close();
  EXPECT_TRUE(eventually([this] {
    accessory->noticeLoss();
    return !accessory->isConnected();
  }));
}

TEST_P(LinkContract, ACheckForLossLeavesAWorkingLinkConnected) {
  accessory->noticeLoss();
  peer->write({1, 2, 3});
  ASSERT_TRUE(eventually([this] { return input->hasBytesAvailable(); }));
  accessory->noticeLoss();
  EXPECT_TRUE(accessory->isConnected());
  EXPECT_EQ(receive(3), (Bytes{1, 2, 3}));
}

TEST_P(LinkContract, AClosedStreamHasNoBytesAndNoSpaceAndCanBeClosedAgain) {
  peer->write({1});
  ASSERT_TRUE(eventually([this] { return input->hasBytesAvailable(); }));
  for (int i = 0; i < 2; ++i) {
    output->close();
    input->close();
    EXPECT_FALSE(input->hasBytesAvailable());
    EXPECT_FALSE(output->hasSpaceAvailable());
    std::uint8_t byte = 0;
    EXPECT_LE(input->read(&byte, 1), 0);
    EXPECT_LE(output->write(&byte, 1), 0);
  }
}

TEST_P(LinkContract, TheDeviceSeesTheLinkEndWhenTheSessionEnds) {
  if (!maker->traits().endsForTheDevice) {
    GTEST_SKIP() << "a cable that nobody uses is still a cable";
  }
  session.reset();
  EXPECT_TRUE(peer->read(1).empty());
}

TEST_P(LinkContract, AnEndingSessionLosesNoBytesEvenIfTheDeviceSendsReportsMeanwhile) {
  peer->stall();
  // Any machine can move these few bytes before the ending session stops waiting.
  const Bytes taken = fill(256 << 10);
  Bytes arrived;
  std::thread device([&] {
    while (arrived.size() < taken.size()) {
      const Bytes piece = peer->read(std::min<std::size_t>(16384, taken.size() - arrived.size()));
      if (piece.empty()) {
        break;
      }
      arrived.insert(arrived.end(), piece.begin(), piece.end());
      peer->say(0x14);
    }
  });
  session.reset();
  device.join();
  EXPECT_EQ(arrived.size(), taken.size());
  EXPECT_TRUE(arrived == taken);
}

TEST_P(LinkContract, TheEndOfASessionWaitsOnlySecondsForADeviceThatReadsNothing) {
  peer->stall();
  fill();
  const double start = now();
  session.reset();
  EXPECT_LT(now() - start, generously);
}

TEST_P(LinkContract, TheEndOfAnAbandonedSessionDoesNotWait) {
  peer->stall();
  fill();
  session->abandon();
  const double start = now();
  session.reset();
  EXPECT_LT(now() - start, instantly);
}

TEST_P(LinkContract, ASessionWithoutBytesUnderWayEndsAtOnce) {
  ASSERT_EQ(write({'a'}), 1);
  EXPECT_EQ(peer->read(1), (Bytes{'a'}));
  const double start = now();
  session.reset();
  EXPECT_LT(now() - start, instantly);
}

TEST_P(LinkContract, StreamsThatOutliveTheirSessionHaveNoBytesAndNoSpace) {
  peer->write({1, 2, 3});
  ASSERT_TRUE(eventually([this] { return input->hasBytesAvailable(); }));
  session.reset();
  EXPECT_FALSE(input->hasBytesAvailable());
  EXPECT_FALSE(output->hasSpaceAvailable());
  std::uint8_t byte = 0;
  EXPECT_LE(input->read(&byte, 1), 0);
  EXPECT_LE(output->write(&byte, 1), 0);
}

TEST_P(LinkContract, AnAccessoryIsConnectedAfterTheSessionOfALostLinkEnds) {
  peer->close();
  EXPECT_TRUE(isLost());
  session.reset();
  EXPECT_TRUE(accessory->isConnected());
}

TEST_P(LinkContract, ANewSessionCanBeOpenedAfterALinkIsLost) {
  if (!maker->traits().linksAnew) {
    GTEST_SKIP() << "there is one line for all sessions";
  }
  peer->close();
  EXPECT_TRUE(isLost());
  open();
  EXPECT_TRUE(accessory->isConnected());
  peer->write({8});
  EXPECT_EQ(receive(1), (Bytes{8}));
}

}  // namespace
}  // namespace quordalvane::contract
