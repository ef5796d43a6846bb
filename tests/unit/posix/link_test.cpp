#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <stdexcept>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

#include "backends/posix/LinkAccessory.h"
#include "backends/posix/PosixClock.h"
#include "tests/support/SleepingThread.h"
#include "tests/unit/posix/SignalStorm.h"
#include "tests/unit/posix/Stopwatch.h"

namespace quordalvane::posix {
namespace {

using test::SleepingThread;

const std::string protocol = AccessoryIdentity{}.protocolStrings.front();

/// An accessory with a session, on one socket of a pair. The other socket is the device's.
class LinkTest : public testing::Test {
 protected:
  LinkTest() {
    EXPECT_EQ(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends_), 0);
    session = accessory.openSession(protocol);
    input = session->inputStream();
    output = session->outputStream();
  }
  ~LinkTest() override { ::close(ends_[1]); }

  int device() const { return ends_[1]; }
  void deviceWrites(std::size_t count) {
    const std::vector<std::uint8_t> bytes(count, 'd');
    ASSERT_EQ(::write(device(), bytes.data(), count), static_cast<ssize_t>(count));
  }
  std::int64_t ask() { return output->write(&byte, 1); }

  LinkAccessory accessory{AccessoryIdentity{},
                          [this] { return Descriptor(ends_[0], Descriptor::Kind::Socket); }};
  std::shared_ptr<EASession> session;
  std::shared_ptr<NSInputStream> input;
  std::shared_ptr<NSOutputStream> output;
  std::uint8_t byte = 0;

