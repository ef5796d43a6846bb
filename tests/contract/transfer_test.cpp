#include <numeric>

#include "tests/contract/LinkContract.h"

namespace quordalvane::contract {
namespace {

Bytes everyValue() {
  Bytes bytes(256);
  std::iota(bytes.begin(), bytes.end(), std::uint8_t{0});
  return bytes;
}

TEST_P(LinkContract, ANewSessionHasSpaceToWriteAndNoBytesToRead) {
  EXPECT_TRUE(accessory->isConnected());
  EXPECT_FALSE(input->hasBytesAvailable());
  EXPECT_TRUE(output->hasSpaceAvailable());
}

TEST_P(LinkContract, EveryByteValueReachesTheDeviceUnchanged) {
  if (!maker->traits().takesEveryByte) {
    GTEST_SKIP() << "the device obeys some of them";
  }
  ASSERT_EQ(write(everyValue()), 256);
  EXPECT_EQ(peer->read(256), everyValue());
}

TEST_P(LinkContract, EveryByteValueOfTheDeviceIsReadUnchanged) {
  peer->write(everyValue());
  EXPECT_EQ(receive(256), everyValue());
}

TEST_P(LinkContract, TenThousandBytesInPiecesOfSevenArriveOnceAndInOrder) {
  Bytes sent;
  Bytes received;
  while (sent.size() < 10'000) {
    for (int i = 0; i < 50; ++i) {
      Bytes piece(7);
      std::iota(piece.begin(), piece.end(), static_cast<std::uint8_t>(sent.size() % 241));
      peer->write(piece);
      sent.insert(sent.end(), piece.begin(), piece.end());
    }
    const Bytes came = receive(sent.size() - received.size());
    received.insert(received.end(), came.begin(), came.end());
  }
  EXPECT_EQ(received, sent);
  EXPECT_FALSE(input->hasBytesAvailable());
}

TEST_P(LinkContract, AReadReturnsTheRequestedCountAndLeavesTheRestForLater) {
  peer->write({1, 2, 3, 4, 5});
  EXPECT_EQ(receive(2), (Bytes{1, 2}));
  EXPECT_TRUE(input->hasBytesAvailable());
  EXPECT_EQ(receive(3), (Bytes{3, 4, 5}));
  EXPECT_FALSE(input->hasBytesAvailable());
}

TEST_P(LinkContract, AReadReturnsTheAvailableBytesIfMoreAreRequested) {
  peer->write({1, 2, 3});
  ASSERT_TRUE(eventually([this] { return input->hasBytesAvailable(); }));
  Bytes received = receive(1);
  Bytes buffer(100);
  while (received.size() < 3 && eventually([this] { return input->hasBytesAvailable(); })) {
    const auto count = input->read(buffer.data(), buffer.size());
    ASSERT_GT(count, 0);
    received.insert(received.end(), buffer.begin(), buffer.begin() + count);
  }
  EXPECT_EQ(received, (Bytes{1, 2, 3}));
}

TEST_P(LinkContract, AReadReturnsZeroIfNoBytesHaveArrived) {
  std::uint8_t byte = 0;
  EXPECT_EQ(input->read(&byte, 1), 0);
}

TEST_P(LinkContract, AReadOrWriteOfZeroBytesReturnsZeroAndChangesNothing) {
  peer->write({7});
  ASSERT_TRUE(eventually([this] { return input->hasBytesAvailable(); }));
  EXPECT_EQ(input->read(nullptr, 0), 0);
  EXPECT_EQ(output->write(nullptr, 0), 0);
  EXPECT_TRUE(accessory->isConnected());
  EXPECT_EQ(receive(1), (Bytes{7}));
}

TEST_P(LinkContract, WritesToAStalledDeviceSucceedUntilThereIsNoSpace) {
  peer->stall();
  const Bytes taken = fill();
  EXPECT_FALSE(taken.empty());
  EXPECT_FALSE(output->hasSpaceAvailable());
  EXPECT_TRUE(accessory->isConnected());
}

TEST_P(LinkContract, AWriteWithoutSpaceReturnsZeroAndTheLinkRemainsConnected) {
  peer->stall();
  fill();
  // The system counts space in blocks, so some bytes may still fit.
  const Bytes piece(1024);
  std::int64_t count = 1;
  for (int i = 0; i < 100'000 && count > 0; ++i) {
    count = write(piece);
  }
  EXPECT_EQ(count, 0);
  EXPECT_TRUE(accessory->isConnected());
}

TEST_P(LinkContract, ThereIsSpaceAgainAfterAStalledDeviceReadsAllBytes) {
  peer->stall();
  const Bytes taken = fill();
  EXPECT_EQ(peer->read(taken.size()), taken);
  EXPECT_TRUE(eventually([this] { return output->hasSpaceAvailable(); }));
  ASSERT_EQ(write({1, 2, 3}), 3);
  EXPECT_EQ(peer->read(3), (Bytes{1, 2, 3}));
}

TEST_P(LinkContract, ASecondSessionHasItsOwnLink) {
  if (!maker->traits().standsSideBySide) {
    GTEST_SKIP() << "there is one line for all sessions";
  }
  const auto firstSession = session;
  const auto firstInput = input;
  const auto firstPeer = std::move(peer);
  open();
  peer->write({2});
  EXPECT_EQ(receive(1), (Bytes{2}));
  EXPECT_FALSE(firstInput->hasBytesAvailable());

  firstPeer->close();
  EXPECT_TRUE(accessory->isConnected());
  peer->close();
  EXPECT_TRUE(isLost());
}

}  // namespace
}  // namespace quordalvane::contract
