#pragma once

#include <chrono>

#include <quordalvane/QuorExport.h>

namespace quordalvane::posix {

/// Receives the system's notices that a USB printer or a serial line was plugged in or unplugged. A
/// program that waits for its printer wakes up as soon as the printer is plugged in again. For
/// example:
///
///     AccessoryNotices notices;
///     while (!print(receipt)) {
///       notices.await(std::chrono::milliseconds(500));
///     }
///
/// Notices only shorten waits. On a system that sends no notices, as in some containers, each wait
/// takes its full time. Only one thread at a time may use the object.
class QUOR_EXPORT AccessoryNotices {
 public:
  /// Starts to receive notices.
  AccessoryNotices();

  /// For tests. Takes ownership of `socket`, a non-blocking socket on which each message is one
  /// notice.
  explicit AccessoryNotices(int socket) : socket_(socket) {}

  ~AccessoryNotices();
  AccessoryNotices(const AccessoryNotices&) = delete;
  AccessoryNotices& operator=(const AccessoryNotices&) = delete;

  /// Blocks until there is a notice or `time` has passed on a steady clock. Does not block if
  /// `time` is zero. Returns true if there was a notice since the last call.
  bool await(std::chrono::milliseconds time);

  /// Returns a descriptor that becomes readable when a notice may have arrived; -1 if the system
  /// sends no notices. The `AccessoryNotices` object owns the descriptor.
  int descriptor() const { return socket_; }

 private:
  bool take();

  int socket_;
};

}  // namespace quordalvane::posix
