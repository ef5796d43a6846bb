#pragma once

#include <cstdint>
#include <deque>
#include <optional>
#include <span>

#include "simulator/BluetoothModule.h"
#include "simulator/Instant.h"
#include "simulator/VirtualPrinter.h"

namespace quordalvane::simulator {

/// One connection to a printer, as the host sees it: bytes go in while there is space, bytes come
/// out while there are any, and it can drop. A printer has one connection at a time: a new one ends
/// the one before it. The printer must outlive the link. Destroying the link hangs up; what was
/// taken stays with the printer.
///
/// Every call first lets the printer work up to `now`. Instants must not go back. No call blocks.
/// Not for use by two threads at once.
class PrinterLink {
 public:
  PrinterLink(VirtualPrinter& printer, Instant now);
  ~PrinterLink();
  PrinterLink(const PrinterLink&) = delete;
  PrinterLink& operator=(const PrinterLink&) = delete;

  /// How many bytes a write would take now; 0 while the printer's buffer is full, and for good once
  /// the link has dropped.
  std::size_t space(Instant now);

  /// Hands bytes to the printer; returns how many of the first it took, at most `space(now)`.
  std::size_t write(std::span<const std::uint8_t> bytes, Instant now);

  /// How many bytes a read would return now.
  std::size_t available(Instant now);

  /// Moves up to `out.size()` bytes from the printer into `out`; returns their count, 0 if there
  /// are none. What was there when the link dropped can still be read.
  std::size_t read(std::span<std::uint8_t> out, Instant now);

  /// True until the link has dropped and nothing that came before is left to read.
  bool connected(Instant now);

  /// True once the link has dropped, whatever is left to read.
  bool dropped(Instant now);

  /// When, after `now`, something may change without any call: space, bytes to read, the link
  /// itself. None while nothing is due.
  std::optional<Instant> nextEvent(Instant now);

 private:
  void settle(Instant now);
  std::optional<Instant> nextOwnEvent() const;
  void deliver(std::span<const std::uint8_t> bytes);
  void drop(Instant now);

  VirtualPrinter& printer_;
  std::uint64_t connection_;
  BluetoothModule module_;
  std::deque<std::uint8_t> waiting_;  // for the host to read
  Instant now_;
  bool dropped_ = false;
};

}  // namespace quordalvane::simulator
