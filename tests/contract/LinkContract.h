#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <memory>

#include "tests/contract/LinkMaker.h"

namespace quordalvane::contract {

inline constexpr double generously = 10;  // seconds; only a test that fails waits so long

/// A session on one kind of link; the test controls the device's end. Each back end instantiates
/// the suite with its own kinds of links.
class LinkContract : public testing::TestWithParam<LinkKind> {
 protected:
  void SetUp() override {
    maker = GetParam().make();
    accessory = maker->accessory();
    open();
  }

  // When a session ends, it normally waits for its device. Only the tests of a stalled device need
  // this wait, so it is skipped here.
  void TearDown() override {
    if (session) {
      session->abandon();
    }
  }

  void open() {
    session = accessory->openSession(accessory->protocolStrings().front());
    ASSERT_NE(session, nullptr);
    input = session->inputStream();
    output = session->outputStream();
    maker->onStreamThread([this] {
      schedule(*input);
      schedule(*output);
    });
    peer = maker->peer();
  }

  /// Prepares a stream as a port does before it uses the stream.
  void schedule(NSStream& stream) {
    stream.setDelegate(receiver_);
    stream.scheduleInRunLoop(maker->platform().currentRunLoop(), NSDefaultRunLoopMode);
    stream.open();
  }

  double now() const {
    return std::chrono::duration<double>(maker->platform().clock().monotonic()).count();
  }

  /// Lets time pass until `condition` holds; false if it never does.
  template <typename Condition>
  bool eventually(Condition condition) {
    const double start = now();
    while (!condition()) {
      if (now() - start > generously) {
        return false;
      }
      input->waitUntilReady(0.001);
      maker->platform().clock().usleep(50);
    }
    return true;
  }

  bool isLost() {
    return eventually([this] { return !accessory->isConnected(); });
  }

  /// Reads until `count` bytes have arrived, or until no more arrive.
  Bytes receive(std::size_t count) {
    Bytes bytes(count);
    std::size_t got = 0;
    while (got < count && eventually([this] { return input->hasBytesAvailable(); })) {
      const auto taken = input->read(bytes.data() + got, count - got);
      if (taken < 0) {
        break;
      }
      got += static_cast<std::size_t>(taken);
    }
    bytes.resize(got);
    return bytes;
  }

  /// Writes text until the link takes no more bytes, or has taken `limit` bytes or more. Returns
  /// the bytes that the link took. A full terminal may have space again after a moment, so `fill`
  /// waits for a moment before it gives up.
  Bytes fill(std::size_t limit = SIZE_MAX) {
    constexpr double moment = 0.1;
    Bytes taken;
    Bytes piece(4096);
    const auto hasSpace = [this] {
      output->waitUntilReady(moment);
      return output->hasSpaceAvailable();
    };
    while (taken.size() < limit && hasSpace()) {
      for (std::size_t i = 0; i < piece.size(); ++i) {
        piece[i] = static_cast<std::uint8_t>('a' + (taken.size() + i) % 23);
      }
      const auto count = output->write(piece.data(), piece.size());
      if (count < 0) {
        ADD_FAILURE() << "a stalled device is no error";
        break;
      }
      taken.insert(taken.end(), piece.begin(), piece.begin() + count);
    }
    return taken;
  }

  std::int64_t write(const Bytes& bytes) { return output->write(bytes.data(), bytes.size()); }

  std::unique_ptr<LinkMaker> maker;
  std::shared_ptr<EAAccessory> accessory;
  std::shared_ptr<EASession> session;
  std::shared_ptr<NSInputStream> input;
  std::shared_ptr<NSOutputStream> output;
  std::unique_ptr<Peer> peer;

 private:
  const std::shared_ptr<const void> receiver_ = std::make_shared<int>();
};

inline std::string kindName(const testing::TestParamInfo<LinkKind>& info) {
  return info.param.name;
}

}  // namespace quordalvane::contract
