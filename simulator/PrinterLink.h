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

/// A connection to a printer, from the host's side. It accepts bytes while there is space, and
/// returns the printer's replies. The link can drop, which means that it ends before the host ends
/// it. A printer has one connection at a time: a new one ends the previous one. The printer must
/// outlive the link. The destructor ends the connection; the printer keeps the data that it has
/// accepted.
///
/// Every call first lets the printer work until `now`. The times of the calls must not decrease. No
/// call blocks. A link must not be used by two threads at once.
class PrinterLink {
 public:
  /// Begins a link at `now`.
  PrinterLink(VirtualPrinter& printer, Instant now, const Faults& faults = {});
  ~PrinterLink();
  PrinterLink(const PrinterLink&) = delete;
  PrinterLink& operator=(const PrinterLink&) = delete;

  /// Returns the count of bytes that a write would accept now: 0 while the printer's buffer is
  /// full, and 0 after the link has dropped.
  std::size_t space(Instant now);

  /// Sends bytes to the printer. The printer may accept only a first part of `bytes`. Returns the
  /// count of accepted bytes, normally at most `space(now)`. A printer whose buffer is full still
  /// accepts requests if `bytes` begins with them.
  std::size_t write(ByteView bytes, Instant now);

  /// Returns the count of bytes that can be read now.
  std::size_t available(Instant now);

  /// Moves at most `out.size()` bytes from the printer into `out`. Returns the count of moved
  /// bytes; 0 if there are none. Bytes that arrived before the link dropped can still be read.
  std::size_t read(std::span<std::uint8_t> out, Instant now);

  /// Returns true until the link has dropped and all earlier bytes have been read.
  bool connected(Instant now);

  /// Returns true if the link has dropped, even if there are bytes to read.
  bool dropped(Instant now);

  /// Returns true if the link has ended by a reset, which a host can distinguish from a close.
  bool wasReset(Instant now);

  /// Adds a fault, which affects the link from `now` on. The fault counts bytes and replies from
  /// the beginning of the link.
  void addFault(const Fault& fault, Instant now);

  /// Sets the seed of the random numbers that decide how a fault changes a reply. The seed applies
  /// from the next reply on.
  void setSeed(std::uint64_t seed);

  /// Removes all faults. Replies in transit keep their delay, and an ended link remains ended.
  void clearFaults(Instant now);

  /// Returns the next time after `now` at which the space, the bytes to read, or the link itself
  /// may change without a call. Returns empty if no change is due.
  std::optional<Instant> nextEvent(Instant now);

 private:
  struct Coming {  // the change that a fault of the kind `At` makes at the time `due`
    Instant due;
    std::string key;  // the name of a setting, or of a fault whose kind is not `At`
    std::string value;
  };
  struct Stall {  // after `afterBytes` bytes, the link has no space for the time `length`
    std::uint64_t afterBytes;
    Instant length;
    std::optional<Instant> until;  // when the stall ends; empty until the stall begins
  };
  struct Cut {
    FaultKind kind;
    std::uint64_t afterBytes;  // bytes to the printer; for `CutAfterOut`, bytes to the host
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
  std::deque<std::uint8_t> waiting_;  // bytes that the host can read
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
