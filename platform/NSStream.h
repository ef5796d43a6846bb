#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

#include <quordalvane/QuorExport.h>

#include "platform/NSRunLoop.h"

namespace quordalvane {

/// The run-loop mode in which a port schedules its streams.
inline constexpr std::string_view NSDefaultRunLoopMode = "kCFRunLoopDefaultMode";

/// One direction of a session. A stream may be scheduled on the loop of one thread and used on
/// another thread, but only by one thread at a time. Only `waitUntilReady` blocks.
class QUOR_EXPORT NSStream {
 public:
  virtual ~NSStream() = default;

  /// Sets the receiver of the stream's events. An expired pointer means no receiver. The stream
  /// does not keep the receiver alive.
  virtual void setDelegate(std::weak_ptr<const void> delegate) = 0;

  /// Schedules the stream on `runLoop`, in the run-loop mode `mode`. A port calls this before
  /// `open`, on the thread of the loop. A stream that needs a loop to move its bytes or to report
  /// its events uses this loop; other streams do nothing.
  virtual void scheduleInRunLoop(NSRunLoop& runLoop, std::string_view mode) = 0;

  /// Removes the stream from `runLoop` in `mode`; afterwards the stream does no work on this loop.
  /// A port calls this after `close`. Has no effect if the stream is not scheduled on this loop. If
  /// a port is destroyed while it is open, its streams are destroyed without this call, and remove
  /// themselves from the loop.
  virtual void removeFromRunLoop(NSRunLoop& runLoop, std::string_view mode) = 0;

  /// Starts to open the stream. The stream may still be opening when `open` returns.
  virtual void open() = 0;

  /// Closes the stream. Afterwards there are no bytes to read and there is no space to write. A
  /// second call has no effect.
  virtual void close() = 0;

  /// Blocks until the stream has bytes to read or space to write, its link is lost, or `seconds`
  /// have passed on a steady clock. Only run loops call this function.
  virtual void waitUntilReady(double seconds) = 0;
};

/// The direction from the accessory to the port.
class QUOR_EXPORT NSInputStream : public NSStream {
 public:
  /// Returns true if a read would return at least one byte now. Returns false if the stream has
  /// ended.
  virtual bool hasBytesAvailable() = 0;

  /// Returns false if no byte can arrive before the next write, because every query has been
  /// answered. A reader that only drops old bytes need not wait in this case. Returns true if the
  /// stream does not know this.
  virtual bool expectsBytes() { return true; }

  /// Reads at most `maxLength` bytes into `buffer`. Returns the number of bytes read, which is 0 if
  /// there were no bytes, or a negative number on an error.
  virtual std::int64_t read(std::uint8_t* buffer, std::size_t maxLength) = 0;
};

/// The direction from the port to the accessory.
class QUOR_EXPORT NSOutputStream : public NSStream {
 public:
  /// Returns true if a write would take at least one byte now, or would fail without waiting
  /// because the link is lost. So a writer notices the loss immediately. `isConnected` of
  /// the accessory may report the loss later, after all received bytes were read. Returns false for
  /// a closed stream.
  virtual bool hasSpaceAvailable() = 0;

  /// Sets whether the accessory may answer the bytes of later writes; the initial setting is true.
  /// A port calls this function before each write. Streams that count the expected answers for
  /// `expectsBytes` use this setting; other streams ignore it.
  virtual void setMayBeAnswered(bool /*mayBeAnswered*/) {}

  /// Writes at most `maxLength` bytes. Returns the number of bytes taken, which may be smaller than
  /// `maxLength`, or -1 on an error.
  virtual std::int64_t write(const std::uint8_t* buffer, std::size_t maxLength) = 0;
};

}  // namespace quordalvane
