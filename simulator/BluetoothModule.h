#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "simulator/Bytes.h"
#include "simulator/Instant.h"

namespace quordalvane::simulator {

/// The radio module between a link and its printer. In data mode it passes bytes on; an escape
/// sequence between two guard times turns it to command mode, for as long as the link lives.
/// One module serves one link.
class BluetoothModule {
 public:
  /// The ways out of the module: data to the printer, and its own replies to the host, each with
  /// the instant at which it is sent.
  struct Outlets {
    std::function<void(ByteView, Instant)> toPrinter;
    std::function<void(ByteView, Instant)> toHost;
  };

  /// A module whose link begins at `now`, in data mode.
  BluetoothModule(std::string address, Outlets outlets, Instant now);

  /// Takes bytes from the host.
  void receive(ByteView bytes, Instant now);

  /// Lets time pass: to be called with every due instant, in order.
  void advance(Instant now);

  /// When it next does something by itself.
  std::optional<Instant> nextEvent() const;

  /// Passes the bytes that it keeps to the printer: the host has left.
  void release(Instant now);

  bool inCommandMode() const { return commandMode_; }

  /// How many bytes it keeps back because they may be the escape sequence.
  std::size_t keptBack() const { return escape_.size(); }

  /// True once a command has asked for the link to end and its time has passed.
  bool wantsLinkDropped() const { return dropped_; }

 private:
  void receiveData(ByteView bytes, bool mayBeEscape);
  void receiveCommand(std::uint8_t byte, Instant now);
  void obey(Instant now);
  void reply(const std::string& text, Instant now);

  std::string address_;
  Outlets outlets_;
  Instant lastReceived_;
  bool commandMode_ = false;
  bool dropped_ = false;
  Bytes escape_;  // a possible escape sequence
  std::string command_;
  std::optional<Instant> dropAt_;
};

}  // namespace quordalvane::simulator
