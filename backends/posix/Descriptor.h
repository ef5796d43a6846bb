#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "backends/posix/Deadline.h"

namespace quordalvane::posix {

/// Owns one open descriptor of a connection and closes it at its end; a moved-from object owns no
/// descriptor. Transfers never block. It keeps no state of the connection, so all calls but the
/// moves may be made from any thread.
class Descriptor {
 public:
  /// The kind of file.
  enum class Kind {
    Socket,     ///< may be shut down, and may itself wait for input
    Bluetooth,  ///< a socket whose directions end together
    Terminal,   ///< a serial line or a pseudo-terminal

    /// A printer at the system's USB driver: a read of nothing is "nothing yet", and a close drops
    /// the bytes that the printer has not taken.
    UsbPrinter,
    MuteUsbPrinter,  ///< one that only takes bytes, and fails every read
  };

  /// Takes over `number`. A Bluetooth socket is new: nothing was sent. A terminal must be in
  /// non-blocking mode; a socket may be in either.
  Descriptor(int number, Kind kind);
  ~Descriptor();

  /// Takes over the descriptor of `other`.
  Descriptor(Descriptor&& other) noexcept;
  Descriptor& operator=(Descriptor&&) = delete;

  /// Lets `act` run on the descriptor right before it is closed.
  void setBeforeClose(void (*act)(int number)) { beforeClose_ = act; }

  /// The descriptor, which remains owned; -1 if there is none.
  int number() const { return number_; }

  /// Takes at most `maxLength` bytes. Returns the count, 0 at the end of the stream, or -1 with
  /// `errno` set: EAGAIN if there is nothing now.
  std::ptrdiff_t receive(std::uint8_t* buffer, std::size_t maxLength) const;

  /// The same, but waits for the first bytes until `deadline`; signals do not shorten the wait. A
  /// socket that soon has some costs one system call in all.
  std::ptrdiff_t receiveUntil(std::uint8_t* buffer, std::size_t maxLength,
                              SteadyTime deadline) const;

  /// Hands over at most `length` bytes and raises no signal. Returns the count, which may be fewer,
  /// or -1 with `errno` set: EAGAIN if there is no space now. It never fails if a part of the bytes
  /// may have arrived.
  std::ptrdiff_t send(const std::uint8_t* bytes, std::size_t length) const;

  /// Whether the input is empty after a `receive` that filled less than its buffer.
  bool shortReceiveEmpties() const { return isSocket(); }

  /// Waits until one of the poll `events`, an error or a hang-up is there; signals do not shorten
  /// the wait. Returns the events, 0 at the deadline. A deadline that has passed asks without
  /// waiting.
  short pollUntil(short events, SteadyTime deadline) const;

  /// Whether bytes that were handed over have not reached the other side. False if the kind cannot
  /// report it.
  bool hasUnderWay() const;

  /// How long the other side has acknowledged nothing, although it was asked more than once about
  /// the bytes under way. Zero while it acknowledges that it has no space, and if the kind cannot
  /// report it.
  std::chrono::milliseconds silence() const;

  /// What keeps a USB printer from printing as far as its port reports it, for people: "paper out"
  /// for example. "" if it reports nothing, and for the other kinds.
  std::string portState() const;

  /// Tells the other side that no more bytes follow, if the kind allows it.
  void endOutput() const;

  /// The same for both directions; wakes whoever polls.
  void shutdown() const;

 private:
  bool isSocket() const { return kind_ == Kind::Socket || kind_ == Kind::Bluetooth; }
  int outputCount() const;

  int number_;
  Kind kind_;
  int idleOutputCount_ = 0;  // what the system answers if nothing is under way
  bool isPatient_;           // receiving may itself wait, for a limited time
  void (*beforeClose_)(int number) = nullptr;
};

}  // namespace quordalvane::posix
