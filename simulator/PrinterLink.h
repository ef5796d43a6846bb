#pragma once

#include <cstdint>
#include <deque>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "simulator/BluetoothModule.h"
#include "simulator/Bytes.h"
#include "simulator/Faults.h"
#include "simulator/Instant.h"
#include "simulator/ReplyPath.h"
#include "simulator/VirtualPrinter.h"

namespace quordalvane::simulator {

/// One connection to a printer, as the host sees it: it takes bytes while there is space, gives
/// bytes while there are any, and can drop. A printer has one connection at a time: a new one ends
/// the one before it. The printer must outlive the link. Destroying the link hangs up; data that
/// was taken remains with the printer.
///
/// Every call first lets the printer work up to `now`. Instants must not decrease. No call blocks.
/// Not for use by two threads at once.
class PrinterLink {
 public:
  /// A link that begins at `now`, with faults or without.
  PrinterLink(VirtualPrinter& printer, Instant now, const Faults& faults = {});
  ~PrinterLink();
  PrinterLink(const PrinterLink&) = delete;
  PrinterLink& operator=(const PrinterLink&) = delete;

  /// How many bytes a write would take now; 0 while the printer's buffer is full, and for good once
  /// the link has dropped.
  std::size_t space(Instant now);

  /// Hands bytes to the printer; returns how many of the first it took, at most `space(now)`. A
  /// printer whose buffer is full still takes requests, as long as no other bytes precede them.
  std::size_t write(ByteView bytes, Instant now);

  /// How many bytes a read would return now.
  std::size_t available(Instant now);

  /// Moves up to `out.size()` bytes from the printer into `out`; returns their count, 0 if there
  /// are none. Bytes that had arrived before the link dropped can still be read.
  std::size_t read(std::span<std::uint8_t> out, Instant now);

  /// True until the link has dropped and no earlier byte is left to read.
  bool connected(Instant now);

  /// True once the link has dropped, even if bytes are left to read.
  bool dropped(Instant now);

  /// True once the link has ended by a reset, which a host can distinguish from a close.
  bool wasReset(Instant now);

  /// Lets a fault befall the link from `now` on, besides those that it has. Bytes and replies are
  /// counted from the link's beginning.
  void addFault(const Fault& fault, Instant now);

  /// Decides the random choices of faults, for later replies.
  void setSeed(std::uint64_t seed);

  /// Removes all faults. Replies that are under way keep their delay; an ended link remains ended.
  void clearFaults(Instant now);

  /// When, after `now`, something may change without any call: space, bytes to read, the link
  /// itself. Empty while nothing is due.
  std::optional<Instant> nextEvent(Instant now);

 private:
  struct Coming {  // a fault of the kind `at`, with its time
    Instant due;
    std::string key;
    std::string value;
  };
  struct Stall {  // no space from a count of bytes on, for a while
    std::uint64_t afterBytes;
    Instant length;
    std::optional<Instant> until;  // empty until so many bytes have arrived
  };
  struct Cut {
    FaultKind kind;  // after bytes in, or after bytes out
    std::uint64_t afterBytes;
    Ending ending;
  };

  void settle(Instant now);
  void send(ByteView reply, Instant at, ReplyKind kind);
  void befall(const Fault& fault);
  void receiveReplies();
  void bringWhatIsComing();
  void beginStalls();
  void endStalls();
  bool stalled() const;
  std::size_t mostTaken() const;
  std::size_t heardWithoutSpace(ByteView bytes) const;
  std::uint64_t bytesBeforeCut() const;
  void cutIfReached(FaultKind afterWhat);
  std::optional<Instant> nextOwnEvent() const;
  void drop(Ending ending);

  VirtualPrinter& printer_;
  std::uint64_t connection_;
  BluetoothModule module_;
  ReplyPath replies_;
  std::deque<std::uint8_t> waiting_;  // for the host to read
  Instant now_;
  std::optional<Ending> ended_;
  std::uint64_t bytesIn_ = 0;
  std::uint64_t bytesOut_ = 0;

  std::vector<Coming> coming_;
  std::vector<Stall> stalls_;
  std::vector<Cut> cuts_;
  std::optional<std::uint64_t> mostPerWrite_;
  bool printsNothing_ = false;
};

}  // namespace quordalvane::simulator
