#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <mutex>

namespace quordalvane::test {

/// One end of a connected pair of sockets. The streams and the accessory of a session share it. All
/// calls may be made from any thread, and no call blocks.
class SocketLink {
 public:
  /// Takes over `number`.
  explicit SocketLink(int number);
  ~SocketLink();
  SocketLink(const SocketLink&) = delete;
  SocketLink& operator=(const SocketLink&) = delete;

  /// The descriptor that a run loop watches; valid as long as the link exists.
  int number() const { return number_; }

  bool hasBytes();
  bool hasSpace();
  std::int64_t read(std::uint8_t* buffer, std::size_t maxLength);
  std::int64_t write(const std::uint8_t* bytes, std::size_t length);

  /// Ends the connection for both sides.
  void end();

  /// True once the other side has ended the connection, even if bytes are left to read.
  bool isHungUp();

  /// True once the other side has ended the connection and all earlier bytes have been read.
  bool isLost();

  /// True if every further write will fail.
  bool isOutputBroken();

 private:
  short eventsNow(short asked) const;

  const int number_;
  std::mutex mutex_;
  bool isEnded_ = false;   // this side has ended the connection
  bool isBroken_ = false;  // a call has failed with an error
};

}  // namespace quordalvane::test
