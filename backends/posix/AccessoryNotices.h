#pragma once

#include <chrono>

#include <quordalvane/QuorExport.h>

namespace quordalvane::posix {

/// The system's notices that a USB printer or a serial line was plugged in or pulled. A program
/// that waits for its printer is woken by them as soon as the printer is there again:
///
///     AccessoryNotices notices;
///     while (!print(receipt)) {
///       notices.await(std::chrono::milliseconds(500));
///     }
///
/// They only shorten waits: on a system that gives none, as in some containers, each wait lasts its
/// whole time. For one thread at a time.
class QUOR_EXPORT AccessoryNotices {
 public:
  /// From now on no notice is missed.
  AccessoryNotices();

  /// Takes over `socket`, which delivers one notice a message; for tests. It must not block.
  explicit AccessoryNotices(int socket) : socket_(socket) {}

  ~AccessoryNotices();
  AccessoryNotices(const AccessoryNotices&) = delete;
  AccessoryNotices& operator=(const AccessoryNotices&) = delete;

  /// Blocks until there is a notice or `time` has passed on a steady clock; zero only takes the
  /// notices that are there. True if there was one since the last call.
  bool await(std::chrono::milliseconds time);

  /// Becomes readable when a notice may be there; -1 if the system gives none. This object keeps
  /// it.
  int descriptor() const { return socket_; }

 private:
  bool take();

  int socket_;
};

}  // namespace quordalvane::posix