 private:
  int ends_[2] = {-1, -1};
};

TEST_F(LinkTest, AReplyEndsTheWaitForBytes) {
  ASSERT_EQ(ask(), 1);
  SleepingThread waiting([this] {
    const Stopwatch watch;
    input->waitUntilReady(30);
    EXPECT_LT(watch.seconds(), 20);
  });
  waiting.awaitSleep();
  deviceWrites(1);
  waiting.join();
  EXPECT_TRUE(input->hasBytesAvailable());
}

TEST_F(LinkTest, SignalsDoNotShortenAWait) {
  ASSERT_EQ(ask(), 1);
  const SignalStorm storm;
  const Stopwatch watch;
  input->waitUntilReady(0.05);
  EXPECT_GE(watch.seconds(), 0.05);
  EXPECT_LT(watch.seconds(), 5);
  EXPECT_GT(storm.strikes(), 0);
}

TEST_F(LinkTest, AConnectionCheckDuringAWaitDoesNotConsumeTheReply) {
  ASSERT_TRUE(accessory.isConnected());
  for (int i = 0; i < 10; ++i) {
    ASSERT_EQ(ask(), 1);
    SleepingThread waiting([this] {
      const Stopwatch watch;
      input->waitUntilReady(30);
      EXPECT_LT(watch.seconds(), 20);
    });
    waiting.awaitSleep();
    PosixClock().usleep(20'000);  // after this time the link checks the socket again
    deviceWrites(1);
    EXPECT_TRUE(accessory.isConnected());
    waiting.join();
    ASSERT_EQ(input->read(&byte, 1), 1);
  }
}

TEST_F(LinkTest, AWaitGetsEveryReplyDespiteManyConnectionChecks) {
  std::atomic<bool> stop = false;
  std::thread answering([this] {
    std::uint8_t request = 0;
    while (::read(device(), &request, 1) == 1) {
      deviceWrites(1);
    }
  });
  std::thread asking([&] {
    while (!stop) {
      EXPECT_TRUE(accessory.isConnected());
    }
  });
  for (int i = 0; i < 2000; ++i) {
    EXPECT_EQ(ask(), 1);
    const Stopwatch watch;
    while (!input->hasBytesAvailable() && watch.seconds() < 30) {
      input->waitUntilReady(30);
    }
    ASSERT_LT(watch.seconds(), 20);
    ASSERT_EQ(input->read(&byte, 1), 1);
  }
  stop = true;
  asking.join();
  session.reset();
  answering.join();
}

TEST_F(LinkTest, TheEndOfASessionEndsAWaitOnItsStreams) {
  ASSERT_EQ(ask(), 1);
  SleepingThread waiting([this] {
    const Stopwatch watch;
    input->waitUntilReady(30);
    EXPECT_LT(watch.seconds(), 20);
  });
  waiting.awaitSleep();
  session.reset();
  waiting.join();
  EXPECT_FALSE(input->hasBytesAvailable());
}

TEST_F(LinkTest, TheEndOfASessionReadsAllBytesSoThatTheLinkIsNotReset) {
  deviceWrites(20'000);
  session.reset();
  // After a reset, this read would return an error instead of the end of the stream.
  EXPECT_EQ(::read(device(), &byte, 1), 0);
}

TEST_F(LinkTest, BytesAreExpectedBetweenARequestAndItsAnswer) {
  for (int i = 0; i < 2; ++i) {
    EXPECT_FALSE(input->expectsBytes());
    ASSERT_EQ(ask(), 1);
    EXPECT_TRUE(input->expectsBytes());
    deviceWrites(1);
    input->waitUntilReady(1);
    ASSERT_EQ(input->read(&byte, 1), 1);
  }
}

TEST_F(LinkTest, AnAnswerIsCountedEvenIfItIsReadAfterAWriteThatNeedsNoAnswer) {
  ASSERT_EQ(ask(), 1);
  deviceWrites(1);
  input->waitUntilReady(1);
  output->setMayBeAnswered(false);
  ASSERT_EQ(ask(), 1);
  ASSERT_EQ(input->read(&byte, 1), 1);
  EXPECT_FALSE(input->expectsBytes());
}

TEST_F(LinkTest, ARequestRemainsUnansweredAfterALaterWriteThatNeedsNoAnswer) {
  ASSERT_EQ(ask(), 1);
  input->waitUntilReady(0.01);
  output->setMayBeAnswered(false);
  ASSERT_EQ(ask(), 1);
  EXPECT_TRUE(input->expectsBytes());
}

TEST_F(LinkTest, AfterALateReplyASecondReplyIsExpectedUntilAWaitFindsNoBytes) {
  ASSERT_EQ(ask(), 1);
  input->waitUntilReady(0.01);
  ASSERT_EQ(ask(), 1);
  deviceWrites(1);
  input->waitUntilReady(1);
  ASSERT_EQ(input->read(&byte, 1), 1);
  EXPECT_TRUE(input->expectsBytes());
  input->waitUntilReady(0.02);
  EXPECT_FALSE(input->expectsBytes());
}

TEST_F(LinkTest, ThereIsNoSpaceAfterAWholeWriteThatFilledTheBuffer) {
  const std::vector<std::uint8_t> piece(8192);
  std::int64_t taken = 1;
  while (output->hasSpaceAvailable()) {
    taken = output->write(piece.data(), piece.size());
    EXPECT_GT(taken, 0) << "there was space for a byte at least";
  }
  EXPECT_EQ(taken, static_cast<std::int64_t>(piece.size())) << "no write was cut short";
}

TEST_F(LinkTest, AWriteErrorEndsTheLinkEvenIfTheDeviceCouldStillSend) {
  ASSERT_TRUE(accessory.isConnected());
  ASSERT_EQ(::shutdown(device(), SHUT_RD), 0);
  EXPECT_EQ(ask(), -1);
  EXPECT_FALSE(accessory.isConnected());
  EXPECT_EQ(ask(), -1);
}

TEST_F(LinkTest, AWaitForSpaceEndsAtOnceAfterAWriteError) {
  while (ask() == 1) {
  }
  ASSERT_FALSE(output->hasSpaceAvailable());
  ASSERT_EQ(::shutdown(device(), SHUT_RD), 0);
  ASSERT_EQ(ask(), -1);
  const Stopwatch watch;
  output->waitUntilReady(30);
  EXPECT_LT(watch.seconds(), 20);
}

TEST_F(LinkTest, BytesThatArrivedBeforeARequestAreNotItsAnswer) {
  deviceWrites(3);
  ASSERT_TRUE(input->hasBytesAvailable());
  ASSERT_EQ(ask(), 1);
  std::uint8_t old[3];
  ASSERT_EQ(input->read(old, sizeof old), 3);
  EXPECT_TRUE(input->expectsBytes());
}

TEST_F(LinkTest, AWaitOfZeroTimeSeesUnaskedBytes) {
  EXPECT_FALSE(input->hasBytesAvailable());
  input->waitUntilReady(0);
  deviceWrites(1);
  input->waitUntilReady(0);
  EXPECT_TRUE(input->hasBytesAvailable());
}

TEST_F(LinkTest, AReadReturnsBytesWithoutAnEarlierCheckForBytes) {
  deviceWrites(1);
  EXPECT_EQ(input->read(&byte, 1), 1);
  EXPECT_EQ(byte, 'd');
}

TEST_F(LinkTest, TheFirstConnectionCheckReportsALostLinkWithoutARead) {
  ASSERT_EQ(::shutdown(device(), SHUT_WR), 0);
  EXPECT_FALSE(accessory.isConnected());
}

TEST_F(LinkTest, ACheckForLossReportsALostLinkEvenIfBytesAreUnread) {
  deviceWrites(3);
  ASSERT_EQ(::shutdown(device(), SHUT_WR), 0);
  accessory.noticeLoss();
  EXPECT_FALSE(accessory.isConnected());
  EXPECT_FALSE(input->hasBytesAvailable());
}

TEST_F(LinkTest, TransfersOnClosedStreamsFail) {
  input->close();
  output->close();
  EXPECT_EQ(input->read(&byte, 1), -1);
  EXPECT_EQ(ask(), -1);
  EXPECT_FALSE(input->expectsBytes());
  output->setMayBeAnswered(false);
  const Stopwatch watch;
  input->waitUntilReady(30);
  output->waitUntilReady(30);
  EXPECT_LT(watch.seconds(), 20);
}

TEST_F(LinkTest, NoTransferSucceedsAfterTheEndOfTheSession) {
  session.reset();
  EXPECT_EQ(input->read(&byte, 1), -1);
  EXPECT_EQ(ask(), -1);
  const Stopwatch watch;
  input->waitUntilReady(30);
  output->waitUntilReady(30);
  EXPECT_LT(watch.seconds(), 20);
}

TEST_F(LinkTest, AnEndedSessionIsNotALostLink) {
  session.reset();
  accessory.noticeLoss();
  EXPECT_TRUE(accessory.isConnected());
  EXPECT_EQ(accessory.portState(), "");
}

TEST_F(LinkTest, AThreadThatWaitsForBytesNoticesThatTheLinkIsLost) {
  ASSERT_EQ(ask(), 1);
  SleepingThread waiting([this] { input->waitUntilReady(30); });
  waiting.awaitSleep();
  accessory.noticeLoss();
  EXPECT_TRUE(accessory.isConnected());
  ASSERT_EQ(::shutdown(device(), SHUT_WR), 0);
  waiting.join();
  EXPECT_FALSE(accessory.isConnected());
}

TEST_F(LinkTest, ASocketReportsNoStateOfAUsbPort) {
  EXPECT_EQ(accessory.portState(), "");
}

TEST(Link, CanBeReleasedTwice) {
  int ends[2] = {-1, -1};
  ASSERT_EQ(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends), 0);
  const Descriptor other(ends[1], Descriptor::Kind::Socket);
  Link link(Descriptor(ends[0], Descriptor::Kind::Socket));
  link.release();
  link.release();
  EXPECT_FALSE(link.isLost());
}

TEST(LinkAccessory, IsConnectedAndHasNoStateBeforeItsFirstSession) {
  LinkAccessory accessory({}, []() -> Descriptor { throw std::runtime_error("never called"); });
  accessory.noticeLoss();
  EXPECT_TRUE(accessory.isConnected());
  EXPECT_EQ(accessory.portState(), "");
}

TEST_F(LinkTest, TheInputIsCheckedAgainAfterAWriteError) {
  EXPECT_FALSE(input->hasBytesAvailable());
  deviceWrites(3);
  ASSERT_EQ(::shutdown(device(), SHUT_RD), 0);
  EXPECT_EQ(ask(), -1);
  EXPECT_TRUE(input->hasBytesAvailable());
}

TEST_F(LinkTest, AConnectionCheckDoesNotWaitForTheEndOfASession) {
  while (ask() == 1) {
  }
  SleepingThread ending([this] { session.reset(); });
  ending.awaitSleep();
  const Stopwatch watch;
  accessory.isConnected();
  EXPECT_FALSE(input->hasBytesAvailable());
  EXPECT_LT(watch.seconds(), 1);  // a wait for the end of the session would take two seconds
  ending.join();
}

TEST(LinkAccessory, RefusesAnUnannouncedProtocolAndDoesNotConnect) {
  bool connected = false;
  LinkAccessory accessory(AccessoryIdentity{}, [&]() -> Descriptor {
    connected = true;
    throw std::runtime_error("unreachable");
  });
  EXPECT_EQ(accessory.openSession("com.example.other"), nullptr);
  EXPECT_FALSE(connected);
  EXPECT_NE(accessory.lastError().find("com.example.other"), std::string::npos);
}

TEST(LinkAccessory, ReportsWhyAConnectionFailedUntilAConnectionSucceeds) {
  bool reachable = false;
  LinkAccessory accessory(AccessoryIdentity{}, [&] {
    if (!reachable) {
      throw std::system_error(ENODEV, std::generic_category(), "the cable is out");
    }
    return Descriptor(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0), Descriptor::Kind::Socket);
  });
  EXPECT_EQ(accessory.lastError(), "");
  EXPECT_EQ(accessory.openSession(protocol), nullptr);
  EXPECT_NE(accessory.lastError().find("the cable is out"), std::string::npos);
  EXPECT_EQ(accessory.lastErrorCode(), std::errc::no_such_device);
  EXPECT_TRUE(accessory.isConnected());
  reachable = true;
  EXPECT_NE(accessory.openSession(protocol), nullptr);
  EXPECT_EQ(accessory.lastError(), "");
  EXPECT_FALSE(accessory.lastErrorCode());
}

TEST(LinkAccessory, ReportsAReasonWithoutAnErrorCode) {
  LinkAccessory accessory(AccessoryIdentity{}, []() -> Descriptor {
    throw std::runtime_error("no reason in particular");
  });
  EXPECT_EQ(accessory.openSession(protocol), nullptr);
  EXPECT_EQ(accessory.lastError(), "no reason in particular");
  EXPECT_FALSE(accessory.lastErrorCode());
}

}  // namespace
}  // namespace quordalvane::posix
