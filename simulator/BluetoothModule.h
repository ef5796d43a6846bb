#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "simulator/Bytes.h"
#include "simulator/Instant.h"

namespace quordalvane::simulator {

/// The Bluetooth module between a link and its printer. In data mode it passes bytes on. An escape
/// sequence switches the module to command mode, until the link ends. The host must send nothing
/// for a certain time (the guard time) before and after the escape sequence. One module serves one
/// link.
class BluetoothModule {
 public:
  /// The module's two outputs: data for the printer, and the module's own replies for the host.
  /// Each output also receives the time at which the module sends the bytes.
  struct Outlets {
    std::function<void(ByteView, Instant)> toPrinter;
    std::function<void(ByteView, Instant)> toHost;
  };

  /// Begins a link at `now`, in data mode.
  BluetoothModule(std::string address, Outlets outlets, Instant now);

  /// Accepts bytes from the host.
  void receive(ByteView bytes, Instant now);

  /// Lets time pass until `now`. The caller must not skip a time that `nextEvent` returns.
  void advance(Instant now);

  /// Returns the next time at which the module acts without a call; empty if there is no such time.
  std::optional<Instant> nextEvent() const;

  /// Passes all held bytes to the printer. To be called when the host has left.
  void release(Instant now);

  bool inCommandMode() const { return commandMode_; }

  /// Returns the count of bytes that are held because they may be the escape sequence.
  std::size_t keptBack() const { return escape_.size(); }

  /// Returns true if a command has asked for the link to end and the delay of that command has
  /// passed.
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
  Bytes escape_;  // bytes that may be the escape sequence
  std::string command_;
  std::optional<Instant> dropAt_;
};

}  // namespace quordalvane::simulator
