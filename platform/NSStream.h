#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

#include <quordalvane/QuorExport.h>

#include "platform/NSRunLoop.h"

namespace quordalvane {

/// The mode in which a port schedules its streams.
inline constexpr std::string_view NSDefaultRunLoopMode = "kCFRunLoopDefaultMode";

/// One direction of a session. A stream may be scheduled on one thread's loop and used from
/// another, but not from two threads at once. No call blocks, but for `waitUntilReady`.
class QUOR_EXPORT NSStream {
 public:
  virtual ~NSStream() = default;

  /// Names the receiver of the stream's events; an expired pointer clears it. The stream does not
  /// keep the receiver alive.
  virtual void setDelegate(std::weak_ptr<const void> delegate) = 0;

  /// Ties the stream to `runLoop`, in `mode`. A port does this before `open`, on the thread whose
  /// loop it is. A stream that moves its bytes or reports its events by a loop uses this one; a
  /// stream that needs no loop does nothing.
  virtual void scheduleInRunLoop(NSRunLoop& runLoop, std::string_view mode) = 0;

  /// Unties the stream from `runLoop` in `mode`: none of its work runs there any more. A port does
  /// this after `close`. It has no effect on a loop that the stream is not tied to. A stream may be
  /// destroyed without it, when a port is given up open, and then unties itself.
  virtual void removeFromRunLoop(NSRunLoop& runLoop, std::string_view mode) = 0;

  /// Starts opening the stream; it may still be opening on return.
  virtual void open() = 0;

  /// Ends the stream: it has no bytes and no space from then on. Closing twice does nothing more.
  virtual void close() = 0;

  /// Blocks until the stream is ready (bytes to read, or space to write), its link is lost, or
  /// `seconds` have passed on a steady clock. For run loops, which call it for their slice.
  virtual void waitUntilReady(double seconds) = 0;
};

/// The direction from the accessory to the port.
class QUOR_EXPORT NSInputStream : public NSStream {
 public:
  /// True if a read would return at least one byte now. False from the end of the stream on.
  virtual bool hasBytesAvailable() = 0;

  /// False if nothing can arrive before more is written, since everything that may be answered has
  /// been answered: a reader that only clears away leftovers need not wait then. True if that is
  /// not known.
  virtual bool expectsBytes() { return true; }

  /// Reads at most `maxLength` bytes into `buffer`. Returns the count read, 0 if there was nothing,
  /// or a negative number on an error.
  virtual std::int64_t read(std::uint8_t* buffer, std::size_t maxLength) = 0;
};

/// The direction from the port to the accessory.
class QUOR_EXPORT NSOutputStream : public NSStream {
 public:
  /// True if a write need not wait: it takes at least one byte now, or fails at once because the
  /// link is lost. A writer thus learns of a loss even while bytes that arrived before are left to
  /// read, which keep the accessory connected. False for a closed stream.
  virtual bool hasSpaceAvailable() = 0;

  /// Says whether the accessory may answer the bytes of the writes that follow; until it is said,
  /// it may. Called before each write. A stream that keeps count of the answers that are owed, for
  /// `expectsBytes`, leaves out bytes that are never answered; other streams do nothing.
  virtual void setMayBeAnswered(bool /*mayBeAnswered*/) {}

  /// Writes at most `maxLength` bytes. Returns the count taken, which may be fewer, or -1 on an
  /// error.
  virtual std::int64_t write(const std::uint8_t* buffer, std::size_t maxLength) = 0;
};

}  // namespace quordalvane
