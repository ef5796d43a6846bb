#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>

#include "backends/ReplyExpectation.h"
#include "backends/posix/Descriptor.h"

namespace quordalvane::posix {

/// An instant on a steady clock that changes only at the ticks of the system, some milliseconds
/// apart. To read it costs a fraction of an exact reading.
using Tick = std::chrono::nanoseconds;

/// One open connection: its descriptor, the bytes that were read ahead, and the state of both
/// directions. A session, its two streams and its accessory share it.
///
/// The questions that a port asks before every transfer are answered from the last look at the
/// input wherever possible, so that a whole exchange costs a handful of system calls. A look is one
/// `receive`, which detects bytes, emptiness, the end of the stream and errors at once.
///
/// All calls may be made from any thread. Nothing is locked while a wait blocks.
class Link {
 public:
  /// The longest time for which the other side may leave sent bytes without an acknowledgement. The
  /// system asks a printer that has no space every two minutes at the least, so it must be longer.
  static constexpr std::chrono::milliseconds givenUpAfter{150'000};

  /// `silenceLimit` is another one than that.
  explicit Link(Descriptor descriptor, std::chrono::milliseconds silenceLimit = givenUpAfter);

  /// Lets `release` return at once: the bytes under way are not wanted any more.
  void abandon();

  /// Ends the connection. From then on there are no bytes and no space. Returns when the device has
  /// taken the bytes under way, at once if there are none, and after two seconds at the latest; the
  /// bytes that it has not taken by then are lost if it sends anything afterwards. Waits in
  /// progress end at its end, on a terminal at their deadline at the latest. A second call does
  /// nothing more.
  void release();

  /// True once the end of the stream, a hang-up or an error was seen, or the other side was silent
  /// for too long, and all bytes that arrived before have been read. False after `release`: a link
  /// that was given up is not lost.
  bool isLost();

  /// If the end was seen, drops the unread bytes that arrived before it, so that `isLost` returns
  /// true.
  void noticeLoss();

  /// True if a read would return at least one byte. "No" may be as old as a tick of the system's
  /// clock, some milliseconds.
  bool hasBytes();

  /// Reads at most `maxLength` bytes. Returns the count, 0 if there is nothing or the stream has
  /// ended, -1 after `release`.
  std::int64_t read(std::uint8_t* buffer, std::size_t maxLength);

  /// False while no reply can be on its way.
  bool expectsBytes();

  /// Blocks until there are bytes, the link is lost or `seconds` have passed.
  void waitForBytes(double seconds);

  /// True if a write would take at least one byte, or fails at once and so shows a loss.
  bool hasSpace();

  /// Whether the other side may answer the bytes that are written from now on; it may until this is
  /// called.
  void setMayBeAnswered(bool mayBeAnswered);

  /// Writes at most `length` bytes. Returns the count taken, 0 if there is no space, -1 on an error
  /// and after `release`.
  std::int64_t write(const std::uint8_t* bytes, std::size_t length);

  /// Blocks until there is space, the link is lost or `seconds` have passed.
  void waitForSpace(double seconds);

  /// The state that the device's port reports, see `Descriptor::portState`; "" after `release`.
  std::string portState();

 private:
  std::size_t unread() const { return end_ - next_; }
  void look();
  void receive();
  void noteReceived(std::ptrdiff_t count, int error);
  bool hasFallenSilent();
  void noteDry();
  void noteAnswered();
  bool hasSpaceLocked();

  const std::chrono::milliseconds silenceLimit_;

  std::mutex mutex_;  // guards the members below

  // Null once released. A wait holds a share of its own, so that the number is not given to another
  // file while it is being polled.
  std::shared_ptr<const Descriptor> descriptor_;

  std::array<std::uint8_t, 4096> ahead_{};  // the bytes from next_ to end_ are unread
  std::size_t next_ = 0;
  std::size_t end_ = 0;

  bool ended_ = false;        // no more will be received, and all that was received has been read
  bool dry_ = false;          // the last look emptied the input
  Tick dryAt_{};              // when that was
  bool beingWaited_ = false;  // a thread waits for input, and may fill ahead_ without the lock

  ReplyExpectation expectation_;
  bool cameSinceWrite_ = false;  // bytes were received after the last write that may be answered

  bool mayBeFull_ = false;     // the last write was not taken whole
  bool outputBroken_ = false;  // a write has failed, or would have no effect
  bool abandoned_ = false;     // nobody wants the bytes under way

  Tick nextSilenceLook_{};  // when the system is asked for signs of life again
};

}  // namespace quordalvane::posix
