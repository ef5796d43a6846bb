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

/// A time on a steady clock that changes only at the ticks of the system, every few milliseconds.
/// Reading this clock costs much less than reading an exact clock.
using Tick = std::chrono::nanoseconds;

/// One open connection. The object has the descriptor, the bytes that were read ahead, and the
/// state of both directions. A session, its two streams and its accessory share the object.
///
/// A port asks for the state of the link before every transfer. If possible, the link answers
/// without a system call, from the result of its last `receive`. So a whole exchange needs only a
/// few system calls.
///
/// Any thread may call the functions. No lock is held while a function waits.
class Link {
 public:
  /// How long the other side may leave sent bytes without an acknowledgement. The system sends
  /// probes to a printer that has no space for more bytes; the pauses between the probes grow to
  /// two minutes. `givenUpAfter` must be longer than the longest pause.
  static constexpr std::chrono::milliseconds givenUpAfter{150'000};

  /// Creates a link over `descriptor`. The other side counts as lost after `silenceLimit` without
  /// an acknowledgement.
  explicit Link(Descriptor descriptor, std::chrono::milliseconds silenceLimit = givenUpAfter);

  /// Makes `release` return without waiting; bytes that the device has not taken yet may be lost.
  void abandon();

  /// Ends the connection. Afterwards there are no bytes to read and there is no space to write.
  /// `release` returns when the device has taken all written bytes, and after two seconds at the
  /// latest. Bytes that the device takes later may be lost. Over TCP they are lost if the device
  /// sends anything before it takes them. When `release` returns, the waits of other threads end;
  /// but a wait on a terminal may continue until its deadline. A second call has no effect.
  void release();

  /// Returns true if the link has ended and all bytes that arrived before the end were read. A link
  /// ends if the stream ends, a hang-up or an error occurs, or the other side is silent for too
  /// long. Returns false after `release`, because a released link is not lost.
  bool isLost();

  /// If the link has ended, drops the unread bytes that arrived before the end, so that `isLost`
  /// returns true.
  void noticeLoss();

  /// Returns true if a read would return at least one byte. A result of false may be a few
  /// milliseconds old, up to one tick of the system's clock.
  bool hasBytes();

  /// Reads at most `maxLength` bytes. Returns their number, 0 if there are no bytes or the stream
  /// has ended, and -1 after `release`.
  std::int64_t read(std::uint8_t* buffer, std::size_t maxLength);

  /// Returns false if no reply can arrive.
  bool expectsBytes();

  /// Blocks until there are bytes, the link is lost or `seconds` have passed.
  void waitForBytes(double seconds);

  /// Returns true if a write would take at least one byte, or would fail without waiting because
  /// the link is lost.
  bool hasSpace();

  /// Sets whether the other side can answer the bytes of later writes; initially it can.
  void setMayBeAnswered(bool mayBeAnswered);

  /// Writes at most `length` bytes. Returns the number of bytes taken, 0 if there is no space, and
  /// -1 on an error and after `release`.
  std::int64_t write(const std::uint8_t* bytes, std::size_t length);

  /// Blocks until there is space, the link is lost or `seconds` have passed.
  void waitForSpace(double seconds);

  /// Returns why a USB printer does not print (see `Descriptor::portState`); "" after `release`.
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

  // Null after `release`. A waiting thread shares the ownership of the descriptor. Otherwise the
  // system could reuse the number of the descriptor for another file while the thread polls it.
  std::shared_ptr<const Descriptor> descriptor_;

  std::array<std::uint8_t, 4096> ahead_{};  // the bytes from next_ to end_ are unread
  std::size_t next_ = 0;
  std::size_t end_ = 0;

  bool ended_ = false;        // true if no more bytes will arrive and all that arrived were read
  bool dry_ = false;          // true if the last `receive` emptied the input
  Tick dryAt_{};              // the tick at which the last `receive` emptied the input
  bool beingWaited_ = false;  // true if a waiting thread may fill `ahead_` without the lock

  ReplyExpectation expectation_;

  // True if bytes have arrived since the last write, and `expectation_` does not yet count them as
  // a reply. A write that cannot be answered changes nothing.
  bool cameSinceWrite_ = false;

  bool mayBeFull_ = false;     // true if the last write was long or was taken only in part
  bool outputBroken_ = false;  // true if a write has failed or the other side no longer answers
  bool abandoned_ = false;     // true if `release` must return without waiting

  Tick nextSilenceLook_{};  // the next time to ask the system whether the other side still answers
};

}  // namespace quordalvane::posix
