#include "tests/contract/LinkContract.h"

namespace quordalvane::contract {
namespace {

constexpr double instantly = generously / 2;  // seconds; a call that takes longer has waited

TEST_P(LinkContract, AWaitForBytesEndsAtOnceWhenBytesArrive) {
  ASSERT_EQ(write({1}), 1);  // after a write, waitUntilReady waits for the device's answer
  peer->write({1});
  const double start = now();
  input->waitUntilReady(generously);
  EXPECT_LT(now() - start, instantly);
  EXPECT_TRUE(input->hasBytesAvailable());
}

TEST_P(LinkContract, BytesAreExpectedOnlyWhileARequestIsUnanswered) {
  if (!maker->traits().knowsWhatIsOwed) {
    GTEST_SKIP() << "the link never knows";
  }
  EXPECT_FALSE(input->expectsBytes());
  ASSERT_EQ(write({1}), 1);
  EXPECT_TRUE(input->expectsBytes());
  peer->write({2});
  EXPECT_EQ(receive(1), (Bytes{2}));
  EXPECT_FALSE(input->hasBytesAvailable());
  EXPECT_FALSE(input->expectsBytes());
}

TEST_P(LinkContract, NoBytesAreExpectedAfterACommandThatIsNeverAnswered) {
  if (!maker->traits().knowsWhatIsOwed) {
    GTEST_SKIP() << "the link never knows";
  }
  const auto give = [this](bool mayBeAnswered) {
    output->setMayBeAnswered(mayBeAnswered);
    ASSERT_EQ(write({1}), 1);
    EXPECT_EQ(peer->read(1), (Bytes{1}));
    output->waitUntilReady(generously);
  };
  give(false);
  EXPECT_FALSE(input->expectsBytes());
  give(true);
  give(false);
  EXPECT_TRUE(input->expectsBytes()) << "the write between the two is still unanswered";
  peer->write({2});
  EXPECT_EQ(receive(1), (Bytes{2}));
  EXPECT_FALSE(input->hasBytesAvailable());
  EXPECT_FALSE(input->expectsBytes());
}

TEST_P(LinkContract, AWaitForTheRestOfAnAnswerLastsItsWholeTime) {
  ASSERT_EQ(write({1}), 1);
  peer->write({2});
  EXPECT_EQ(receive(1), (Bytes{2}));
  EXPECT_FALSE(input->hasBytesAvailable());
  const double start = now();
  input->waitUntilReady(0.02);
  EXPECT_GE(now() - start, 0.02);
}

TEST_P(LinkContract, AWaitForAMissingAnswerAlwaysLastsItsWholeTime) {
  peer->stall();
  ASSERT_EQ(write({1}), 1);
  for (int i = 0; i < 2; ++i) {
    const double start = now();
    input->waitUntilReady(0.02);
    EXPECT_GE(now() - start, 0.02);
    EXPECT_LT(now() - start, instantly);
  }
}

TEST_P(LinkContract, AWaitForBytesEndsAtOnceWhenTheLinkIsLost) {
  ASSERT_EQ(write({1}), 1);
  EXPECT_EQ(peer->read(1), (Bytes{1}));
  peer->close();
  const double start = now();
  input->waitUntilReady(generously);
  input->waitUntilReady(generously);
  EXPECT_LT(now() - start, instantly);
  EXPECT_TRUE(isLost());
}

TEST_P(LinkContract, AWaitForSpaceEndsAtOnceWhenThereIsSpace) {
  const double start = now();
  output->waitUntilReady(generously);
  EXPECT_LT(now() - start, instantly);
}

TEST_P(LinkContract, AWaitForSpaceLastsItsWholeTimeWhileTheDeviceStalls) {
  peer->stall();
  fill();
  const double start = now();
  output->waitUntilReady(0.02);
  EXPECT_GE(now() - start, 0.02 - 1e-6);  // allows for rounding of the difference
  EXPECT_LT(now() - start, instantly);
}

TEST_P(LinkContract, AWaitForSpaceEndsAtOnceWhenTheDeviceHasRead) {
  peer->stall();
  const Bytes taken = fill();
  EXPECT_EQ(peer->read(taken.size()), taken);
  const double start = now();
  output->waitUntilReady(generously);
  EXPECT_LT(now() - start, instantly);
  EXPECT_TRUE(output->hasSpaceAvailable());
}

TEST_P(LinkContract, AWaitForSpaceEndsAtOnceWhenTheLinkIsLost) {
  peer->stall();
  fill();
  peer->close();
  const double start = now();
  output->waitUntilReady(generously);
  EXPECT_LT(now() - start, instantly);
}

TEST_P(LinkContract, AWaitForSpaceEndsAtOnceWhenTheDeviceEndsItsOutput) {
  if (!maker->traits().closesOneWay) {
    GTEST_SKIP() << "the link has no directions";
  }
  peer->stall();
  fill();
  peer->closeWriting();
  const double start = now();
  output->waitUntilReady(generously);
  EXPECT_LT(now() - start, instantly);
  EXPECT_TRUE(isLost());
}

TEST_P(LinkContract, AWaitForSpaceNoticesNoLossWhileBytesAreUnread) {
  if (!maker->traits().closesOneWay) {
    GTEST_SKIP() << "the link has no directions";
  }
  peer->stall();
  fill();
  peer->write({1, 2, 3});
  peer->closeWriting();
  for (int i = 0; i < 2; ++i) {
    const double start = now();
    output->waitUntilReady(0.02);
    EXPECT_GE(now() - start, 0.02);
    EXPECT_LT(now() - start, instantly);
    EXPECT_TRUE(accessory->isConnected());
  }
  EXPECT_EQ(receive(3), (Bytes{1, 2, 3}));
  EXPECT_TRUE(isLost());
}

TEST_P(LinkContract, WaitsOfZeroOrNegativeTimeReturnAtOnce) {
  peer->stall();
  fill();
  const double start = now();
  for (const double seconds : {0.0, -generously}) {
    input->waitUntilReady(seconds);
    output->waitUntilReady(seconds);
  }
  EXPECT_LT(now() - start, instantly);
}

TEST_P(LinkContract, AWaitOnAClosedStreamReturnsAtOnce) {
  ASSERT_EQ(write({1}), 1);
  input->close();
  output->close();
  const double start = now();
  input->waitUntilReady(generously);
  output->waitUntilReady(generously);
  EXPECT_LT(now() - start, instantly);
}

}  // namespace
}  // namespace quordalvane::contract
