#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "backends/posix/Deadline.h"

namespace quordalvane::posix {

/// Owns the open descriptor of a connection, and closes it in its destructor. A moved-from object
/// owns no descriptor. `receive` and `send` never block. Several threads may call the functions at
/// the same time, because the object stores no state of the connection. During a move no other call
/// is allowed.
class Descriptor {
 public:
  /// The kind of connection.
  enum class Kind {
    Socket,     ///< can be shut down; one system call can wait for bytes and receive them
    Bluetooth,  ///< a socket whose two directions end together
    Terminal,   ///< a serial line or a pseudo-terminal

    /// A printer at the system's USB printer driver. A read of 0 bytes does not mean the end of the
    /// stream, and a close drops the bytes that the printer has not taken.
    UsbPrinter,
    MuteUsbPrinter,  ///< a USB printer that can only receive bytes; every read would fail
  };

  /// Takes ownership of the descriptor `number`. A Bluetooth socket must be new: nothing has been
  /// sent on it. A terminal must be in non-blocking mode; a socket may be in blocking mode.
  Descriptor(int number, Kind kind);
  ~Descriptor();

  Descriptor(Descriptor&& other) noexcept;
  Descriptor& operator=(Descriptor&&) = delete;

  /// Sets a function that is called with the descriptor just before it is closed.
  void setBeforeClose(void (*act)(int number)) { beforeClose_ = act; }

  /// Returns the descriptor, which this object still owns; -1 if this object owns no descriptor.
  int number() const { return number_; }

  /// Receives at most `maxLength` bytes without waiting. Returns their number, 0 at the end of the
  /// stream, or -1 with an error in `errno`; the error is EAGAIN if there are no bytes now.
  std::ptrdiff_t receive(std::uint8_t* buffer, std::size_t maxLength) const;

  /// Works as `receive`, but waits until `deadline` for the first bytes; signals do not shorten the
  /// wait. If bytes soon arrive on a socket, this takes only one system call.
  std::ptrdiff_t receiveUntil(std::uint8_t* buffer, std::size_t maxLength,
                              SteadyTime deadline) const;

  /// Sends at most `length` bytes without waiting and without causing a signal. Returns the number
  /// of bytes taken, which may be smaller than `length`, or -1 with an error in `errno`; the error
  /// is EAGAIN if there is no space now. `send` never returns -1 if a part of the bytes may have
  /// arrived.
  std::ptrdiff_t send(const std::uint8_t* bytes, std::size_t length) const;

  /// Returns true if this kind of connection has no more input after a `receive` that did not fill
  /// its buffer.
  bool shortReceiveEmpties() const { return isSocket(); }

  /// Waits until one of the poll `events`, an error or a hang-up occurs; signals do not shorten the
  /// wait. Returns the events that occurred, or 0 if the deadline passed. Does not wait if the
  /// deadline is in the past.
  short pollUntil(short events, SteadyTime deadline) const;

  /// Returns true if sent bytes have not reached the other side yet. Returns false if this kind of
  /// descriptor cannot report this.
  bool hasUnderWay() const;

  /// Returns the time since the other side last acknowledged anything. If the other side is silent,
  /// the system sends it probes, or sends unacknowledged bytes again. The result is zero until at
  /// least two such packets in all are unanswered. So the result is zero while the other side
  /// answers the probes, even if it has no space. The result is also zero if this kind of
  /// descriptor cannot report the time.
  std::chrono::milliseconds silence() const;

  /// Returns why a USB printer does not print, for example "paper out", as a text for people. The
  /// printer's USB port reports the reason even if the printer does not answer. Returns "" if the
  /// USB port reports nothing, and for other kinds of descriptors.
  std::string portState() const;

  /// Shuts down the output, so that the other side sees that no more bytes follow. Has no effect on
  /// kinds of descriptors that cannot be shut down.
  void endOutput() const;

  /// Shuts down both directions. Threads that wait in `pollUntil` return.
  void shutdown() const;

 private:
  bool isSocket() const { return kind_ == Kind::Socket || kind_ == Kind::Bluetooth; }
  int outputCount() const;

  int number_;
  Kind kind_;
  int idleOutputCount_ = 0;  // the result of `outputCount` if all sent bytes have arrived
  bool isPatient_;           // true if a receiving system call may wait briefly
  void (*beforeClose_)(int number) = nullptr;
};

}  // namespace quordalvane::posix
